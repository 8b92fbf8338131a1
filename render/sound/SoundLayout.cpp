// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/SoundLayout.h"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <string_view>

namespace tarvelline::render
{
namespace
{
using Family = SoundLayout::Family;

/** A kind of file that is a row of chunks, each a name, a size and so many bytes. */
struct Container
{
    std::string_view mark; // of the file
    Family family;
    int firstChunk, nameBytes, sizeBytes;
    bool bigEndian;
    int counted; // bytes of a chunk's own head that its size counts
    int step;    // a chunk begins at a multiple of this
    std::string_view sound;
};

constexpr std::array<Container, 6> containers { {
    { "RIFF", Family::riff, 12, 4, 4, false, 0, 2, "data" },
    { "RF64", Family::riff, 12, 4, 4, false, 0, 2, "data" },
    { "RIFX", Family::other, 12, 4, 4, true, 0, 2, "data" },
    { "riff", Family::other, 40, 16, 8, false, 24, 8, "data" }, // W64
    { "FORM", Family::aiff, 12, 4, 4, true, 0, 2, "SSND" },
    { "caff", Family::other, 8, 4, 8, true, 0, 1, "data" },
} };

// What stays true of the sound at another pitch. Peaks and checksums do not.
constexpr std::array<std::string_view, 14> riffNotes { "LIST", "bext", "iXML", "axml", "_PMX", "cart", "cue ",
                                                       "plst", "smpl", "inst", "acid", "id3 ", "ID3 ", "DISP" };
constexpr std::array<std::string_view, 13> aiffNotes { "NAME", "AUTH", "(c) ", "ANNO", "COMT", "MARK", "INST",
                                                       "MIDI", "APPL", "ID3 ", "basc", "trns", "cate" };

std::string bytesAt (juce::InputStream& in, juce::int64 place, int count)
{
    std::string bytes (static_cast<std::size_t> (count), '\0');
    in.setPosition (place);
    bytes.resize (static_cast<std::size_t> (std::max (0, in.read (bytes.data(), count))));
    return bytes;
}

constexpr juce::int64 longest = juce::int64 { 1 } << 60; // bytes; far beyond any file, and sums of it fit 64 bits

// Never less than -1 nor more than `longest`.
juce::int64 numberAt (juce::InputStream& in, juce::int64 place, int bytes, bool bigEndian)
{
    in.setPosition (place);

    if (bytes == 8)
        return std::clamp<juce::int64> (bigEndian ? in.readInt64BigEndian() : in.readInt64(), -1, longest);

    return static_cast<std::uint32_t> (bigEndian ? in.readIntBigEndian() : in.readInt());
}

void writeNumber (juce::OutputStream& out, juce::int64 number, int bytes, bool bigEndian)
{
    if (bytes == 8)
        bigEndian ? out.writeInt64BigEndian (number) : out.writeInt64 (number);
    else
        bigEndian ? out.writeIntBigEndian (static_cast<int> (number)) : out.writeInt (static_cast<int> (number));
}

/** The length of the sound as a header gives it. */
struct LengthField
{
    juce::int64 place = 0;
    int bytes = 0;
    bool bigEndian = false;
    int counted = 0;
    bool mayBeZero = false; // there may be no sound
};

// What programs write that do not know it yet, because they write into a pipe: numbers near 2 or 4 GiB, or near the largest.
bool isStandIn (juce::int64 number, int bytes)
{
    constexpr juce::int64 nearby = 1 << 16, twoGib = 0x80000000, fourGib = 0x100000000;

    return bytes == 8 ? number == longest : std::abs (number - twoGib) < nearby || number > fourGib - nearby;
}

void noteSound (SoundLayout& layout, juce::InputStream& in, juce::int64 start, const LengthField& field)
{
    const auto told = numberAt (in, field.place, field.bytes, field.bigEndian);
    const auto rest = std::max<juce::int64> (0, in.getTotalLength() - start);
    layout.promised = told - field.counted;

    if (layout.promised < 0 || (layout.promised == 0 && ! field.mayBeZero)
        || (layout.promised > rest && isStandIn (told, field.bytes)))
    {
        layout.promised = rest;
        layout.lengthPlace = field.place;
        juce::MemoryOutputStream out;
        writeNumber (out, rest + field.counted, field.bytes, field.bigEndian);
        layout.length.assign (static_cast<const char*> (out.getData()), out.getDataSize());
    }

    layout.present = std::min (rest, layout.promised);
}

void walkChunks (SoundLayout& layout, juce::InputStream& in, const Container& kind)
{
    constexpr std::size_t most = 10000; // far more than any file has, so that walking ends
    const juce::int64 head = kind.nameBytes + kind.sizeBytes, end = in.getTotalLength();
    const auto whole = numberAt (in, kind.nameBytes, kind.sizeBytes, kind.bigEndian) + head - kind.counted;
    const bool isWhole = kind.firstChunk > head && whole >= end; // CAF does not tell
    juce::int64 longLength = 0;                                  // the place of the sound's length in RF64
    bool soundFound = false;

    for (juce::int64 place = kind.firstChunk; place <= end - head && layout.chunks.size() < most;)
    {
        const auto name = bytesAt (in, place, 4);
        const auto start = place + head;
        LengthField field { place + kind.nameBytes, kind.sizeBytes, kind.bigEndian, kind.counted, isWhole };
        auto size = numberAt (in, field.place, field.bytes, field.bigEndian) - field.counted;

        if (name == kind.sound && ! soundFound)
        {
            if (longLength != 0 && size == std::numeric_limits<std::uint32_t>::max())
                field = { longLength, 8, false, 0, false };

            noteSound (layout, in, start, field);
            size = layout.present;
            layout.soundEnd = kind.mark == "riff" ? start + size : 0;
            soundFound = true;
        }
        else if (size < 0 || size > end - start)
            return;
        else
            layout.chunks.push_back ({ name, start, size });

        if (name == "ds64")
            longLength = start + 8;

        place = (start + size + kind.step - 1) / kind.step * kind.step;
    }
}

const Container* containerOf (juce::InputStream& in)
{
    const auto mark = bytesAt (in, 0, 4);
    const auto found =
        std::find_if (containers.begin(), containers.end(), [&] (const Container& c) { return c.mark == mark; });
    return found != containers.end() ? found : nullptr;
}
} // namespace

bool hasSoundMark (juce::InputStream& in)
{
    const auto mark = bytesAt (in, 0, 4);

    if (mark.size() < 4)
        return false;

    const bool framesOfMp3 = mark[0] == '\xff' && (mark[1] & 0xe0) == 0xe0;
    return containerOf (in) != nullptr || framesOfMp3 || mark == ".snd" || mark == "dns." || mark == "fLaC"
           || mark == "OggS" || mark.substr (0, 3) == "ID3";
}

SoundLayout readLayout (juce::InputStream& in)
{
    SoundLayout layout;
    const auto mark = bytesAt (in, 0, 4);

    if (const auto* container = containerOf (in))
    {
        layout.family = container->family;
        walkChunks (layout, in, *container);
    }
    else if (mark == ".snd" || mark == "dns.") // AU, a head and the sound
    {
        const bool bigEndian = mark == ".snd";
        noteSound (layout, in, numberAt (in, 4, 4, bigEndian), { 8, 4, bigEndian, 0, false });
    }

    return layout;
}

bool endsAsItShould (juce::InputStream& in)
{
    constexpr int longestPage = 65307, head = 27; // bytes
    constexpr char last = 4;

    if (bytesAt (in, 0, 4) != "OggS")
        return true;

    const auto end = in.getTotalLength();
    const auto tail = bytesAt (in, std::max<juce::int64> (0, end - longestPage), longestPage);
    const auto place = tail.rfind ("OggS");

    if (place == std::string::npos || tail.size() - place < head)
        return false;

    const auto page = std::string_view (tail).substr (place);
    const auto sizes = page.substr (head, static_cast<unsigned char> (page[head - 1]));
    const auto length =
        std::accumulate (sizes.begin(), sizes.end(), head + sizes.size(),
                         [] (std::size_t sum, char size) { return sum + static_cast<unsigned char> (size); });
    return (page[5] & last) != 0 && page.size() >= length;
}

bool mp3HasTable (juce::InputStream& in)
{
    const auto tag = bytesAt (in, 0, 10); // its length is in four bytes of seven bits
    juce::int64 start = 0;

    if (tag.size() == 10 && tag.substr (0, 3) == "ID3")
        for (const auto byte : tag.substr (6))
            start = start * 128 + (byte & 127);

    const auto frame = bytesAt (in, start == 0 ? 0 : start + 10, 64);
    const auto has = [&] (const char* mark) { return frame.find (mark) != std::string::npos; };
    return has ("Xing") || has ("Info") || has ("VBRI");
}

void appendNotes (const SoundLayout& layout, juce::InputStream& from, juce::OutputStream& to, bool intoRf64)
{
    const bool bigEndian = layout.family == Family::aiff;

    const auto isKept = [&] (const std::string& name)
    {
        const auto isIn = [&] (const auto& names)
        { return std::find (names.begin(), names.end(), name) != names.end(); };
        return layout.family == Family::riff ? isIn (riffNotes) : bigEndian && isIn (aiffNotes);
    };

    const auto padToEven = [&]
    {
        if (to.getPosition() % 2 != 0)
            to.writeByte (0);
    };

    for (const auto& chunk : layout.chunks)
        if (isKept (chunk.name))
        {
            padToEven();
            to.write (chunk.name.data(), chunk.name.size());
            writeNumber (to, chunk.size, 4, bigEndian);
            from.setPosition (chunk.start);
            to.writeFromInputStream (from, chunk.size);
        }

    padToEven();
    const auto length = to.getPosition() - 8;
    to.setPosition (intoRf64 ? 20 : 4);
    writeNumber (to, length, intoRf64 ? 8 : 4, bigEndian);
}
} // namespace tarvelline::render
