// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/Parameters.h"
#include "tests/support/MessagePump.h"
#include "tests/support/PixelMeters.h"
#include "tests/support/VirtualScreen.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string_view>
#include <thread>

namespace tarvelline::test
{
/** The built module in a host with a window around its editor. Everything happens on the message thread. */
class HostWindow
{
public:
    HostWindow()
    {
        juce::VST3PluginFormat format;
        juce::OwnedArray<juce::PluginDescription> found;
        juce::String error;
        format.findAllTypesForFile (found, TARVELLINE_MODULE);

        if (found.size() == 1)
            module = format.createInstanceFromDescription (*found[0], 44100.0, blockSize, error);

        if (module == nullptr)
            throw std::runtime_error ("cannot load " TARVELLINE_MODULE ": " + error.toStdString());

        module->prepareToPlay (44100.0, blockSize);
        screen->moveMouse (1270, 790); // out of the way: a button under the mouse looks different
    }

    ~HostWindow()
    {
        close();
        module->releaseResources();
    }

    juce::AudioProcessorParameter& parameter (const char* id)
    {
        for (size_t i = 0; i < parameterTable.size(); ++i)
            if (std::string_view (parameterTable[i].id) == id)
                return *module->getParameters()[static_cast<int> (i)];

        throw std::runtime_error (std::string ("no such parameter: ") + id);
    }

    /** Opens the editor at (x, y) of the screen. The first pixels are on the screen when this returns. */
    void open()
    {
        editor.reset (module->createEditorIfNeeded());
        frame.setOpaque (true);
        frame.addAndMakeVisible (*editor);
        frame.setBounds (x, y, editor->getWidth(), editor->getHeight());
        frame.addToDesktop (0);
        frame.setVisible (true);
    }

    void close()
    {
        editor.reset();
        frame.removeFromDesktop();
    }

    /** Lets time pass: messages and audio in turn, so that both get their share. */
    void run (int milliseconds)
    {
        const auto end = juce::Time::getMillisecondCounter() + static_cast<juce::uint32> (milliseconds);
        auto nextBlock = juce::Time::getMillisecondCounter();

        pumpMessagesUntil (
            [&]
            {
                if (audioRuns && juce::Time::getMillisecondCounter() >= nextBlock)
                {
                    playBlock();
                    nextBlock += 10;
                }

                return juce::Time::getMillisecondCounter() >= end;
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
    juce::Image picture()
    {
        const auto width = editor->getWidth(), height = editor->getHeight();
        const auto pixels = screen->capture ({ x, y, width, height });
        juce::Image image (juce::Image::ARGB, width, height, false);

        for (auto py = 0; py < height; ++py)
            for (auto px = 0; px < width; ++px)
                image.setPixelAt (px, py, juce::Colour (pixels[static_cast<size_t> (py * width + px)]));

        return image;
    }

    void moveMouse (juce::Point<int> to)
    {
        screen->moveMouse (x + to.x, y + to.y);
        run (15);
    }

    void pressMouse (bool down)
    {
        screen->pressMouse (down);
        run (40);
    }

    void click (juce::Point<int> at)
    {
        moveMouse (at);
        pressMouse (true);
        pressMouse (false);
    }

    void drag (juce::Point<int> from, juce::Point<int> to)
    {
        moveMouse (from);
        pressMouse (true);

        for (auto step = 1; step <= 8; ++step)
            moveMouse (from + (to - from) * step / 8);

        pressMouse (false);
    }

    static constexpr int x = 60, y = 50, blockSize = 512;
    static inline VirtualScreen* screen = nullptr;

    std::unique_ptr<juce::AudioPluginInstance> module;
    std::unique_ptr<juce::AudioProcessorEditor> editor;
    juce::MidiBuffer midi;
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
