// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/NewFile.h"

#include "render/options/Errors.h"
#include "render/sound/SystemFiles.h"

namespace tarvelline::render
{
namespace
{
/** Hands all on to a file, and keeps what failed where it is still known when this is deleted: a format writer deletes its
    stream right after the last it writes. */
class WatchedStream : public juce::OutputStream
{
public:
    WatchedStream (std::unique_ptr<juce::FileOutputStream> file, bool& failure)
        : stream (std::move (file)), failed (failure)
    {
    }

    ~WatchedStream() override { syncAndNote(); }

    void flush() override { syncAndNote(); }
    juce::int64 getPosition() override { return stream->getPosition(); }
    bool setPosition (juce::int64 position) override { return note (stream->setPosition (position)); }

    bool write (const void* data, std::size_t bytes) override
    {
        const auto written = stream->write (data, bytes);
        length = juce::jmax (length, stream->getPosition());
        return note (written);
    }

private:
    // A full disk may take a part of a write, which the stream tells nobody when it empties its buffer: the length shows it.
    void syncAndNote()
    {
        stream->flush();
        note (stream->getFile().getSize() == length);
    }

    bool note (bool well)
    {
        failed |= ! well || stream->getStatus().failed();
        return ! failed;
    }

    const std::unique_ptr<juce::FileOutputStream> stream;
    bool& failed;
    juce::int64 length = 0;
};

// Hidden, and of an ending that nobody's wildcard looks for; a name may be as long as the file system allows already.
juce::File hiddenBeside (const juce::File& target)
{
    constexpr int kept = 40; // characters
    return target.getSiblingFile ("." + target.getFileName().substring (0, kept) + "."
                                  + juce::Uuid().toString().substring (0, 8) + ".part");
}
} // namespace

NewFile::NewFile (const juce::String& role, const juce::File& target)
    : name (role), temporary (target, hiddenBeside (target))
{
}

std::unique_ptr<juce::OutputStream> NewFile::open()
{
    if (const auto refusal = makeNewFile (temporary.getFile()); refusal.isNotEmpty())
        throw UserError (name + ": cannot write into "
                         + temporary.getTargetFile().getParentDirectory().getFullPathName() + ": " + refusal);

    auto stream = std::make_unique<juce::FileOutputStream> (temporary.getFile());
    failed |= stream->failedToOpen();
    return std::make_unique<WatchedStream> (std::move (stream), failed);
}

void NewFile::check() const
{
    if (failed)
        throw UserError (name + ": cannot write all of " + temporary.getTargetFile().getFullPathName()
                         + "; is the disk full?");
}

void NewFile::commit()
{
    if (! temporary.overwriteTargetFileWithTemporary())
        throw UserError (name + ": cannot replace " + temporary.getTargetFile().getFullPathName());
}
} // namespace tarvelline::render
