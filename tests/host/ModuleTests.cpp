// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/Parameters.h"
#include "tests/support/MessagePump.h"
#include "tests/support/Meters.h"
#include "tests/support/Signals.h"
#include "tests/support/VectorCase.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

namespace tarvelline::test
{
namespace
{
constexpr auto modulePath = TARVELLINE_MODULE;

juce::PluginDescription describe()
{
    juce::OwnedArray<juce::PluginDescription> found;
    juce::VST3PluginFormat().findAllTypesForFile (found, modulePath);

    if (found.size() != 1)
        throw std::runtime_error (std::string (modulePath) + ": not a module with one effect");

    return *found[0];
}

/** The finished module in a host. */
struct Host
{
    explicit Host (double sampleRate = 44100.0, int channelCount = 2) : rate (sampleRate), channels (channelCount)
    {
        juce::VST3PluginFormat format;
        juce::String error;
        module = format.createInstanceFromDescription (describe(), rate, 512, error);

        if (module == nullptr)
            throw std::runtime_error (error.toStdString());

        const auto set = juce::AudioChannelSet::canonicalChannelSet (channels);
        module->setBusesLayout ({ { set }, { set } });
        module->prepareToPlay (rate, 512);
    }

    ~Host() { module->releaseResources(); }

    juce::AudioProcessorParameter& parameter (const juce::String& name)
    {
        for (auto* candidate : module->getParameters())
            if (candidate->getName (100) == name)
                return *candidate;

        throw std::runtime_error (name.toStdString() + ": no such parameter");
    }

    void set (const juce::String& name, float normalised) { parameter (name).setValue (normalised); }

    /** Plays the signal through all channels, and returns what the first one gave. */
    Samples play (const Samples& input, int blockSize = 512)
    {
        Samples output (input.size());

        for (int start = 0, size; start < static_cast<int> (input.size()); start += size)
        {
            size = std::min (blockSize, static_cast<int> (input.size()) - start);
            juce::AudioBuffer<float> block (channels, size);

            for (int c = 0; c < channels; ++c)
                block.copyFrom (c, 0, input.data() + start, size);

            module->processBlock (block, midi);
            midi.clear();
            std::copy_n (block.getReadPointer (0), size, output.begin() + start);
        }

        return output;
    }

    /** The interval in cents by which a tone comes out higher, once the wheel has come to rest. */
    double heardCents()
    {
        const auto output = play (sine (440.0, rate, 4.0, 0.5));
        return centsBetween (440.0, frequencyHz (std::span (output).last (32768), rate));
    }

