// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

namespace tarvelline::test
{
/** An X server of its own without a monitor (Xvfb, 24 bits), with a hand at mouse and keyboard and an eye on the screen.

    While it stands it is the DISPLAY of this process, which from then on reaches no session bus. It must stand before the
    framework first asks for a display, and until the framework has shut down. One thread. A protocol error ends this
    process, unless a window closed while they were counted. */
class VirtualScreen
{
public:
    /** Whether the program Xvfb is installed. */
    static bool isAvailable();

    /** Throws std::runtime_error when the server does not start. */
    VirtualScreen (int width, int height);
    ~VirtualScreen();

    void moveMouse (int x, int y);

    /** @param button  1 left, 3 right; 4 and 5 are the notches of a mouse wheel, up and down */
    void pressMouse (bool down, unsigned button = 1);

    /** @param key  as the server calls it: "Shift_L", "Tab", "Up" */
    void pressKey (const char* key, bool down);

    juce::Image capture (juce::Rectangle<int>);

    /** The windows on the screen, menus among them, that belong to no other, bottom to top. */
    std::vector<juce::Rectangle<int>> openWindows();

    /** Gives the keyboard to the topmost of them, as a window manager does. */
    void focusTopmostWindow();

    /** Gives it to the innermost window at a place, as hosts do that hand their keys on to a plug-in. */
    void focusWindowAt (int x, int y);

    /** The window that has the keyboard; no two are the same. */
    unsigned long keyboardOwner();

private:
    struct Connection;
    std::unique_ptr<Connection> connection;
    FILE* server = nullptr; // its output
    pid_t serverProcess = 0;
};
} // namespace tarvelline::test
