// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>

namespace tarvelline
{
/** A word that the audio thread and the message thread share: reads and writes are relaxed atomic operations, which cost
    what plain ones do. Each word stands alone: nothing is promised about the order in which two of them are seen. */
template <typename Type>
class RelaxedAtomic
{
public:
    RelaxedAtomic (Type initial = Type()) noexcept : value (initial) {}

    RelaxedAtomic (const RelaxedAtomic&) = delete;
    RelaxedAtomic& operator= (const RelaxedAtomic&) = delete;

    Type get() const noexcept { return value.load (std::memory_order_relaxed); }
    operator Type() const noexcept { return get(); }

    Type operator= (Type newValue) noexcept
    {
        value.store (newValue, std::memory_order_relaxed);
        return newValue;
    }

private:
    static_assert (std::atomic<Type>::is_always_lock_free);
    std::atomic<Type> value;
};
} // namespace tarvelline
