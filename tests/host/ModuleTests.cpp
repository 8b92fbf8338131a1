// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Vst3Client.h"
#include "tests/support/MessagePump.h"
#include "tests/support/Meters.h"
#include "tests/support/ProcessorRig.h"
#include "tests/support/VectorCase.h"
#include "tools/presets/PresetTable.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace tarvelline::test
{
namespace
{
juce::PluginDescription describe()
{
    juce::OwnedArray<juce::PluginDescription> found;
    juce::VST3PluginFormat().findAllTypesForFile (found, TARVELLINE_MODULE);

    if (found.size() != 1)
        throw std::runtime_error (TARVELLINE_MODULE ": not a module with one effect");

    return *found[0];
}

/** The finished module in a host. */
struct Host
{
    explicit Host (double rate = 44100.0, int channels = 2)
    {
        juce::String error;
        module = juce::VST3PluginFormat().createInstanceFromDescription (describe(), rate, 512, error);

        if (module == nullptr)
            throw std::runtime_error (error.toStdString());

        const auto set = juce::AudioChannelSet::canonicalChannelSet (channels);
        module->setBusesLayout ({ { set }, { set } });
        module->prepareToPlay (rate, 512);
    }

    ~Host() { module->releaseResources(); }

    void set (const juce::String& name, float normalised)
    {
        for (auto* parameter : module->getParameters())
            if (parameter->getName (100) == name)
                return parameter->setValue (normalised);

        throw std::runtime_error (name.toStdString() + ": no such parameter");
    }

    Samples play (const Samples& input) { return playThrough (*module, midi, input); }

    std::unique_ptr<juce::AudioPluginInstance> module;
    juce::MidiBuffer midi;
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

    const Host host;
    EXPECT_TRUE (host.module->acceptsMidi());

    for (const auto isInput : { true, false })
    {
        ASSERT_EQ (host.module->getBusCount (isInput), 1);
        EXPECT_EQ (host.module->getBus (isInput, 0)->getName(), isInput ? "Input" : "Output");
        EXPECT_EQ (host.module->getBus (isInput, 0)->getDefaultLayout(), juce::AudioChannelSet::stereo());
    }
}

// An order, a name or a default that changes: automation lanes and saved projects hang on them. Written out a second time
// on purpose.
TEST (Module, ListsItsParametersInOrderAndBypassAfterThem)
{
    const std::pair<const char*, float> expected[] {
        { "Pitch Range", 0.6f },    { "Timbre Range", 0.6f },   { "Pitch", 0.5f },       { "Pitch Gravity", 0.5f },
        { "Pitch Inertia", 0.5f },  { "Pitch Smooth", 0.0f },   { "Pitch Snap", 1.0f },  { "Timbre", 0.5f },
        { "Timbre Gravity", 0.5f }, { "Timbre Inertia", 0.5f }, { "Timbre Smooth", 0 },  { "Timbre Snap", 1.0f },
        { "Mixer", 1.0f },          { "Toggle Size", 0.0f },    { "Toggle MIDI", 1.0f }, { "Bypass", 0.0f }
    };
    constexpr auto count = static_cast<int> (std::size (expected));
    const Host host;
    auto& list = host.module->getParameters();
    ASSERT_GE (list.size(), count);

    for (int i = 0; i < list.size(); ++i)
    {
        ASSERT_EQ (list[i]->isAutomatable(), i < count) << list[i]->getName (100);

        if (i >= count)
            continue;

        EXPECT_EQ (list[i]->getName (100), expected[i].first);
        EXPECT_FLOAT_EQ (list[i]->getValue(), expected[i].second) << expected[i].first;
        EXPECT_FLOAT_EQ (list[i]->getDefaultValue(), expected[i].second) << expected[i].first;
    }
}

// A limit on the wrong side (48000 and 96000 belong below), a latency that the host does not learn of, so that tracks
// drift apart; bypass that is not late by as much; a block of nothing, with which hosts hand over parameters; noise that
// drives something to infinity, in mono and stereo.
TEST (Module, ReportsItsLatencyAndStaysFinite)
{
    for (const auto& [rate, latency] :
         { std::pair { 8000.0, 2048 }, { 48000.0, 2048 }, { 48001.0, 4096 }, { 96000.0, 4096 }, { 96001.0, 8192 } })
        for (const auto channels : { 1, 2 })
        {
            SCOPED_TRACE (testing::Message() << rate << " Hz, " << channels << " channels");
            Host host (rate, channels);
            ASSERT_EQ (host.module->getTotalNumInputChannels(), channels);
            // The module's word to its host travels as a message.
            EXPECT_TRUE (pumpMessagesUntil ([&, n = latency] { return host.module->getLatencySamples() == n; }));

            host.set ("Pitch", 0.8f);
            host.set ("Toggle Size", 1.0f);
            const auto output = host.play (whiteNoise (30000));
            EXPECT_TRUE (allFinite (output));
            EXPECT_GT (levelDb (Signal (output).last (10000)), -30.0);

            juce::AudioBuffer<float> nothing (channels, 0);
            host.module->processBlock (nothing, host.midi);
            EXPECT_TRUE (allFinite (host.play (whiteNoise (30000))));

            host.set ("Bypass", 1.0f);
            host.play (silence (latency));
            EXPECT_TRUE (sameBits (host.play (impulse (latency + 100, 10)), impulse (latency + 100, latency + 10)));
        }
}

double heardCents (Host& host)
{
    const auto output = host.play (sine (440.0, 44100.0, 4.0, 0.5));
    return centsBetween (440.0, frequencyHz (Signal (output).last (32768), 44100.0));
}

// A bend or a change of the range that does not get through the wrapper: the wheel moves with the range, the shift stays.
// The state must bring both into a second host, and into its own picture of the parameters.
TEST (Module, BendsAndStateReachTheSound)
{
    Host first, second;
    const auto upSixCents = 1200.0 * std::log2 (256.0 / 181.0); // in hops of whole samples

    first.midi.addEvent (juce::MidiMessage::pitchWheel (1, 16383), 0);
    EXPECT_NEAR (heardCents (first), upSixCents, 0.1);
    first.set ("Pitch Range", 0.8f); // 24 semitones
    EXPECT_NEAR (heardCents (first), upSixCents, 0.1);

    juce::MemoryBlock state, again;
    first.module->getStateInformation (state);
    second.module->setStateInformation (state.getData(), static_cast<int> (state.getSize()));
    EXPECT_NEAR (heardCents (second), upSixCents, 0.1);
    second.module->getStateInformation (again);
    EXPECT_EQ (state, again);
    EXPECT_FLOAT_EQ (second.module->getParameters()[0]->getValue(), 0.8f);
    EXPECT_FLOAT_EQ (second.module->getParameters()[2]->getValue(), 0.75f);
}

void expectValues (const juce::AudioProcessor& processor, const presets::Preset& preset)
{
    for (std::size_t i = 0; i < preset.values.size(); ++i)
        EXPECT_FLOAT_EQ (processor.getParameters()[static_cast<int> (i)]->getValue(), preset.values[i])
            << preset.name << ": " << parameterTable[i].id;
}

// A preset of another plug-in's class or with a broken container, which hosts refuse; one that a range moves the wheel of.
TEST (FactoryPresets, GiveAHostTheirValuesAndTheirSound)
{
    const auto table = presets::readPresetTable (juce::File (TARVELLINE_PRESET_TABLE));
    ASSERT_GE (table.size(), 10u);

    for (const auto& preset : table)
    {
        Host host;
        juce::MemoryBlock bytes;
        juce::File (TARVELLINE_PRESETS).getChildFile (preset.name + ".vstpreset").loadFileAsData (bytes);
        render::withVst3Client (*host.module, [&] (auto& client) { EXPECT_TRUE (client.setPreset (bytes)); });

        expectValues (*host.module, preset);
        EXPECT_TRUE (preset.name != "Giant" || std::abs (heardCents (host) + 500.0) < 14.0);
    }
}

#ifdef TARVELLINE_LV2_BUNDLE
// A preset that no LV2 host finds, or with another one's values.
TEST (FactoryPresets, AreInTheLv2Bundle)
{
    const juce::File bundle (TARVELLINE_LV2_BUNDLE);
    const auto manifest = bundle.getChildFile ("manifest.ttl").loadFileAsString();
    const auto states = bundle.getChildFile ("presets.ttl").loadFileAsString();

    for (const auto& preset : presets::readPresetTable (juce::File (TARVELLINE_PRESET_TABLE)))
    {
        const auto label = "rdfs:label \"" + preset.name + "\"";
        const auto uri = states.upToFirstOccurrenceOf (label, false, false).fromLastOccurrenceOf ("\n<", false, false);
        const auto text =
            states.fromFirstOccurrenceOf (label, false, false).fromFirstOccurrenceOf ("> \"", false, false);
        EXPECT_TRUE (manifest.contains ("\n<" + uri.upToFirstOccurrenceOf (">", true, false) + " a pset:Preset"));

        juce::MemoryBlock state;
        TarvellineAudioProcessor processor;
        EXPECT_TRUE (state.fromBase64Encoding (text.upToFirstOccurrenceOf ("\"", false, false)));
        processor.setStateInformation (state.getData(), static_cast<int> (state.getSize()));
        expectValues (processor, preset);
    }
}
#endif

class ModuleGolden : public testing::TestWithParam<const char*>
{
};

// The wrapper between host and processor: an automation point a block late, an event lost or out of order.
TEST_P (ModuleGolden, SoundsAsExpected)
{
    const VectorCase golden (GetParam());
    golden.expectSound (*Host (golden.rate, golden.channels).module);
}

INSTANTIATE_TEST_SUITE_P (Cases, ModuleGolden,
                          testing::Values ("wheel_up_seven", "voice_timbre", "three_voices", "bend_and_notes",
                                           "rate_96k"),
                          [] (const auto& row) { return std::string (row.param); });
} // namespace
} // namespace tarvelline::test
