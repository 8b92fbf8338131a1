// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Process.h"

#include "render/options/Errors.h"
#include "render/running/StopEventWindows.h"

#include <array>
#include <mutex>
#include <system_error>
#include <windows.h>

namespace tarvelline::render
{
namespace
{
[[noreturn]] void giveUp()
{
    const auto error = static_cast<int> (GetLastError());
    throw UserError (juce::String ("cannot start a process: ") + juce::String (std::system_category().message (error)));
}

// As every program's start takes it apart again: a quote is told by a backslash, and backslashes by two where one follows.
juce::String quoted (const juce::String& argument)
{
    juce::String text ("\"");
    int backslashes = 0;

    for (auto c = argument.getCharPointer(); ! c.isEmpty(); ++c)
    {
        if (*c == '"')
            text << juce::String::repeatedString ("\\", backslashes + 1);

        backslashes = *c == '\\' ? backslashes + 1 : 0;
        text << *c;
    }

    return text + juce::String::repeatedString ("\\", backslashes) + "\"";
}

/** A pipe whose writing end a child process gets, and an empty input for it: both open until it has started. */
struct Streams
{
    Streams()
    {
        SECURITY_ATTRIBUTES inherited { sizeof (SECURITY_ATTRIBUTES), nullptr, TRUE };

        if (CreatePipe (&output, &childsOutput, &inherited, 0) == FALSE)
            giveUp();

        input = CreateFileW (L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_EXISTING, 0,
                             nullptr);
        SetHandleInformation (output, HANDLE_FLAG_INHERIT, 0);
    }

    ~Streams()
    {
        CloseHandle (input);
        CloseHandle (childsOutput);
    }

    HANDLE input = nullptr, output = nullptr, childsOutput = nullptr;
};
} // namespace

struct Process::Handles
{
    ~Handles()
    {
        for (auto* handle : { process, output, stopEvent })
            CloseHandle (handle);
    }

    HANDLE process = nullptr, output = nullptr, stopEvent = nullptr;
};

Process::~Process() = default;

Process::Process (const juce::StringArray& arguments) : handles (std::make_unique<Handles>())
{
    auto line = quoted (juce::File::getSpecialLocation (juce::File::hostApplicationPath).getFullPathName());

    for (const auto& argument : arguments)
        line << " " << quoted (argument);

    // One at a time: or one child would inherit the end of another's output, which would then wait for both.
    static std::mutex starting;
    const std::lock_guard lock (starting);
    const Streams streams;
    handles->output = streams.output;

    STARTUPINFOW start {};
    start.cb = sizeof (start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = streams.input;
    start.hStdOutput = start.hStdError = streams.childsOutput;
    PROCESS_INFORMATION made {};

    // Without a window, and without this one's Ctrl-C: the workers are told by stop().
    if (CreateProcessW (nullptr, const_cast<wchar_t*> (line.toWideCharPointer()), nullptr, nullptr, TRUE,
                        CREATE_NO_WINDOW, nullptr, nullptr, &start, &made)
        == FALSE)
        giveUp();

    CloseHandle (made.hThread);
    handles->process = made.hProcess;
    handles->stopEvent = CreateEventW (nullptr, TRUE, FALSE, stopEventOf (made.dwProcessId).c_str());
}

Outcome Process::wait()
{
    Outcome outcome;
    std::array<char, 4096> text {};
    DWORD bytes = 0;

    while (ReadFile (handles->output, text.data(), static_cast<DWORD> (text.size()), &bytes, nullptr) != FALSE)
        outcome.text.append (text.data(), bytes);

    DWORD exitCode = 0;
    WaitForSingleObject (handles->process, INFINITE);
    GetExitCodeProcess (handles->process, &exitCode);
    outcome.exitCode = static_cast<int> (exitCode);
    return outcome;
}

void Process::stop() { SetEvent (handles->stopEvent); }
} // namespace tarvelline::render
