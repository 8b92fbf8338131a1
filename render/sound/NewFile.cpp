// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/NewFile.h"

#include "render/options/Errors.h"

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
} // namespace

std::unique_ptr<juce::OutputStream> NewFile::open()
{
    auto stream = std::make_unique<juce::FileOutputStream> (temporary.getFile());

    if (stream->failedToOpen())
        throw UserError (name + ": cannot write into "
                         + temporary.getTargetFile().getParentDirectory().getFullPathName() + ": "
                         + stream->getStatus().getErrorMessage());

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
