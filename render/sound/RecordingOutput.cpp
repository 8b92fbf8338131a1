// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/RecordingOutput.h"

#include "render/options/Errors.h"
#include "render/sound/Pipes.h"

#include <algorithm>
#include <cmath>

namespace tarvelline::render
{
namespace
{
constexpr int bitsOfFloat = 32;

int encoding (const FileKind& kind, int bits)
{
    return kind.isLossy() ? 0 : bits == 16 ? SF_FORMAT_PCM_16 : bits == 24 ? SF_FORMAT_PCM_24 : SF_FORMAT_FLOAT;
}

// A WAV is RF64 when it would be too long, and tells what its channels are for when they are more than two.
int container (const FileKind& kind, int channels, juce::int64 bytes)
{
    constexpr juce::int64 longest = 0xf0000000; // bytes; the notes need some room

    return kind.format != SF_FORMAT_WAV ? kind.format
           : bytes > longest            ? SF_FORMAT_RF64
           : channels > 2               ? SF_FORMAT_WAVEX
                                        : SF_FORMAT_WAV;
}

// Set before the first samples.
SoundHandle openKind (SoundTarget& target, const FileKind& kind, SF_INFO info)
{
    auto handle = openSound (target, info);

    if (handle == nullptr)
        return nullptr;

    // It would hold the time of day.
    sf_command (handle.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);

    if (kind.isLossy())
    {
        auto mode = static_cast<int> (SF_BITRATE_MODE_VARIABLE);
        auto quality = kind.quality;
        sf_command (handle.get(), SFC_SET_BITRATE_MODE, &mode, sizeof (mode));
        sf_command (handle.get(), SFC_SET_VBR_ENCODING_QUALITY, &quality, sizeof (quality));
    }

    return handle;
}

// An encoder may end the program over what is no sound: 24 dB above full scale are more than any player has room for.
float encodable (float sample) { return std::isfinite (sample) ? std::clamp (sample, -16.0f, 16.0f) : 0.0f; }

// Some encoders refuse a rate only when they get samples.
juce::String whyNot (const FileKind& kind, const SF_INFO& info)
{
    SoundTarget nowhere { std::make_unique<juce::MemoryOutputStream>() };
    const auto handle = openKind (nowhere, kind, info);
    const std::vector<float> silence (static_cast<std::size_t> (info.channels) * 4096);

    return handle != nullptr && sf_writef_float (handle.get(), silence.data(), 4096) == 4096
               ? juce::String()
               : juce::String::fromUTF8 (sf_strerror (handle.get()));
}
} // namespace

RecordingOutput::RecordingOutput (const juce::File& target, const FileKind& fileKind, int bits, Recording& recording)
    : kind (fileKind), source (recording), sampleBits (bits), isPiped (target == juce::File()),
      file ("OUT", isPiped ? fileForPipe() : target), quantiser (bits)
{
    open();

    if (! keepsNotes())
        takeTexts();
}

void RecordingOutput::open()
{
    const auto channels = static_cast<int> (source.numChannels);
    const auto bytes = source.lengthInSamples * channels * sampleBits / 8;
    SF_INFO info {};
    info.samplerate = static_cast<int> (source.sampleRate);
    info.channels = channels;
    info.format = container (kind, channels, bytes) | encoding (kind, sampleBits);
    isRf64 = (info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_RF64;
    const auto refusal = channels > kind.mostChannels      ? "it has " + juce::String (kind.mostChannels) + " at most"
                         : info.samplerate > kind.mostRate ? "it has " + juce::String (kind.mostRate) + " Hz at most"
                         : bytes > kind.mostBytes          ? juce::String ("it ends at 4 GiB")
                                                           : whyNot (kind, info);

    if (refusal.isNotEmpty())
        throw UserError ("OUT: " + juce::String (kind.inWords) + " of " + juce::String (channels) + " channels at "
                         + juce::String (info.samplerate) + " Hz and "
                         + juce::String (static_cast<double> (source.lengthInSamples) / source.sampleRate, 1)
                         + " s cannot be written: " + refusal);

    out.stream = file.open();
    handle = openKind (out, kind, info);

    if (handle == nullptr)
        throw UserError ("OUT: cannot begin " + file.getTemporaryFile().getFullPathName() + ": "
                         + sf_strerror (nullptr));

    auto map = source.getChannelMap();

    if (! map.empty())
        sf_command (handle.get(), SFC_SET_CHANNEL_MAP_INFO, map.data(), static_cast<int> (map.size() * sizeof (int)));
}

bool RecordingOutput::keepsNotes() const
{
    using Family = SoundLayout::Family;
    const auto family = source.getLayout().family;
    return (family == Family::riff && kind.format == SF_FORMAT_WAV)
           || (family == Family::aiff && kind.format == SF_FORMAT_AIFF);
}

// The name of the program that made it is left out: the library would add its own.
void RecordingOutput::takeTexts()
{
    for (int text = SF_STR_FIRST; text <= SF_STR_LAST; ++text)
        if (const auto* words = source.getText (text); words != nullptr && text != SF_STR_SOFTWARE)
            sf_set_string (handle.get(), text, words);
}

void RecordingOutput::append (const juce::AudioBuffer<float>& buffer, int start, int count)
{
    frames.clear();

    for (int i = start; i < start + count; ++i)
        for (int channel = 0; channel < buffer.getNumChannels(); ++channel)
            frames.push_back (kind.isLossy() ? encodable (buffer.getSample (channel, i))
                                             : buffer.getSample (channel, i));

    const auto written = sampleBits == bitsOfFloat ? sf_writef_float (handle.get(), frames.data(), count)
                                                   : sf_writef_int (handle.get(), quantiser.convert (frames), count);
    file.check();

    if (written != count)
        throw UserError ("OUT: cannot write on after " + juce::String (samplesWritten + written)
                         + " samples: " + sf_strerror (handle.get()));

    samplesWritten += count;
}

void RecordingOutput::finish()
{
    handle.reset();

    if (keepsNotes())
    {
        juce::FileInputStream notes (source.getFile());
        appendNotes (source.getLayout(), notes, *out.stream, isRf64);
    }

    out.stream.reset();
    file.check();
}

void RecordingOutput::commit()
{
    if (isPiped)
        copyToOutput (file.getTemporaryFile());
    else
        file.commit();
}
} // namespace tarvelline::render
