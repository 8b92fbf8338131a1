// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/SoundHandle.h"

#include <algorithm>

namespace tarvelline::render
{
namespace
{
sf_count_t placeFrom (int whence, sf_count_t offset, sf_count_t here, sf_count_t end)
{
    return std::max<sf_count_t> (0, offset + (whence == SEEK_CUR ? here : whence == SEEK_END ? end : 0));
}

struct Reading
{
    static SoundSource& of (void* data) { return *static_cast<SoundSource*> (data); }
    static sf_count_t length (void* data) { return of (data).length(); }
    static sf_count_t tell (void* data) { return of (data).stream->getPosition(); }
    static sf_count_t write (const void*, sf_count_t, void*) { return 0; }

    static sf_count_t seek (sf_count_t offset, int whence, void* data)
    {
        of (data).stream->setPosition (placeFrom (whence, offset, tell (data), length (data)));
        return tell (data);
    }

    static sf_count_t read (void* into, sf_count_t count, void* data)
    {
        auto& source = of (data);
        const auto start = source.stream->getPosition();
        const auto wanted = static_cast<int> (std::clamp<sf_count_t> (count, 0, 1 << 30));
        const auto got = std::max (0, source.stream->read (into, wanted));

        for (std::size_t i = 0; i < source.patch.size(); ++i)
            if (const auto place = source.patchPlace + static_cast<sf_count_t> (i) - start; place >= 0 && place < got)
                static_cast<char*> (into)[place] = source.patch[i];

        return got;
    }
};

struct Writing
{
    static SoundTarget& of (void* data) { return *static_cast<SoundTarget*> (data); }
    static sf_count_t length (void* data) { return of (data).length; }
    static sf_count_t tell (void* data) { return of (data).stream->getPosition(); }
    static sf_count_t read (void*, sf_count_t, void*) { return 0; }

    static sf_count_t seek (sf_count_t offset, int whence, void* data)
    {
        of (data).stream->setPosition (placeFrom (whence, offset, tell (data), length (data)));
        return tell (data);
    }

    static sf_count_t write (const void* from, sf_count_t count, void* data)
    {
        const bool written = of (data).stream->write (from, static_cast<std::size_t> (count));
        of (data).length = std::max (length (data), tell (data));
        return written ? count : 0;
    }
};

template <typename Way>
SF_VIRTUAL_IO wayOf()
{
    return { Way::length, Way::seek, Way::read, Way::write, Way::tell };
}
} // namespace

SoundHandle openSound (SoundSource& source, SF_INFO& info)
{
    auto way = wayOf<Reading>();
    source.stream->setPosition (0);
    return SoundHandle (sf_open_virtual (&way, SFM_READ, &info, &source));
}

SoundHandle openSound (SoundTarget& target, SF_INFO& info)
{
    auto way = wayOf<Writing>();
    return SoundHandle (sf_open_virtual (&way, SFM_WRITE, &info, &target));
}
} // namespace tarvelline::render
