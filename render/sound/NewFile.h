// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <memory>

namespace tarvelline::render
{
/** A file that comes into being whole or not at all: what is written goes into a hidden file beside the target, which
    takes the target's place in commit(). Destroyed before that, it leaves nothing behind and the target as it was. */
class NewFile
{
public:
    /** @param role    what messages call it: "OUT", "--plot"
        @param target  a file or nothing yet; through a link, what it points at is replaced */
    NewFile (const juce::String& role, const juce::File& target);

    /** The stream that fills it. A failure to write is kept here, also one that comes as the stream is deleted; the stream
        must not outlive this. Throws UserError when the file cannot be made. */
    std::unique_ptr<juce::OutputStream> open();

    /** Throws UserError when not all that was written reached the disk: to be asked again when the stream is gone. */
    void check() const;

    /** To be read between the stream's end and commit(). */
    const juce::File& getTemporaryFile() const { return temporary.getFile(); }

    /** Puts the finished file in its place. Throws UserError when that fails. */
    void commit();

private:
    const juce::String name;
    const juce::TemporaryFile temporary;
    bool failed = false;
};
} // namespace tarvelline::render
