// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ProcessorRig.h"

#include <gtest/gtest.h>

#include <cstring>
#include <locale>
#include <random>
#include <set>
#include <tuple>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

struct StateRig : ProcessorRig
{
    std::string save()
    {
        juce::MemoryBlock block ("what stood here before", 22);
        processor.getStateInformation (block);
        return { block.begin(), block.getSize() };
    }

    /** From a copy that ends where the data end, so that a sanitizer sees a byte read past them. */
    void restore (const std::string& block)
    {
        const std::vector<char> exact (block.begin(), block.end());
        processor.setStateInformation (exact.data(), static_cast<int> (exact.size()));
    }

    /** Sets every parameter to a value of its own, and the height. */
    void disturb()
    {
        std::mt19937 random (noiseSeed);

        for (auto* parameter : processor.getParameters())
            parameter->setValueNotifyingHost (std::uniform_real_distribution<float> (0.0f, 1.0f) (random));

        processor.uiHeight = 432;
    }
};

/** The text in the binary envelope. */
std::string envelope (const std::string& text)
{
    const auto size = static_cast<std::uint32_t> (text.size());
    std::string block = "VC2!....";
    std::memcpy (block.data() + 4, &size, sizeof (size));
    return block + text + '\0';
}

// Decimals lost on the way, a parameter left out, a range listener that moves a wheel after it was restored, a wheel that
// sweeps to its place (heard in every undo step), or settings that wait for the next prepare.
TEST (State, ComesBackExactlyAndAtOnce)
{
    StateRig saved, fresh, playing;
    saved.disturb();
    saved.set (midiOptions, 0.0f);
    saved.prepare();
    fresh.restore (saved.save());
    fresh.prepare();
    playing.prepare();
    playing.set (mainWheelPar, 0.9f);
    playing.playBlock (300);
    playing.restore (saved.save());

    for (auto* rig : { &fresh, &playing })
    {
        EXPECT_EQ (rig->save(), saved.save());
        EXPECT_FALSE (rig->processor.midiTransposeMode);

        for (const auto wheel : { &TarvellineAudioProcessor::mainWheel, &TarvellineAudioProcessor::timbWheel })
            for (const auto field :
                 { &WheelRecord::point, &WheelRecord::follower, &WheelRecord::velocity, &WheelRecord::span,
                   &WheelRecord::pull, &WheelRecord::acceleration, &WheelRecord::slewStep })
                EXPECT_EQ (rig->processor.*wheel.*field, saved.processor.*wheel.*field);
    }

    saved.set (midiOptions, 0.3f);
    fresh.restore (saved.save());
    EXPECT_TRUE (fresh.processor.midiTransposeMode) << "what is not 0 is on";
}

// Numbers with a decimal comma, which a host or another plug-in may have asked of the whole process: no reader finds their
// decimals.
TEST (State, KnowsNoLocale)
{
    struct Comma : std::numpunct<char>
    {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };

    StateRig saved, restored;
    saved.disturb();
    saved.processor.uiHeight = 1234;
    const auto expected = saved.save();
    const auto before = std::locale::global ({ std::locale::classic(), new Comma }); // which the locale owns
    const auto withComma = saved.save();
    restored.restore (withComma);
    std::locale::global (before);
    EXPECT_EQ (withComma, expected);
    EXPECT_EQ (restored.save(), expected);
}

// A state of another version: what it does not name stays, but is announced like the rest; the height alone starts at 0.
TEST (State, LeavesWhatItDoesNotNameAndAnnouncesAll)
{
    StateRig rig, expected;
    rig.disturb();
    expected.disturb();
    expected.set (mixerPar, 0.25f);
    expected.processor.uiHeight = 0;

    const HostEar host (rig.processor);
    rig.restore (envelope ("<?xml version=\"1.0\"?>\n<TARVELLINEVERSION mixerPar=\"0.25\" "
                           "unknown=\"1\"><child/></TARVELLINEVERSION>"));
    EXPECT_EQ (rig.save(), expected.save());
    const auto& told = host.changedParameters;
    EXPECT_EQ (std::set (told.begin(), told.end()).size(), parameterTable.size());
}

// A foreign or damaged block that changes half the settings, reads past its end or crashes.
TEST (State, RefusesWhatIsNotItsOwn)
{
    StateRig rig;
    const auto whole = rig.save();
    rig.disturb();
    const auto before = rig.save();

    std::vector<std::string> blocks { whole.substr (8),
                                      'v' + whole.substr (1),
                                      "VC2!" + std::string (4, '\x80') + whole.substr (8), // a length below zero
                                      "VC2!" + std::string (4, '\0') + whole.substr (8),
                                      envelope ("<TarvellineVersion uiHeight=\"1\" mixerPar=\"0\"/>"),
                                      envelope ("<TARVELLINEVERSIONS uiHeight=\"1\" mixerPar=\"0\"/>"),
                                      envelope ("<OTHER><TARVELLINEVERSION mixerPar=\"0\"/></OTHER>"),
                                      envelope ("<TARVELLINEVERSION mixerPar=\"0\" uiHeight="),
                                      envelope ("<!DOCTYPE x><TARVELLINEVERSION mixerPar=\"0\"/>"),
                                      envelope ("<TARVELLINEVERSION mixerPar=\"&0\"; x=\"\xd7\xcf\"/>") };

    std::string nested; // deeper than a parser that calls itself can go

    for (int depth = 0; depth < 200000; ++depth)
        nested += "<TARVELLINEVERSION mixerPar=\"0\">";

    blocks.push_back (envelope (nested));

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
        rig.restore (block);
        ASSERT_EQ (rig.save(), before) << block;
    }

    rig.processor.setStateInformation (whole.data(), -1);
    EXPECT_EQ (rig.save(), before);
}

// An attribute that is no number reads as 0 and must not become a NaN that stays in the wheels.
TEST (State, ReadsOddNumbersAsZeroOrWithinTheRange)
{
    for (const auto& [text, value, height] : { std::tuple<std::string, float, int> { "nan", 0.0f, 0 },
                                               { "-nan", 0.0f, 0 },
                                               { "inf", 0.0f, 0 },
                                               { "text", 0.0f, 0 },
                                               { "", 0.0f, 0 },
                                               { "7.5", 1.0f, 7 },
                                               { "-3", 0.0f, -3 },
                                               { "1e300", 1.0f, 1 },
                                               { "1e400", 1.0f, 1 },
                                               { "-1e400", 0.0f, -1 },
                                               { "0.25 or so", 0.25f, 0 } })
    {
        SCOPED_TRACE (text);
        StateRig rig;
        rig.prepare();
        rig.disturb();
        rig.restore (envelope ("<TARVELLINEVERSION uiHeight=\"" + text + "\" mainWheelPar=\"" + text + "\"/>"));
        EXPECT_EQ (rig.get (mainWheelPar), value);
        EXPECT_EQ (rig.processor.uiHeight, height);
        rig.playBlock (100);
        EXPECT_TRUE (std::isfinite (rig.processor.mainWheel.point));
    }
}
} // namespace
} // namespace tarvelline::test
