// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/sound/SoundHandle.h"
#include "render/sound/SoundLayout.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <vector>

namespace tarvelline::render
{
/** A sound file, known by what it holds, not by its name: WAV, W64, AIFF, CAF, AU, FLAC, Ogg Vorbis, Opus or MP3, of any
    encoding that the system's sound library has. Whole, of at least one sample, 1 to 64 channels and 8 to 384 kHz.

    Channels are in the order of WAV's. Read in order it decodes once; going back makes a lossy kind decode some again. */
class Recording : public juce::AudioFormatReader
{
public:
    /** Throws UserError for what cannot be read, and for a file that is cut off or damaged: where its header does not tell,
        it is decoded once for that. MP3 holds no sums, so that only what is missing of it is noticed.
        @param name  what messages call it */
    Recording (const juce::File& file, const juce::String& name);

    bool readSamples (int* const* channels, int channelCount, int startInChannels, juce::int64 start,
                      int count) override;

    /** What each channel is for (SF_CHANNEL_MAP_*); empty when nobody tells. */
    const std::vector<int>& getChannelMap() const { return channelMap; }

    const SoundLayout& getLayout() const { return layout; }
    const juce::File& getFile() const { return file; }
    const char* getText (int which) const { return sf_get_string (handle.get(), which); }

private:
    void open();
    void checkDecoding();
    void orderChannels();

    const juce::File file;
    const juce::String path; // in messages
    SoundSource source;
    SoundLayout layout;
    bool hasTable = false; // see mp3HasTable()
    SF_INFO info {};
    SoundHandle handle;
    std::vector<int> channelMap;
    std::vector<std::size_t> order; // which of the file's channels is the first, second, ... here
    std::vector<float> frames;
    juce::int64 position = 0;
};
} // namespace tarvelline::render
