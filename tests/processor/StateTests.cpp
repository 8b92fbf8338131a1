// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ProcessorRig.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

juce::MemoryBlock save (ProcessorRig& rig)
{
    juce::MemoryBlock block;
    rig.processor.getStateInformation (block);
    return block;
}

/** From a copy that ends where the data end, so that a sanitizer sees a byte read past them. */
void restore (ProcessorRig& rig, const void* data, std::size_t size)
{
    const std::vector<char> exact (static_cast<const char*> (data), static_cast<const char*> (data) + size);
    rig.processor.setStateInformation (exact.data(), static_cast<int> (size));
}

/** The text in the binary envelope. */
std::string envelope (const std::string& text)
{
    const auto size = static_cast<std::uint32_t> (text.size());
    std::string block = "VC2!....";
    std::memcpy (block.data() + 4, &size, sizeof (size));
    return block + text + '\0';
}

void restore (ProcessorRig& rig, const std::string& block) { restore (rig, block.data(), block.size()); }

std::vector<float> values (ProcessorRig& rig)
{
    std::vector<float> result;

    for (auto* parameter : rig.processor.getParameters())
        result.push_back (parameter->getValue());

    return result;
}

/** Sets every parameter to a value of its own, and the height. */
void disturb (ProcessorRig& rig)
{
    std::mt19937 random (noiseSeed);

    for (auto* parameter : rig.processor.getParameters())
        parameter->setValueNotifyingHost (std::uniform_real_distribution<float> (0.0f, 1.0f) (random));

    rig.processor.uiHeight = 432;
}

// Decimals lost on the way, a parameter left out, or a range listener that moves a wheel after it was restored.
TEST (State, ComesBackExactly)
{
    ProcessorRig first, second;
    first.prepare();
    second.prepare();
    disturb (first);
    const auto block = save (first);
    restore (second, block.getData(), block.getSize());

    EXPECT_EQ (values (second), values (first));
    EXPECT_EQ (second.processor.uiHeight, 432);

    juce::MemoryBlock used ("what stood here before", 22);
    second.processor.getStateInformation (used);
    EXPECT_EQ (used, block);
}

// A state of another version: what it does not name stays, but is announced like the rest; the height alone starts at 0.
TEST (State, LeavesWhatItDoesNotNameAndAnnouncesAll)
{
    ProcessorRig rig;
    disturb (rig);
    auto expected = values (rig);
    const HostEar host (rig.processor);
    restore (rig, envelope ("<?xml version=\"1.0\"?>\n<TARVELLINEVERSION mixerPar=\"0.25\" "
                            "unknown=\"1\"><child/></TARVELLINEVERSION>"));

    expected[12] = 0.25f;
    EXPECT_EQ (values (rig), expected);
    EXPECT_EQ (rig.processor.uiHeight, 0);
    EXPECT_EQ (host.changedParameters, (std::vector { 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14 }));
}

// A foreign or damaged block that changes half the settings, reads past its end or crashes.
TEST (State, RefusesWhatIsNotItsOwn)
{
    ProcessorRig rig;
    const auto own = save (rig);
    const std::string whole (own.begin(), own.getSize());
    const auto text = whole.substr (8, whole.size() - 9);
    disturb (rig);
    rig.prepare();
    const auto before = values (rig);

    std::vector<std::string> blocks { "",
                                      text,
                                      std::string (9, '\0'),
                                      "VC2!",
                                      envelope (""),
                                      envelope ("<TarvellineVersion uiHeight=\"1\" mixerPar=\"0\"/>"),
                                      envelope ("<TARVELLINEVERSIONS uiHeight=\"1\" mixerPar=\"0\"/>"),
                                      envelope ("<OTHER uiHeight=\"1\" mixerPar=\"0\"/>"),
                                      envelope ("<OTHER><TARVELLINEVERSION mixerPar=\"0\"/></OTHER>"),
                                      envelope ("not a state"),
                                      envelope ("<TARVELLINEVERSION mixerPar=\"0\" uiHeight=") };

    blocks.push_back (whole);
    blocks.back()[0] = 'v';

    for (const char sign : { '\x80', '\x00' }) // a length below zero, and one of nothing
    {
        blocks.push_back (whole);
        std::fill_n (blocks.back().begin() + 4, 4, sign);
    }

    for (std::size_t length = 0; length + 1 < whole.size(); ++length) // cut before the last bracket or earlier
        blocks.push_back (whole.substr (0, length));

    std::mt19937 random (noiseSeed);

    for (int i = 0; i < 200; ++i) // noise behind the magic
    {
        blocks.push_back (whole.substr (0, 8));
        std::generate_n (std::back_inserter (blocks.back()), 300, [&] { return static_cast<char> (random()); });
    }

    for (auto& block : blocks)
    {
        restore (rig, block);
        ASSERT_EQ (values (rig), before) << block;
        ASSERT_EQ (rig.processor.uiHeight, 432) << block;
    }

    rig.processor.setStateInformation (nullptr, 0);
    rig.processor.setStateInformation (whole.data(), -1);
    EXPECT_EQ (values (rig), before);
}

