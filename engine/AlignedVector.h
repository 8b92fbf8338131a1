// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace tarvelline
{
/** Allocates on cache-line boundaries, so that every buffer starts where the widest vector register may load it. */
template <typename Type>
struct CacheLineAllocator
{
    using value_type = Type;
    static constexpr std::align_val_t alignment { 64 }; // bytes: a cache line, and the widest vector register

    CacheLineAllocator() = default;

    template <typename Other>
    CacheLineAllocator (const CacheLineAllocator<Other>&) noexcept
    {
    }

    Type* allocate (std::size_t count)
    {
        return static_cast<Type*> (::operator new (count * sizeof (Type), alignment));
    }
    void deallocate (Type* block, std::size_t) noexcept { ::operator delete (block, alignment); }

    template <typename Other>
    bool operator== (const CacheLineAllocator<Other>&) const noexcept
    {
        return true;
    }
};

/** Floats by which vector code may read past the last one it uses: two of the widest vectors. Buffers that are read between
    their samples have that many more. */
inline constexpr int readAhead = 32;

/** A std::vector whose first element is aligned to 64 bytes. */
template <typename Type>
using AlignedVector = std::vector<Type, CacheLineAllocator<Type>>;
} // namespace tarvelline
