// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/Recording.h"

#include "tools/render/Errors.h"

namespace tarvelline::render
{
std::unique_ptr<juce::AudioFormatReader> openRecording (const juce::File& file)
{
    const auto path = file.getFullPathName();

    if (! file.existsAsFile())
        throw UserError ("IN: there is no file " + path);

    juce::AudioFormatManager formats;
    formats.registerBasicFormats();
    std::unique_ptr<juce::AudioFormatReader> reader (formats.createReaderFor (file));

    if (reader == nullptr || ! (reader->sampleRate > 0.0))
        throw UserError ("IN: " + path + " is no recording that can be read; give a WAV or AIFF file");

    if (reader->numChannels < 1 || reader->numChannels > 2)
        throw UserError ("IN: " + path + " has " + juce::String (reader->numChannels)
                         + " channels; give mono or stereo");

    if (reader->lengthInSamples < 1)
        throw UserError ("IN: " + path + " holds no samples");

    // All that is read here is uncompressed. A reader gives silence for what is missing.
    const auto bytes = reader->lengthInSamples * reader->numChannels * reader->bitsPerSample / 8;

    if (file.getSize() < bytes)
        throw UserError ("IN: " + path + " is cut off: it should hold "
                         + juce::String (static_cast<double> (reader->lengthInSamples) / reader->sampleRate, 1) + " s");

    return reader;
}

WavOutput::WavOutput (const juce::File& target, double sampleRate, int channels, int bits) : temporary (target)
{
    auto opened = std::make_unique<juce::FileOutputStream> (temporary.getFile());

    if (opened->failedToOpen())
        throw UserError ("OUT: cannot write into " + target.getParentDirectory().getFullPathName() + ": "
                         + opened->getStatus().getErrorMessage());

    stream = opened.get();
    writer.reset (juce::WavAudioFormat().createWriterFor (opened.get(), sampleRate,
                                                          static_cast<unsigned int> (channels), bits, {}, 0));

    if (writer == nullptr)
        throw UserError ("OUT: a WAV file cannot have " + juce::String (sampleRate) + " Hz with " + juce::String (bits)
                         + " bits");

    opened.release(); // to the writer
}

void WavOutput::append (const juce::AudioBuffer<float>& buffer, int start, int count)
{
    if (! writer->writeFromAudioSampleBuffer (buffer, start, count) || stream->getStatus().failed())
        failToWrite();

    samplesWritten += count;
}

void WavOutput::finish()
{
    const auto bytes = samplesWritten * writer->getNumChannels() * writer->getBitsPerSample() / 8;

    if (! writer->flush() || stream->getStatus().failed())
        failToWrite();

    writer.reset();

    if (temporary.getFile().getSize() < bytes)
        failToWrite();
}

void WavOutput::commit()
{
    if (! temporary.overwriteTargetFileWithTemporary())
        throw UserError ("OUT: cannot replace " + temporary.getTargetFile().getFullPathName());
}

void WavOutput::failToWrite() const
{
    throw UserError ("OUT: cannot write all of " + temporary.getTargetFile().getFullPathName() + "; is the disk full?");
}
} // namespace tarvelline::render
