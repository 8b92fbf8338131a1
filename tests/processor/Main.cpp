// SPDX-License-Identifier: GPL-3.0-or-later
#include <juce_audio_processors/juce_audio_processors.h>

#include <gtest/gtest.h>

int main (int argc, char** argv)
{
    // The framework's timers and its message thread exist while the tests run; no display is needed.
    const juce::ScopedJuceInitialiser_GUI framework;
    testing::InitGoogleTest (&argc, argv);
    return RUN_ALL_TESTS();
}
