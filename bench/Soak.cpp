// SPDX-License-Identifier: GPL-3.0-or-later
// A long session of random playing, faster than real time: up to eight voices, gestures on every parameter, bends, system
// exclusive messages, bypass and blocks of any size. Stops at a sample that is not finite or too loud, or at memory that grows.
#include "processor/TarvellineAudioProcessor.h"
#include "tests/support/Signals.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

#include <malloc.h>

namespace
{
using namespace tarvelline;
using Clock = std::chrono::steady_clock;

constexpr double rate = 48000.0;
constexpr int largestBlock = 1024;               // samples
constexpr float ceiling = 15.85f;                // +24 dBFS
constexpr std::size_t allowedGrowth = 64 * 1024; // bytes, after the first minute
constexpr int minute = 60 * 48000;               // samples
constexpr int sourceLength = minute;             // of partials, noise and clicks, played over and over

/** One instance, its random player and what was measured. */
class Soak
{
public:
    Soak()
    {
        processor.parameters.getParameter (parameterId::midiOptions)->setValueNotifyingHost (0.0f); // voices
        processor.prepareToPlay (rate, largestBlock);
    }

    /** @returns whether all went well */
    bool play (long long samples)
    {
        while (played < samples)
        {
            playBlock();

            if (memoryAtStart == 0 && played >= minute)
                memoryAtStart = mallinfo2().uordblks;

            if (! std::isfinite (loudest) || loudest > ceiling)
                return false;
        }

        return memoryAtStart == 0 || mallinfo2().uordblks <= memoryAtStart + allowedGrowth;
    }

    void report() const
    {
        const auto seconds = static_cast<double> (played) / rate;
        std::printf ("played %.1f min in %.1f s: %.2f %% of one core\n", seconds / 60.0, busy, 100.0 * busy / seconds);
        std::printf ("slowest block %.3f ms for %.3f ms of sound\n", 1.0e3 * slowest, 1.0e3 * slowestLength / rate);
        std::printf ("loudest sample %.1f dBFS at %.2f s\n", 20.0 * std::log10 (static_cast<double> (loudest)),
                     static_cast<double> (loudestAt) / rate);
        std::printf ("memory in use %+lld bytes since the first minute\n",
                     memoryAtStart == 0
                         ? 0ll
                         : static_cast<long long> (mallinfo2().uordblks) - static_cast<long long> (memoryAtStart));
    }

private:
    int upTo (int highest) { return std::uniform_int_distribution (0, highest) (random); }
    float share() { return std::uniform_real_distribution (0.0f, 1.0f) (random); }

    void playBlock()
    {
        const auto size = upTo (largestBlock);
        block.setSize (2, size, false, false, true);

        for (int c = 0; c < 2; ++c)
            for (int i = 0; i < size; ++i)
                block.setSample (c, i, source[static_cast<std::size_t> ((played + i) % sourceLength)]);

        moveParameters();
        fillMidi();

        const auto start = Clock::now();

        if (upTo (199) == 0)
            processor.processBlockBypassed (block, midi);
        else
            processor.processBlock (block, midi);

        measure (std::chrono::duration<double> (Clock::now() - start).count());
        played += size;
    }

    /** Both wheels are swung all the time; now and then some other parameter jumps. Notes sound as voices nine times of ten. */
    void moveParameters()
    {
        for (auto& wheel : wheels)
        {
            wheel.goal = upTo (40) == 0 ? share() : wheel.goal;
            wheel.position += 0.2f * (wheel.goal - wheel.position);
            processor.parameters.getParameter (wheel.id)->setValueNotifyingHost (wheel.position);
        }

        if (upTo (100) == 0)
        {
            const auto& parameters = processor.getParameters();
            parameters[upTo (parameters.size() - 1)]->setValueNotifyingHost (share());
        }

        if (upTo (2000) == 0)
            processor.midiTransposeMode = upTo (9) == 0;
    }

    void fillMidi()
    {
        midi.clear();

        if (upTo (8) == 0)
            midi.addEvent (juce::MidiMessage::noteOn (1, 24 + upTo (72), share()), 0);

        if (upTo (16) == 0)
            midi.addEvent (juce::MidiMessage::noteOff (1, 24 + upTo (72)), 0);

        if (upTo (10) == 0)
            midi.addEvent (juce::MidiMessage::pitchWheel (1 + upTo (15), upTo (16383)), 0);

        if (upTo (500) == 0)
            midi.addEvent (juce::MidiMessage::createSysExMessage (sysex.data(), static_cast<int> (sysex.size())), 0);
    }

    void measure (double seconds)
    {
        busy += seconds;

        if (seconds > slowest)
        {
            slowest = seconds;
            slowestLength = block.getNumSamples();
        }

        for (int c = 0; c < 2; ++c)
            for (int i = 0; i < block.getNumSamples(); ++i)
                if (const auto level = std::abs (block.getSample (c, i)); ! (level <= loudest)) // a NaN too
                {
                    loudest = level;
                    loudestAt = played + i;
                }
    }

    struct Wheel
    {
        const char* id;
        float goal = 0.5f, position = 0.5f;
    };

    const test::Samples source = test::material (sourceLength);
    const std::vector<juce::uint8> sysex = std::vector<juce::uint8> (1024, 0x11);
    std::mt19937 random { test::noiseSeed };
    Wheel wheels[2] = { { parameterId::mainWheelPar }, { parameterId::timbWheelPar } };
    TarvellineAudioProcessor processor;
    juce::AudioBuffer<float> block { 2, largestBlock };
    juce::MidiBuffer midi;
    long long played = 0, loudestAt = 0; // samples
    double busy = 0.0, slowest = 0.0;    // seconds
    int slowestLength = 0;               // samples
    float loudest = 0.0f;
    std::size_t memoryAtStart = 0; // bytes
};
} // namespace

int main (int argc, char** argv)
{
    const auto minutes = argc == 3 && std::strcmp (argv[1], "--minutes") == 0 ? std::atof (argv[2]) : 0.0;

    if (! (minutes > 0.0 && minutes <= 10000.0))
    {
        std::fputs ("usage: soak --minutes NUMBER   (of simulated time, above 0)\n", stderr);
        return 2;
    }

    const juce::ScopedJuceInitialiser_GUI framework;
    Soak soak;
    const auto well = soak.play (static_cast<long long> (minutes * 60.0 * rate));
    soak.report();
    std::puts (well ? "passed" : "FAILED");
    return well ? 0 : 1;
}
