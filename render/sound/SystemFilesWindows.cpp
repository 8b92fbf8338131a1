// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/SystemFiles.h"

#include "render/options/Errors.h"
#include "render/running/Terminal.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <system_error>
#include <windows.h>

namespace tarvelline::render
{
namespace
{
// In the words of the other systems, where they have some for it.
juce::String describe (DWORD error)
{
    return std::system_category().default_error_condition (static_cast<int> (error)).message();
}

// A pipe that gives or takes nothing is left when the program is to stop: see noteInterrupts().
[[noreturn]] void giveUp (const char* what, DWORD error)
{
    if (interrupted())
        throw Interrupted();

    throw UserError (what + describe (error));
}
} // namespace

void prepareStreams()
{
    static const auto codePageBefore = GetConsoleOutputCP();
    SetConsoleOutputCP (CP_UTF8);
    std::atexit ([] { SetConsoleOutputCP (codePageBefore); });

    for (auto* stream : { stdin, stdout, stderr })
        if (const auto number = _fileno (stream); number >= 0)
            _setmode (number, _O_BINARY);
}

std::size_t readInput (char* into, std::size_t most)
{
    DWORD got = 0;

    if (ReadFile (GetStdHandle (STD_INPUT_HANDLE), into, static_cast<DWORD> (most), &got, nullptr) == FALSE)
        if (const auto error = GetLastError(); error != ERROR_BROKEN_PIPE) // as a pipe's end is called
            giveUp ("IN: cannot read the standard input: ", error);

    return got;
}

void writeOutput (const char* bytes, std::size_t count)
{
    while (count > 0)
    {
        DWORD written = 0;

        if (WriteFile (GetStdHandle (STD_OUTPUT_HANDLE), bytes, static_cast<DWORD> (count), &written, nullptr) == FALSE)
            giveUp ("OUT: cannot write all to the standard output: ", GetLastError());

        bytes += written;
        count -= written;
    }
}

juce::String makeNewFile (const juce::File& file)
{
    auto* made = CreateFileW (file.getFullPathName().toWideCharPointer(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                              FILE_ATTRIBUTE_NORMAL, nullptr);

    if (made == INVALID_HANDLE_VALUE)
        return describe (GetLastError());

    CloseHandle (made);
    return {};
}
} // namespace tarvelline::render
