// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/FileKinds.h"

#include "render/options/Errors.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <limits>

namespace tarvelline::render
{
namespace
{
constexpr auto anyLength = std::numeric_limits<juce::int64>::max();
constexpr int anyRate = std::numeric_limits<int>::max();
constexpr juce::int64 fourGib = 0xf0000000; // less what a header and notes take

constexpr std::array<FileKind, 9> kinds { {
    { "wav", "wav", "a WAV file", SF_FORMAT_WAV, 32, 32, 64, anyRate, anyLength, 0.0 },
    { "w64", "w64", "a W64 file", SF_FORMAT_W64, 32, 32, 64, anyRate, anyLength, 0.0 },
    { "aiff", "aiff;aif;aifc", "an AIFF file", SF_FORMAT_AIFF, 32, 24, 64, anyRate, fourGib, 0.0 },
    { "caf", "caf", "a CAF file", SF_FORMAT_CAF, 32, 32, 64, anyRate, anyLength, 0.0 },
    { "au", "au;snd", "an AU file", SF_FORMAT_AU, 32, 32, 64, anyRate, fourGib, 0.0 },
    { "flac", "flac", "a FLAC file", SF_FORMAT_FLAC, 24, 24, 8, anyRate, anyLength, 0.0 },
    { "ogg", "ogg;oga", "an Ogg Vorbis file", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 0, 0, 2, anyRate, anyLength, 0.8 },
    { "opus", "opus", "an Opus file", SF_FORMAT_OGG | SF_FORMAT_OPUS, 0, 0, 2, anyRate, anyLength, 0.5 },
    { "mp3", "mp3", "an MP3 file", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 0, 0, 2, 48000, anyLength, 1.0 },
} };

template <typename Fits>
const FileKind* findKind (Fits fits)
{
    const auto found = std::find_if (kinds.begin(), kinds.end(), fits);
    return found != kinds.end() ? found : nullptr;
}

juce::String listOf (const char* FileKind::*field, const char* before)
{
    juce::StringArray list;

    for (const auto& kind : kinds)
        list.add (before + juce::String (kind.*field).upToFirstOccurrenceOf (";", false, false));

    return list.joinIntoString (", ");
}
} // namespace

const FileKind& fileKind (const juce::File& target, const juce::String& name)
{
    const auto* named = findKind ([&] (const FileKind& kind) { return name == kind.name; });
    const auto* meant = findKind ([&] (const FileKind& kind) { return target.hasFileExtension (kind.endings); });

    if (name.isNotEmpty() && named == nullptr)
        throw UserError ("--format " + name + ": give one of " + listOf (&FileKind::name, ""));

    if (named != nullptr && meant != nullptr && named != meant)
        throw UserError ("--format " + name + ": OUT ends in " + target.getFileExtension()
                         + "; leave one of the two out");

    if (named != nullptr || meant != nullptr)
        return named != nullptr ? *named : *meant;

    if (target == juce::File())
        return kinds.front();

    throw UserError ("OUT: " + target.getFullPathName() + " should end in one of " + listOf (&FileKind::endings, ".")
                     + ", or --format name the kind of file");
}

int sampleBits (const FileKind& kind, int asked)
{
    if (kind.isLossy() && asked != 0)
        throw UserError ("--bits " + juce::String (asked) + ": the samples of " + kind.inWords
                         + " have no bits; leave it out");

    if (kind.isLossy())
        return 32;

    if (asked > kind.mostBits)
        throw UserError ("--bits " + juce::String (asked) + ": " + kind.inWords + " has 16 or 24 bits");

    return asked != 0 ? asked : kind.bits;
}
} // namespace tarvelline::render
