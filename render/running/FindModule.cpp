// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/FindModule.h"

#include "render/options/Errors.h"

namespace tarvelline::render
{
namespace
{
constexpr auto moduleName = "Tarvelline.vst3";

juce::Array<juce::File> usualPlaces()
{
    using Place = juce::File::SpecialLocationType;
    const auto home = juce::File::getSpecialLocation (Place::userHomeDirectory);
    const auto program = juce::File::getSpecialLocation (Place::hostApplicationPath).getParentDirectory();
    return { program.getChildFile (TARVELLINE_MODULE_FROM_HERE),
             program.getChildFile ("../lib/vst3").getChildFile (moduleName),
             home.getChildFile (".vst3").getChildFile (moduleName),
             juce::File ("/usr/local/lib/vst3").getChildFile (moduleName),
             juce::File ("/usr/lib/vst3").getChildFile (moduleName) };
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
