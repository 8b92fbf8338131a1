// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/options/Files.h"

#include "render/options/Errors.h"
#include "render/options/Paths.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

namespace tarvelline::render
{
namespace
{
// Also through links, and for two names of one file.
bool isSame (const juce::File& a, const juce::File& b)
{
    std::error_code ignored; // a file that is not there yet is the same as none
    return a != juce::File() && (a == b || std::filesystem::equivalent (pathOf (a), pathOf (b), ignored));
}

// As it is when it cannot be followed.
juce::File withoutLinks (const juce::File& file)
{
    std::error_code failure;
    const auto resolved = std::filesystem::weakly_canonical (pathOf (file), failure);
    return failure ? file : juce::File (textOf (resolved));
}

void checkTarget (const juce::String& name, juce::File& target, const Options& options)
{
    target = withoutLinks (target);
    const auto path = target.getFullPathName();
    std::error_code failure;
    const auto status = std::filesystem::status (pathOf (target), failure);

    if (std::filesystem::exists (status) && ! std::filesystem::is_regular_file (status))
        throw UserError (name + ": " + path + " is not a file; name one that may be written");

    if (! target.getParentDirectory().isDirectory())
        throw UserError (name + ": there is no folder " + target.getParentDirectory().getFullPathName());

    juce::Array<juce::File> sources { options.midi, options.automation, options.state };

    for (const auto& task : options.tasks)
        sources.add (task.input);

    for (const auto& source : sources)
        if (isSame (source, target))
            throw UserError (name + ": " + path + " is also read; name another file");
}

juce::String shellFriendly (const juce::String& name)
{
    juce::String kept;

    // What is not ASCII is a letter as likely as not, and no shell reads a meaning into it.
    for (auto c = name.getCharPointer(); ! c.isEmpty(); ++c)
        if (*c > 127 || c.isLetterOrDigit() || juce::String ("._+-").containsChar (*c))
            kept << *c;
        else if (! kept.endsWithChar ('-'))
            kept << '-';

    kept = kept.trimCharactersAtStart (".-").trimCharactersAtEnd ("-");
    return kept.isEmpty() ? "recording" : kept;
}
// Of an input, without its ending: from here, or from the root where it is not below.
juce::String pathBelow (const juce::File& input)
{
    const auto here = juce::File::getCurrentWorkingDirectory();
    const auto path = input.withFileExtension ({});
    return input.isAChildOf (here) ? path.getRelativePathFrom (here) : textOf (pathOf (path).relative_path());
}

// A batch must not replace what it has yet to read: compared by paths without links, and file by file where one has
// several names.
void checkNoneIsRead (const std::vector<Task>& tasks)
{
    constexpr auto noLinks = static_cast<std::uintmax_t> (-1); // of a file that is not there yet
    std::error_code ignored;
    std::set<juce::File> sources; // which knows whether case matters here

    for (const auto& task : tasks)
        sources.insert (withoutLinks (task.input));

    for (const auto& task : tasks)
    {
        const auto target = pathOf (task.output);
        const auto links = std::filesystem::hard_link_count (target, ignored);

        if (sources.count (withoutLinks (task.output)) != 0
            || (links > 1 && links != noLinks
                && std::any_of (tasks.begin(), tasks.end(),
                                [&] (const auto& t) { return isSame (t.input, task.output); })))
            throw UserError ("OUT: " + task.output.getFullPathName() + " is also read; name another folder");
    }
}
} // namespace

juce::File fileNamed (const juce::String& path) { return juce::File::getCurrentWorkingDirectory().getChildFile (path); }

juce::File soundFileNamed (const juce::String& path) { return path == "-" ? juce::File() : fileNamed (path); }

std::vector<Task> tasksInto (const juce::File& folder, const juce::StringArray& recordings, const juce::String& ending,
                             bool keepFolders)
{
    std::vector<Task> tasks;
    std::map<juce::File, juce::String> sources;

    for (const auto& recording : recordings)
    {
        if (recording == "-")
            throw UserError ("-: the standard input goes with one OUT; leave out --out-dir");

        const auto input = fileNamed (recording);
        const auto name =
            (keepFolders ? pathBelow (input) : shellFriendly (input.getFileNameWithoutExtension())) + "." + ending;

        if (const auto [before, isNew] = sources.emplace (folder.getChildFile (name), recording); ! isNew)
            throw UserError (before->second + " and " + recording + " would both become " + name + "; "
                             + (keepFolders ? "render them into two folders"
                                            : "give --keep-folders, or render them into two folders"));

        tasks.push_back ({ input, folder.getChildFile (name) });
    }

    checkNoneIsRead (tasks);
    return tasks;
}

void makeFolderFor (const Task& task)
{
    std::error_code ignored; // another process may make the folder at the same moment
    const auto folder = task.output.getParentDirectory();
    std::filesystem::create_directories (pathOf (folder), ignored);

    if (! folder.isDirectory())
        throw UserError ("--out-dir: cannot make the folder " + folder.getFullPathName());
}

void checkTargets (Options& options, Task& task)
{
    const std::array<std::pair<const char*, juce::File*>, 3> targets {
        { { "OUT", &task.output }, { "--plot", &options.plot }, { "--save-state", &options.savedState } }
    };

    for (auto target = targets.begin(); target != targets.end(); ++target)
    {
        if (*target->second == juce::File())
            continue;

        checkTarget (target->first, *target->second, options);

        for (auto earlier = targets.begin(); earlier != target; ++earlier)
            if (isSame (*earlier->second, *target->second))
                throw UserError (juce::String (target->first) + ": " + target->second->getFullPathName() + " is "
                                 + earlier->first + "; name another file");
    }
}
} // namespace tarvelline::render
