// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/FindModule.h"

#include "render/options/Errors.h"
#include "render/running/Places.h"

namespace tarvelline::render
{
namespace
{
constexpr auto moduleName = "Tarvelline.vst3";

juce::Array<juce::File> usualPlaces()
{
    const auto program = juce::File::getSpecialLocation (juce::File::hostApplicationPath);
    juce::Array<juce::File> places { program.getSiblingFile (TARVELLINE_MODULE_FROM_HERE) };

    for (const auto& folder : moduleFolders())
        places.add (folder.getChildFile (moduleName));

    return places;
}
} // namespace

juce::File findModule (const juce::File& asked)
{
    if (asked.exists())
        return asked;

    if (asked != juce::File())
        throw UserError ("--module: there is no " + asked.getFullPathName() + "; give the path of a " + moduleName);

    juce::String searched;

    for (const auto& place : usualPlaces())
    {
        if (place.exists())
            return place;

        searched << "\n  " << place.getFullPathName();
    }

    throw UserError ("the plug-in is in none of the usual places; build it, or name it with --module. Looked for:"
                     + searched);
}
} // namespace tarvelline::render