// An attribute that is no number reads as 0 and must not become a NaN that stays in the wheels.
TEST (State, ReadsOddNumbersAsZeroOrWithinTheRange)
{
    struct Row
    {
        const char* text;
        float value;
        int height;
    };

    for (const auto& [text, value, height] :
         { Row { "nan", 0, 0 }, Row { "-nan", 0, 0 }, Row { "inf", 0, 0 }, Row { "-inf", 0, 0 }, Row { "text", 0, 0 },
           Row { "", 0, 0 }, Row { "7.5", 1, 7 }, Row { "-3", 0, -3 }, Row { "1e300", 1, 1 },
           Row { "0.25 or so", 0.25f, 0 }, Row { "12px", 1, 12 } })
    {
        SCOPED_TRACE (text);
        ProcessorRig rig;
        rig.prepare();
        disturb (rig);
        const auto attribute = [text] (const char* name) { return std::string (" ") + name + "=\"" + text + "\""; };
        restore (rig, envelope ("<TARVELLINEVERSION" + attribute ("uiHeight") + attribute (mainWheelPar)
                                + attribute (mixerPar) + "/>"));
        EXPECT_EQ (rig.parameter (mainWheelPar).getValue(), value);
        EXPECT_EQ (rig.parameter (mixerPar).getValue(), value);
        EXPECT_EQ (rig.processor.uiHeight, height);
        rig.playBlock (100);
        EXPECT_TRUE (std::isfinite (rig.processor.mainWheel.point));
    }
}

// A restored wheel that sweeps to its place (heard in every undo step), or settings that wait for the next prepare.
TEST (State, IsHeardAtOnce)
{
    ProcessorRig saved, fresh, playing;
    disturb (saved);
    saved.set (midiOptions, 0.0f);
    const auto block = save (saved);
    saved.prepare();

    restore (fresh, block.getData(), block.getSize()); // before prepare
    fresh.prepare();
    playing.prepare();
    playing.set (mainWheelPar, 0.9f);
    playing.playBlock (300);
    restore (playing, block.getData(), block.getSize());

    for (auto* rig : { &fresh, &playing })
    {
        for (const auto wheel : { &TarvellineAudioProcessor::mainWheel, &TarvellineAudioProcessor::timbWheel })
        {
            auto &actual = rig->processor.*wheel, &expected = saved.processor.*wheel;
            EXPECT_EQ (actual.point, expected.point);
            EXPECT_EQ (actual.follower, expected.point);
            EXPECT_EQ (actual.velocity, 0.0);
            EXPECT_EQ (actual.span, expected.span);
            EXPECT_EQ (actual.pull, expected.pull);
            EXPECT_EQ (actual.acceleration, expected.acceleration);
            EXPECT_EQ (actual.slewStep, expected.slewStep);
        }

        EXPECT_FALSE (rig->processor.midiTransposeMode);
    }
}
} // namespace
} // namespace tarvelline::test
