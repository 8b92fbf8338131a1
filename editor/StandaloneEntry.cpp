// SPDX-License-Identifier: GPL-3.0-or-later
// Where the standalone program starts. The framework takes a display for granted and crashes without one.
#include <juce_events/juce_events.h>

#include <cstdio>
#include <cstdlib>

juce::JUCEApplicationBase* juce_CreateApplication(); // the framework's own application

namespace
{
/** Asks as every program does that opens windows; the library is there only if the framework can open it too. */
bool displayAnswers()
{
    juce::DynamicLibrary x11 ("libX11.so.6");
    const auto open = reinterpret_cast<void* (*) (const char*)> (x11.getFunction ("XOpenDisplay"));
    const auto close = reinterpret_cast<int (*) (void*)> (x11.getFunction ("XCloseDisplay"));
    auto* display = open != nullptr && close != nullptr ? open (nullptr) : nullptr;

    return display != nullptr && close (display) == 0;
}
} // namespace

int main (int argc, char** argv)
{
    if (! displayAnswers())
    {
        const auto* name = std::getenv ("DISPLAY");
        std::fprintf (stderr, "tarvelline: cannot open a window: the display (DISPLAY is \"%s\") does not answer\n",
                      name != nullptr ? name : "");
        return 1;
    }

    juce::JUCEApplicationBase::createInstance = &juce_CreateApplication;
    return juce::JUCEApplicationBase::main (argc, const_cast<const char**> (argv));
}