    std::unique_ptr<juce::AudioPluginInstance> module;
    juce::MidiBuffer midi;
    double rate;
    int channels;
};

// What a host's plug-in list shows, and what it sorts by.
TEST (Module, IntroducesItself)
{
    const auto description = describe();
    EXPECT_EQ (description.name, "Tarvelline");
    EXPECT_EQ (description.manufacturerName, "Vorntaal");
    EXPECT_EQ (description.category, "Fx|Pitch Shift");
    EXPECT_EQ (description.version, "5.0.2");
    EXPECT_FALSE (description.isInstrument);
    EXPECT_EQ (description.numInputChannels, 2);
    EXPECT_EQ (description.numOutputChannels, 2);

    const Host host;
    ASSERT_EQ (host.module->getBusCount (true), 1);
    ASSERT_EQ (host.module->getBusCount (false), 1);
    EXPECT_EQ (host.module->getBus (true, 0)->getName(), "Input");
    EXPECT_EQ (host.module->getBus (false, 0)->getName(), "Output");
    EXPECT_TRUE (host.module->acceptsMidi());
}

// An order, a name or a default that the wrapper changes on the way; automation lanes hang on them.
TEST (Module, ListsItsParametersInOrderAndBypassAfterThem)
{
    const std::vector<std::pair<juce::String, float>> expected { { "Pitch Range", 0.6f },
                                                                 { "Timbre Range", 0.6f },
                                                                 { "Pitch", 0.5f },
                                                                 { "Pitch Gravity", 0.5f },
                                                                 { "Pitch Inertia", 0.5f },
                                                                 { "Pitch Smooth", 0 },
                                                                 { "Pitch Snap", 1 },
                                                                 { "Timbre", 0.5f },
                                                                 { "Timbre Gravity", 0.5f },
                                                                 { "Timbre Inertia", 0.5f },
                                                                 { "Timbre Smooth", 0 },
                                                                 { "Timbre Snap", 1 },
                                                                 { "Mixer", 1 },
                                                                 { "Toggle Size", 0 },
                                                                 { "Toggle MIDI", 1 },
                                                                 { "Bypass", 0 } };
    const Host host;
    auto& list = host.module->getParameters();
    ASSERT_GE (list.size(), static_cast<int> (expected.size()));

    for (std::size_t i = 0; i < expected.size(); ++i)
    {
        auto* parameter = list[static_cast<int> (i)];
        EXPECT_EQ (parameter->getName (100), expected[i].first);
        EXPECT_FLOAT_EQ (parameter->getValue(), expected[i].second) << expected[i].first;
        EXPECT_FLOAT_EQ (parameter->getDefaultValue(), expected[i].second) << expected[i].first;
        EXPECT_TRUE (parameter->isAutomatable());
    }

    for (int i = static_cast<int> (expected.size()); i < list.size(); ++i)
        ASSERT_FALSE (list[i]->isAutomatable()) << list[i]->getName (100);
}

struct RateAndLatency
{
    double rate;
    int latency; // samples
};

class ModuleAtRate : public testing::TestWithParam<RateAndLatency>
{
};

// A latency that the host does not learn of, so that tracks drift apart; bypass that is not late by as much; a block of
// nothing, with which hosts hand over parameters; noise that drives something to infinity, in mono and stereo.
TEST_P (ModuleAtRate, ReportsItsLatencyAndStaysFinite)
{
    const auto [rate, latency] = GetParam();

    for (const auto channels : { 1, 2 })
    {
        Host host (rate, channels);
        ASSERT_EQ (host.module->getTotalNumInputChannels(), channels);
        EXPECT_TRUE (pumpMessagesUntil ([&] { return host.module->getLatencySamples() == latency; }))
            << host.module->getLatencySamples(); // the module's word to its host travels as a message

        host.set ("Pitch", 0.8f);
        host.set ("Toggle Size", 1.0f);
        const auto noise = whiteNoise (30000);
        const auto output = host.play (noise);
        EXPECT_TRUE (allFinite (output));
        EXPECT_GT (levelDb (std::span (output).last (10000)), -30.0);

        juce::AudioBuffer<float> nothing (channels, 0);
        host.module->processBlock (nothing, host.midi);
        EXPECT_TRUE (allFinite (host.play (noise)));

        host.set ("Bypass", 1.0f);
        host.play (silence (latency));
        const auto bypassed = host.play (impulse (latency + 100, 10));
        EXPECT_TRUE (sameBits (bypassed, impulse (latency + 100, latency + 10)));
    }
}

INSTANTIATE_TEST_SUITE_P (Rates, ModuleAtRate,
                          testing::Values (RateAndLatency { 44100.0, 2048 }, RateAndLatency { 48000.0, 2048 },
                                           RateAndLatency { 88200.0, 4096 }, RateAndLatency { 96000.0, 4096 },
                                           RateAndLatency { 192000.0, 8192 }),
                          [] (const auto& row) { return std::to_string (static_cast<int> (row.param.rate)); });

// A parameter, a bend or a note that does not get through the wrapper.
TEST (Module, IsPlayedByParametersBendsAndNotes)
{
    // The engine's hops are whole samples: 256 in for 215, 181 and 128 out.
    const auto cents = [] (int hop) { return 1200.0 * std::log2 (256.0 / hop); };

    Host wheel, bend, note;
    wheel.set ("Pitch", 0.75f); // of 12 semitones
    EXPECT_NEAR (wheel.heardCents(), cents (215), 0.1);
    wheel.set ("Pitch Range", 0.8f); // 24: the wheel moves, the shift stays
    EXPECT_NEAR (wheel.heardCents(), cents (215), 0.1);

    bend.midi.addEvent (juce::MidiMessage::pitchWheel (1, 16383), 0);
    EXPECT_NEAR (bend.heardCents(), cents (181), 0.1);

    note.midi.addEvent (juce::MidiMessage::noteOn (1, 63, 1.0f), 0);
    EXPECT_NEAR (note.heardCents(), cents (215), 0.1);
}

// Settings that a project loses, or that the host's own picture of the parameters does not follow.
TEST (Module, StateComesBackThroughTheHost)
{
    Host first, second;
    first.set ("Pitch", 0.75f);
    first.set ("Mixer", 0.25f);
    first.set ("Pitch Smooth", 0.125f);
    first.play (silence (512));
    juce::MemoryBlock state, again;
    first.module->getStateInformation (state);
    second.module->setStateInformation (state.getData(), static_cast<int> (state.getSize()));
    second.play (silence (512));
    second.module->getStateInformation (again);

    EXPECT_EQ (state, again);

    for (int i = 0; i < 16; ++i)
        EXPECT_FLOAT_EQ (second.module->getParameters()[i]->getValue(), first.module->getParameters()[i]->getValue())
            << i;

    second.set ("Mixer", 1.0f);
    EXPECT_NEAR (second.heardCents(), 1200.0 * std::log2 (256.0 / 215.0), 0.1);
}

// A static variable: two tracks that share a wheel.
TEST (Module, InstancesAreIndependent)
{
    Host up, still;
    const auto input = whiteNoise (30000);
    Host alone;
    const auto expected = alone.play (input);
    up.set ("Pitch", 1.0f);
    up.midi.addEvent (juce::MidiMessage::noteOn (1, 70, 1.0f), 0);
    Samples output;

    for (int start = 0; start < 30000; start += 1000)
    {
        const Samples part (input.begin() + start, input.begin() + start + 1000);
        up.play (part);
        const auto played = still.play (part);
        output.insert (output.end(), played.begin(), played.end());
    }

    EXPECT_TRUE (sameBits (output, expected));
}

class ModuleGolden : public testing::TestWithParam<const char*>
{
};

// The wrapper between host and processor: an automation point a block late, an event lost or out of order.
TEST_P (ModuleGolden, SoundsAsExpected)
{
    const auto golden = VectorCase::load (TARVELLINE_GOLDEN_DIR, GetParam());
    Host host (golden.rate, golden.channels);
    VectorTarget target;
    target.setParameter = [&] (const std::string& id, float value)
    {
        const auto row =
            std::find_if (parameterTable.begin(), parameterTable.end(), [&] (auto& r) { return r.id == id; });
        host.module->getParameters()[static_cast<int> (row - parameterTable.begin())]->setValue (value);
    };
    target.prepare = [&] (double rate, int block)
    {
        // Parameters reach the processor with the next block, here one of no samples.
        juce::AudioBuffer<float> nothing (golden.channels, 0);
        host.module->processBlock (nothing, host.midi);
        host.module->releaseResources();
        host.module->prepareToPlay (rate, block);
    };
    target.process = [&] (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi, bool bypassed)
    {
        host.set ("Bypass", bypassed ? 1.0f : 0.0f);
        host.module->processBlock (buffer, midi);
    };
    const auto run = golden.play (target);
    const auto agreement = compareAudio (run.output, golden.expected, golden.channels, golden.rate);
    EXPECT_GE (agreement.overallDb, 75.0) << "first difference at sample " << agreement.firstDifference;
    EXPECT_GE (agreement.worstPieceDb, 50.0) << "from sample " << agreement.worstPieceStart;
    EXPECT_GE (agreement.medianPieceDb, 95.0);
}

INSTANTIATE_TEST_SUITE_P (Cases, ModuleGolden,
                          testing::Values ("wheel_up_seven", "voice_timbre", "three_voices", "bend_and_notes",
                                           "rate_96k"),
                          [] (const auto& row) { return std::string (row.param); });
} // namespace
} // namespace tarvelline::test
