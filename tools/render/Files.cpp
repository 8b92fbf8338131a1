// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/Files.h"

#include "tools/render/Errors.h"

#include <filesystem>

namespace tarvelline::render
{
namespace
{
std::filesystem::path pathOf (const juce::File& file) { return file.getFullPathName().toStdString(); }

// Also through links, and for two names of one file.
bool isSame (const juce::File& a, const juce::File& b)
{
    std::error_code ignored; // a file that is not there yet is the same as none
    return a != juce::File() && (a == b || std::filesystem::equivalent (pathOf (a), pathOf (b), ignored));
}

void checkTarget (const juce::String& name, juce::File& target, const Options& options)
{
    std::error_code failure;
    const auto resolved = std::filesystem::weakly_canonical (pathOf (target), failure);

    if (! failure)
        target = juce::File (juce::String::fromUTF8 (resolved.c_str()));

    const auto path = target.getFullPathName();

    if (std::filesystem::exists (resolved, failure) && ! std::filesystem::is_regular_file (resolved, failure))
        throw UserError (name + ": " + path + " is not a file; name one that may be written");

    if (! target.getParentDirectory().isDirectory())
        throw UserError (name + ": there is no folder " + target.getParentDirectory().getFullPathName());

    for (const auto& source : { options.input, options.midi, options.automation })
        if (isSame (source, target))
            throw UserError (name + ": " + path + " is also read; name another file");
}
} // namespace

void checkTargets (Options& options)
{
    checkTarget ("OUT", options.output, options);

    if (options.plot == juce::File())
        return;

    checkTarget ("--plot", options.plot, options);

    if (isSame (options.plot, options.output))
        throw UserError ("--plot: " + options.plot.getFullPathName() + " is OUT; name another file");
}
} // namespace tarvelline::render
