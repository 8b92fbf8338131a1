// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/Recording.h"

#include "render/options/Errors.h"
#include "render/sound/FlacFormat.h"

namespace tarvelline::render
{
std::unique_ptr<juce::AudioFormatReader> openRecording (const juce::File& file)
{
    const auto& path = file.getFullPathName();

    if (! file.existsAsFile())
        throw UserError ("IN: there is no file " + path);

    juce::AudioFormatManager formats;
    formats.registerBasicFormats();
    formats.registerFormat (createFlacFormat().release(), false);
    std::unique_ptr<juce::AudioFormatReader> reader (formats.createReaderFor (file));

    if (reader == nullptr || ! (reader->sampleRate > 0.0))
        throw UserError ("IN: " + path + " is no recording that can be read; give a WAV, AIFF or FLAC file");

    if (reader->numChannels < 1 || reader->numChannels > 2)
        throw UserError ("IN: " + path + " has " + juce::String (reader->numChannels)
                         + " channels; give mono or stereo");

    if (reader->lengthInSamples < 1)
        throw UserError ("IN: " + path + " holds no samples");

    // A reader gives silence for what is missing.
    if (file.hasFileExtension ("flac"))
    {
        if (const auto fault = flacFault (file); fault.isNotEmpty())
            throw UserError ("IN: " + path + " " + fault);

        return reader;
    }

    if (reader->bitsPerSample % 8 != 0 || reader->bitsPerSample > 32)
        throw UserError ("IN: " + path + " has samples of " + juce::String (reader->bitsPerSample)
                         + " bits; give 8, 16, 24 or 32");

    const auto bytes = reader->lengthInSamples * reader->numChannels * reader->bitsPerSample / 8;

    if (file.getSize() < bytes)
        throw UserError ("IN: " + path + " is cut off: it should hold "
                         + juce::String (static_cast<double> (reader->lengthInSamples) / reader->sampleRate, 1) + " s");

    return reader;
}
} // namespace tarvelline::render
