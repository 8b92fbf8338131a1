// SPDX-License-Identifier: GPL-3.0-or-later
// What an open window costs the message thread, in percent of one core: at rest, and while a host automates both wheels
// and the sound follows them. In a real window on a virtual screen; the X server's own work is not counted.
#include "processor/TarvellineAudioProcessor.h"
#include "tests/support/MessagePump.h"
#include "tests/support/VirtualScreen.h"

#include <atomic>
#include <cmath>
#include <ctime>
#include <iomanip>
#include <iostream>

namespace tarvelline::bench
{
namespace
{
constexpr double sampleRate = 44100.0;
constexpr int blockSize = 512;
constexpr double settleSeconds = 1.0, measureSeconds = 5.0;
constexpr double wheelTurnsPerSecond = 0.5; // from end to end and back

struct Scene
{
    const char* name;
    bool fullSize;
    int height;
    bool inMotion;
};

constexpr Scene scenes[] = {
    { "512 x 576, half, at rest", false, 576, false }, { "512 x 576, half, in motion", false, 576, true },
    { "512 x 288, full, at rest", true, 288, false },  { "512 x 288, full, in motion", true, 288, true },
    { "1024 x 576, full, at rest", true, 576, false }, { "1024 x 576, full, in motion", true, 576, true },
};

/** A host's audio thread: silence in real time, and the wheels' automation with every block. */
class AudioThread
{
public:
    AudioThread (TarvellineAudioProcessor& p, bool automateWheels)
        : processor (p), inMotion (automateWheels), thread ([this] { run(); })
    {
    }

    ~AudioThread()
    {
        ended = true;
        thread.join();
    }

private:
    void run()
    {
        juce::AudioBuffer<float> block (2, blockSize);
        juce::MidiBuffer midi;
        auto time = std::chrono::steady_clock::now();

        for (auto count = 0; ! ended; ++count)
        {
            if (inMotion)
                automate (count * blockSize / sampleRate);

            block.clear();
            processor.processBlock (block, midi);
            time += std::chrono::microseconds (static_cast<int> (1.0e6 * blockSize / sampleRate));
            std::this_thread::sleep_until (time);
        }
    }

    void automate (double seconds)
    {
        const auto angle = 2.0 * juce::MathConstants<double>::pi * wheelTurnsPerSecond * seconds;
        const auto value = static_cast<float> (0.5 + 0.45 * std::sin (angle));

        for (const auto* wheel : { parameterId::mainWheelPar, parameterId::timbWheelPar })
            processor.parameters.getParameter (wheel)->setValueNotifyingHost (value);
    }

    TarvellineAudioProcessor& processor;
    const bool inMotion;
    std::atomic<bool> ended { false };
    std::thread thread;
};

double threadSeconds()
{
    timespec time {};
    clock_gettime (CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double> (time.tv_sec) + 1.0e-9 * static_cast<double> (time.tv_nsec);
}

/** Delivers messages, asleep in between as a host's loop is. */
void runMessages (double seconds)
{
    const auto end = juce::Time::getMillisecondCounterHiRes() + 1000.0 * seconds;

    while (juce::Time::getMillisecondCounterHiRes() < end)
        test::dispatchNextMessageOnSystemQueue (false); // the dials' timers wake it
}

/** @returns the message thread's share of one core */
double measure (const Scene& scene)
{
    TarvellineAudioProcessor processor;
    processor.uiHeight = scene.height;
    processor.parameters.getParameter (parameterId::toggleSize)->setValueNotifyingHost (scene.fullSize ? 1.0f : 0.0f);
    processor.prepareToPlay (sampleRate, blockSize);

    const std::unique_ptr<juce::AudioProcessorEditor> editor (processor.createEditor());
    editor->setOpaque (true);
    editor->addToDesktop (0);
    editor->setVisible (true);

    const AudioThread audio (processor, scene.inMotion);
    runMessages (settleSeconds);
    const auto start = threadSeconds();
    runMessages (measureSeconds);
    return (threadSeconds() - start) / measureSeconds;
}
} // namespace
} // namespace tarvelline::bench

int main()
{
    if (! tarvelline::test::VirtualScreen::isAvailable())
    {
        std::cerr << "editor_cost: the program Xvfb is not installed (Debian package xvfb)\n";
        return 2;
    }

    const tarvelline::test::VirtualScreen screen (1280, 800);
    const juce::ScopedJuceInitialiser_GUI framework;

    for (const auto& scene : tarvelline::bench::scenes)
        std::cout << std::left << std::setw (30) << scene.name << std::right << std::fixed << std::setprecision (2)
                  << std::setw (6) << 100.0 * tarvelline::bench::measure (scene) << " % of one core" << std::endl;
}
