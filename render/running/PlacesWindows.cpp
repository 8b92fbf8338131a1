// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Places.h"

namespace tarvelline::render
{
namespace
{
using juce::File;

File place (File::SpecialLocationType type, const char* below)
{
    return File::getSpecialLocation (type).getChildFile (below);
}

File besideProgram (const char* name)
{
    return File::getSpecialLocation (File::hostApplicationPath).getSiblingFile (name);
}
} // namespace

juce::Array<File> moduleFolders()
{
    return { besideProgram ("VST3"), place (File::windowsLocalAppData, "Programs/Common/VST3"),
             place (File::globalApplicationsDirectory, "Common Files/VST3") };
}

juce::Array<File> presetFolders (const File& module)
{
    constexpr auto name = "VST3 Presets";
    return { place (File::userDocumentsDirectory, name), place (File::userApplicationDataDirectory, name),
             module.getSiblingFile ("presets"), besideProgram (name),
             place (File::commonApplicationDataDirectory, name) };
}

File fileToOpen (const File& module)
{
    const auto inner = module.getChildFile ("Contents/x86_64-win").getChildFile (module.getFileName());
    return inner.existsAsFile() ? inner : module;
}
} // namespace tarvelline::render
