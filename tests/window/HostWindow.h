// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/Parameters.h"
#include "tests/support/MessagePump.h"
#include "tests/support/PixelMeters.h"
#include "tests/support/VirtualScreen.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <map>
#include <stdexcept>
#include <string>

namespace tarvelline::test
{
/** The built module in a host with a window around its editor. Everything happens on the message thread. */
class HostWindow
{
public:
    using Settings = std::map<std::string, float>; // parameters, normalised

    /** Loads the module and puts it to rest with the settings, as a host does that restores a session. */
    explicit HostWindow (const Settings& settings = {})
    {
        juce::VST3PluginFormat format;
        juce::OwnedArray<juce::PluginDescription> found;
        juce::String error;
        format.findAllTypesForFile (found, TARVELLINE_MODULE);

        if (found.size() == 1)
            module = format.createInstanceFromDescription (*found[0], rate, blockSize, error);

        if (module == nullptr)
            throw std::runtime_error ("cannot load " TARVELLINE_MODULE ": " + error.toStdString());

        moveMouseAway();
        apply (settings);
    }

    ~HostWindow()
    {
        close();
        module->releaseResources();
    }

    void apply (const Settings& settings)
    {
        module->prepareToPlay (rate, blockSize);

        for (const auto& [id, value] : settings)
            parameter (id).setValue (value);

        playBlock(); // hands them over
        module->releaseResources();
        module->prepareToPlay (rate, blockSize);
        run (100);
    }

    juce::AudioProcessorParameter& parameter (const std::string& id)
    {
        for (size_t i = 0; i < parameterTable.size(); ++i)
            if (parameterTable[i].id == id)
                return *module->getParameters()[static_cast<int> (i)];

        throw std::runtime_error ("no such parameter: " + id);
    }

    /** Opens the editor, and lets it come to rest on the screen. */
    void open (int settleMilliseconds = 200)
    {
        makeEditor();
        showEditor (settleMilliseconds);
    }

    void makeEditor()
    {
        editor.reset (module->createEditorIfNeeded());
        openedSize = editor->getBounds();
    }

    void showEditor (int settleMilliseconds = 200)
    {
        frame.setOpaque (true);
        frame.addAndMakeVisible (*editor);
        frame.setBounds (x, y, editor->getWidth(), editor->getHeight());
        frame.addToDesktop (0);
        frame.setVisible (true);
        run (settleMilliseconds);
    }

    void close()
    {
        editor.reset();
        frame.removeFromDesktop();
    }

    /** Lets time pass: messages and audio in turn. At most five seconds. */
    void run (int milliseconds)
    {
        const auto end = juce::Time::getMillisecondCounter() + static_cast<juce::uint32> (milliseconds);
        runUntil ([=] { return juce::Time::getMillisecondCounter() >= end; });
    }

    /** The same, until something is so. @returns whether it is */
    template <typename Condition>
    bool runUntil (Condition&& isSo)
    {
        auto nextBlock = juce::Time::getMillisecondCounter();

        return pumpMessagesUntil (
            [&]
            {
                if (audioRuns && juce::Time::getMillisecondCounter() >= nextBlock)
                {
                    playBlock();
                    nextBlock += 10;
                }

                return isSo();
            });
    }

    void playBlock()
    {
        juce::AudioBuffer<float> block (2, blockSize);
        block.clear();
        module->processBlock (block, midi);
        midi.clear();
    }

    /** What is on the screen where the editor is. */
    juce::Image picture() { return screen->capture (editor->getLocalBounds() + juce::Point (x, y)); }

    void moveMouse (juce::Point<int> to)
    {
        screen->moveMouse (x + to.x, y + to.y);
        run (15);
    }

    void moveMouseAway() { screen->moveMouse (1270, 790); } // a button under the mouse may look different

    void drag (juce::Point<int> from, juce::Point<int> to)
    {
        moveMouse (from);
        screen->pressMouse (true);
        run (40);

        for (auto step = 1; step <= 8; ++step)
            moveMouse (from + (to - from) * step / 8);

        screen->pressMouse (false);
        run (100);
    }

    /** A click, or with button 4 or 5 a notch of the mouse wheel.
        @param slip  of the hand between pressing and letting go, pixels */
    void click (juce::Point<int> at, unsigned button = 1, juce::Point<int> slip = {})
    {
        screen->moveMouse (x + at.x, y + at.y);
        screen->pressMouse (true, button);
        screen->moveMouse (x + at.x + slip.x, y + at.y + slip.y);
        screen->pressMouse (false, button);
        run (10);
    }

    void type (const char* key)
    {
        screen->pressKey (key, true);
        screen->pressKey (key, false);
        run (10);
    }

    static constexpr int x = 60, y = 50, blockSize = 512; // the editor's place on the screen; samples
    static constexpr double rate = 44100.0;
    static inline VirtualScreen* screen = nullptr;

    std::unique_ptr<juce::AudioPluginInstance> module;
    std::unique_ptr<juce::AudioProcessorEditor> editor;
    juce::Rectangle<int> openedSize; // of the editor before any message was delivered to it
    juce::MidiBuffer midi;           // for the next block
    bool audioRuns = true;

private:
    /** A window without a border, as large as the editor in it. */
    struct Frame : juce::Component
    {
        void childBoundsChanged (juce::Component* child) override { setSize (child->getWidth(), child->getHeight()); }
    };

    Frame frame;
};
} // namespace tarvelline::test
