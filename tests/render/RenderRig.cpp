// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/render/RenderRig.h"

#include <memory>

namespace tarvelline::test
{
void RenderTest::write (const juce::String& name, const Recording& recording) const
{
    file (name).deleteFile();
    const auto count = static_cast<int> (recording.channels.size());
    const auto length = static_cast<int> (recording.channels.front().size());
    juce::AudioBuffer<float> buffer (count, length);

    for (int c = 0; c < count; ++c)
        buffer.copyFrom (c, 0, recording.channels[static_cast<std::size_t> (c)].data(), length);

    juce::WavAudioFormat wav;
    juce::AiffAudioFormat aiff;
    const auto asAiff = name.endsWith (".aiff");
    auto& format = asAiff ? static_cast<juce::AudioFormat&> (aiff) : wav;
    std::unique_ptr<juce::AudioFormatWriter> writer (
        format.createWriterFor (new juce::FileOutputStream (file (name)), recording.rate,
                                static_cast<unsigned int> (count), asAiff ? 24 : 32, {}, 0));
    ASSERT_NE (writer, nullptr);
    ASSERT_TRUE (writer->writeFromAudioSampleBuffer (buffer, 0, length));
}

Recording RenderTest::read (const juce::String& name) const
{
    juce::AudioFormatManager formats;
    formats.registerBasicFormats();
    const std::unique_ptr<juce::AudioFormatReader> reader (formats.createReaderFor (file (name)));

    if (reader == nullptr)
        return {};

    const auto length = static_cast<int> (reader->lengthInSamples);
    juce::AudioBuffer<float> buffer (static_cast<int> (reader->numChannels), length);
    reader->read (&buffer, 0, length, 0, true, true);
    Recording recording { reader->sampleRate, {} };

    for (int c = 0; c < buffer.getNumChannels(); ++c)
        recording.channels.emplace_back (buffer.getReadPointer (c), buffer.getReadPointer (c) + length);

    return recording;
}

void RenderTest::writeMidi (const juce::String& name, std::initializer_list<std::pair<int, juce::MidiMessage>> messages,
                            double secondsPerBeat, int laterTick, double laterSecondsPerBeat) const
{
    const auto tempo = [] (double seconds)
    { return juce::MidiMessage::tempoMetaEvent (juce::roundToInt (seconds * 1.0e6)); };
    juce::MidiMessageSequence tempi, notes;
    tempi.addEvent (tempo (secondsPerBeat), 0.0);
    tempi.addEvent (tempo (laterSecondsPerBeat), laterTick);

    for (const auto& [tick, message] : messages)
        notes.addEvent (message, tick);

    juce::MidiFile midi;
    midi.setTicksPerQuarterNote (480);
    midi.addTrack (tempi);
    midi.addTrack (notes);
    juce::FileOutputStream stream (file (name));
    ASSERT_TRUE (midi.writeTo (stream));
}

Outcome RenderTest::shell (const juce::String& command) const
{
    juce::ChildProcess child;
    const auto script = "cd '" + folder.getFullPathName() + "' || exit; RENDER='" TARVELLINE_RENDER "'; " + command;

    if (! child.start (juce::StringArray { "/bin/sh", "-c", script }))
        return {};

    const auto text = child.readAllProcessOutput();
    child.waitForProcessToFinish (-1);
    return { static_cast<int> (child.getExitCode()), text };
}

Outcome RenderTest::run (const juce::String& arguments) const { return shell ("exec \"$RENDER\" " + arguments); }

Samples RenderTest::render (const juce::String& options) const
{
    const auto outcome = run ("in.wav out.wav " + options);
    EXPECT_EQ (outcome.exitCode, 0) << outcome.text;
    const auto made = read ("out.wav");
    return made.channels.empty() ? Samples() : made.channels.front();
}

juce::StringArray RenderTest::filesThere() const
{
    juce::StringArray names;

    for (const auto& found : folder.findChildFiles (juce::File::findFilesAndDirectories, true))
        names.add (found.getRelativePathFrom (folder));

    names.sort (false);
    return names;
}
} // namespace tarvelline::test
