// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace tarvelline::render
{
/** Calls a function with what a hosted VST3 module can do beyond other formats' modules, as the framework's releases have it:
    getPreset() and setPreset(), with a .vstpreset file's bytes. Does nothing with another format's. Message thread only. */
template <typename Function>
void withVst3Client (juce::AudioPluginInstance& instance, const Function& function)
{
#if JUCE_MODULE_AVAILABLE_juce_audio_processors_headless // from JUCE 8.0.11 on
    if (auto* client = instance.getVST3Client())
        function (*client);
#else
    struct Visitor : juce::ExtensionsVisitor
    {
        explicit Visitor (const Function& wanted) : call (wanted) {}
        void visitVST3Client (const VST3Client& client) override { call (client); }
        const Function& call;
    };

    Visitor visitor (function);
    instance.getExtensions (visitor);
#endif
}
} // namespace tarvelline::render
