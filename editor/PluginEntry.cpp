// SPDX-License-Identifier: GPL-3.0-or-later
// Where the framework gets the plug-in from, and the processor its window: the one place that knows both.
#include "editor/TarvellineAudioProcessorEditor.h"

juce::AudioProcessorEditor* tarvelline::TarvellineAudioProcessor::createEditor()
{
    return new TarvellineAudioProcessorEditor (*this);
}

juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter() { return new tarvelline::TarvellineAudioProcessor(); }
