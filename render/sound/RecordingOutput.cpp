// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/RecordingOutput.h"

#include "render/options/Errors.h"
#include "render/sound/FlacFormat.h"

namespace tarvelline::render
{
namespace
{
std::unique_ptr<juce::AudioFormat> formatFor (const juce::File& target)
{
    if (target.hasFileExtension ("wav"))
        return std::make_unique<juce::WavAudioFormat>();

    if (target.hasFileExtension ("aif;aiff"))
        return std::make_unique<juce::AiffAudioFormat>();

    if (target.hasFileExtension ("flac"))
        return createFlacFormat();

    throw UserError ("OUT: " + target.getFullPathName() + " should end in .wav, .aif, .aiff or .flac");
}

// The notes in a file, for another of the same kind: the kinds name theirs differently. A writer believes how many of each
// there are said to be, and would make room for billions that a damaged file does not hold.
juce::StringPairArray notesFor (const juce::AudioFormat& format, const juce::AudioFormatReader& source)
{
    const auto& notes = source.metadataValues;

    if (format.getFormatName() != source.getFormatName())
        return {};

    for (const auto count : { "NumCuePoints", "NumCueLabels", "NumCueNotes", "NumCueRegions", "NumSampleLoops" })
        if (! juce::isPositiveAndNotGreaterThan (notes[count].getLargeIntValue(), notes.size()))
            return {};

    return notes;
}
} // namespace

int sampleBits (const juce::File& target, int asked)
{
    const auto format = formatFor (target);
    const auto possible = format->getPossibleBitDepths();

    if (asked != 0 && ! possible.contains (asked))
        throw UserError ("--bits " + juce::String (asked) + ": a " + format->getFormatName() + " has 16 or 24 bits");

    return asked != 0 ? asked : possible.getLast();
}

RecordingOutput::RecordingOutput (const juce::File& target, int bits, const juce::AudioFormatReader& source)
    : file ("OUT", target), quantiser (bits)
{
    const auto format = formatFor (target);
    auto stream = file.open();
    writer.reset (format->createWriterFor (stream.get(), source.sampleRate, source.numChannels, bits,
                                           notesFor (*format, source), 0));

    if (writer == nullptr)
        throw UserError ("OUT: a " + format->getFormatName() + " cannot have " + juce::String (source.sampleRate)
                         + " Hz with " + juce::String (bits) + " bits");

    static_cast<void> (stream.release()); // to the writer
}

void RecordingOutput::append (const juce::AudioBuffer<float>& buffer, int start, int count)
{
    const bool written = writer->isFloatingPoint()
                             ? writer->writeFromAudioSampleBuffer (buffer, start, count)
                             : count == 0 || writer->write (quantiser.convert (buffer, start, count), count);
    file.check();

    if (! written)
        throw UserError ("OUT: cannot write on after " + juce::String (samplesWritten) + " samples; is it too long?");

    samplesWritten += count;
}

void RecordingOutput::finish()
{
    writer.reset();
    file.check();
}
} // namespace tarvelline::render
