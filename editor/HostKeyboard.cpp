// SPDX-License-Identifier: GPL-3.0-or-later
#define JUCE_GUI_BASICS_INCLUDE_XHEADERS 1 // the framework's table of the display's functions
#include "editor/HostKeyboard.h"

#include <juce_gui_basics/juce_gui_basics.h>

#if JUCE_LINUX || JUCE_BSD
namespace tarvelline
{
namespace
{
juce::X11Symbols::XSetInputFocus setInputFocus = nullptr; // the display's own

/** While a mouse button is down it is the click that asks. */
void setInputFocusUnlessClicked (::Display* display, ::Window window, int revertTo, ::Time time)
{
    if (! juce::ModifierKeys::currentModifiers.isAnyMouseButtonDown())
        setInputFocus (display, window, revertTo, time);
}
} // namespace

void leaveKeyboardToHost()
{
    auto& entry = juce::X11Symbols::getInstance()->xSetInputFocus;

    if (entry == setInputFocusUnlessClicked)
        return;

    setInputFocus = entry;
    entry = setInputFocusUnlessClicked;
}
} // namespace tarvelline
#else // the keyboard goes where the components want it
void tarvelline::leaveKeyboardToHost() {}
#endif
