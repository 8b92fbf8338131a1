// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Places.h"

namespace tarvelline::render
{
namespace
{
using juce::File;

File home() { return File::getSpecialLocation (File::userHomeDirectory); }
File programsFolder() { return File::getSpecialLocation (File::hostApplicationPath).getParentDirectory(); }
} // namespace

juce::Array<File> moduleFolders()
{
    return { programsFolder().getChildFile ("../lib/vst3"), home().getChildFile (".vst3"), File ("/usr/local/lib/vst3"),
             File ("/usr/lib/vst3") };
}

juce::Array<File> presetFolders (const File& module)
{
    return { home().getChildFile (".vst3/presets"), module.getSiblingFile ("presets"),
             programsFolder().getChildFile ("../share/vst3/presets"), File ("/usr/local/share/vst3/presets"),
             File ("/usr/share/vst3/presets") };
}

File fileToOpen (const File& module) { return module; }
} // namespace tarvelline::render
