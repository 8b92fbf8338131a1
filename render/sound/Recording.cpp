// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/Recording.h"

#include "render/options/Errors.h"
#include "render/options/Paths.h"
#include "render/running/Terminal.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace tarvelline::render
{
namespace
{
constexpr int leastRate = 8000, mostRate = 384000; // Hz
constexpr int mostChannels = 64;
constexpr auto knownKinds = "WAV, W64, AIFF, CAF, AU, FLAC, Ogg Vorbis, Opus or MP3";

int kindOf (const SF_INFO& info) { return info.format & SF_FORMAT_TYPEMASK; }

bool isReadKind (const SF_INFO& info)
{
    constexpr std::array kinds { SF_FORMAT_WAV, SF_FORMAT_WAVEX, SF_FORMAT_RF64, SF_FORMAT_W64, SF_FORMAT_AIFF,
                                 SF_FORMAT_CAF, SF_FORMAT_AU,    SF_FORMAT_FLAC, SF_FORMAT_OGG, SF_FORMAT_MPEG };
    return std::find (kinds.begin(), kinds.end(), kindOf (info)) != kinds.end();
}

std::unique_ptr<juce::InputStream> openFile (const juce::File& file, const juce::String& path)
{
    std::error_code failure;
    const auto status = std::filesystem::status (pathOf (file), failure);

    if (! std::filesystem::exists (status))
        throw UserError ("IN: there is no file " + path);

    if (std::filesystem::is_directory (status))
        throw UserError ("IN: " + path + " is a folder; name the files in it");

    if (! std::filesystem::is_regular_file (status))
        throw UserError ("IN: " + path + " is not a file; give - to read from a pipe");

    auto stream = std::make_unique<juce::FileInputStream> (file);

    if (stream->failedToOpen())
        throw UserError ("IN: " + path + " cannot be read: " + stream->getStatus().getErrorMessage());

    return stream;
}

/** Channels in WAV's order, as FLAC has them, and where Vorbis has them: the order of these kinds is fixed. */
struct ChannelOrder
{
    std::vector<int> map;
    std::vector<std::size_t> vorbis;
};

const ChannelOrder& channelOrder (std::size_t channels)
{
    enum
    {
        L = SF_CHANNEL_MAP_LEFT,
        R = SF_CHANNEL_MAP_RIGHT,
        C = SF_CHANNEL_MAP_CENTER,
        Lfe = SF_CHANNEL_MAP_LFE,
        Rl = SF_CHANNEL_MAP_REAR_LEFT,
        Rr = SF_CHANNEL_MAP_REAR_RIGHT,
        Rc = SF_CHANNEL_MAP_REAR_CENTER,
        Sl = SF_CHANNEL_MAP_SIDE_LEFT,
        Sr = SF_CHANNEL_MAP_SIDE_RIGHT
    };

    static const std::array<ChannelOrder, 9> orders { {
        {},
        {},
        {},
        { { L, R, C }, { 0, 2, 1 } },
        { { L, R, Rl, Rr }, { 0, 1, 2, 3 } },
        { { L, R, C, Rl, Rr }, { 0, 2, 1, 3, 4 } },
        { { L, R, C, Lfe, Rl, Rr }, { 0, 2, 1, 5, 3, 4 } },
        { { L, R, C, Lfe, Rc, Sl, Sr }, { 0, 2, 1, 6, 5, 3, 4 } },
        { { L, R, C, Lfe, Rl, Rr, Sl, Sr }, { 0, 2, 1, 7, 5, 6, 3, 4 } },
    } };
    return orders[channels < orders.size() ? channels : 0];
}
} // namespace

Recording::Recording (const juce::File& recording, const juce::String& name)
    : AudioFormatReader (nullptr, {}), file (recording), path (name)
{
    source.stream = openFile (file, path);
    open();
    sampleRate = info.samplerate;
    numChannels = static_cast<unsigned int> (info.channels);
    lengthInSamples = info.frames;
    bitsPerSample = 32;
    usesFloatingPointData = true;
    checkDecoding();

    if (lengthInSamples < 1)
        throw UserError ("IN: " + path + " holds no samples");

    orderChannels();
}

void Recording::open()
{
    if (! hasSoundMark (*source.stream))
        throw UserError ("IN: " + path + " is no recording of a kind that is read; give " + knownKinds);

    layout = readLayout (*source.stream);
    source.patchPlace = layout.lengthPlace;
    source.patch = layout.length;
    source.end = layout.soundEnd;

    if (layout.present < layout.promised)
        throw UserError ("IN: " + path + " is cut off: of " + juce::String (layout.promised) + " bytes of sound "
                         + juce::String (layout.present) + " are there");

    if (! endsAsItShould (*source.stream))
        throw UserError ("IN: " + path + " is cut off: its last page is missing");

    hasTable = mp3HasTable (*source.stream);
    handle = openSound (source, info);

    if (handle == nullptr)
        throw UserError ("IN: " + path + " cannot be read (" + sf_strerror (nullptr)
                         + "); another program may convert it to plain WAV");

    if (! isReadKind (info))
        throw UserError ("IN: " + path + " is none of " + knownKinds);

    if (info.samplerate < leastRate || info.samplerate > mostRate)
        throw UserError ("IN: " + path + " has a rate of " + juce::String (info.samplerate)
                         + " Hz; what is rendered has 8000 to 384000");

    if (info.channels > mostChannels)
        throw UserError ("IN: " + path + " has " + juce::String (info.channels) + " channels; "
                         + juce::String (mostChannels) + " are rendered at most");
}

// Where nothing tells beforehand whether all is there, all is decoded once.
void Recording::checkDecoding()
{
    constexpr int chunk = 4096;
    const auto encoding = info.format & SF_FORMAT_SUBMASK;
    const bool isMpeg = encoding >= SF_FORMAT_MPEG_LAYER_I && encoding <= SF_FORMAT_MPEG_LAYER_III;

    if (encoding < SF_FORMAT_VORBIS && kindOf (info) != SF_FORMAT_FLAC) // the simpler ones stand before Vorbis
        return;

    frames.resize (static_cast<std::size_t> (chunk * info.channels));
    position = 0;
    bool damaged = false;

    for (sf_count_t got = chunk; got > 0; position += got)
    {
        if (interrupted())
            throw Interrupted();

        got = sf_readf_float (handle.get(), frames.data(), chunk);
        damaged |= sf_error (handle.get()) != SF_ERR_NO_ERROR;
    }

    // The length of an MP3 without a table is guessed from its first frames, and what comes after that is never read.
    const auto bytesLeft = source.stream->getNumBytesRemaining();
    const bool guessed = isMpeg && ! hasTable;
    const auto margin = guessed ? 2 * 1152 : 0;

    if (info.frames != SF_COUNT_MAX && position < info.frames - margin)
        throw UserError ("IN: " + path + " is cut off or damaged: " + juce::String (position) + " of "
                         + juce::String (info.frames) + " samples can be decoded");

    if (damaged)
        throw UserError ("IN: " + path + " is damaged");

    if (guessed && bytesLeft > 4096) // more than a last frame and a tag
        throw UserError ("IN: " + path
                         + " is an MP3 of varying bit rate that does not tell its length; convert it to WAV");

    lengthInSamples = position;
}

void Recording::orderChannels()
{
    const auto count = static_cast<std::size_t> (info.channels);
    const bool isOgg = kindOf (info) == SF_FORMAT_OGG;
    channelMap.resize (count);
    order.resize (count);
    std::iota (order.begin(), order.end(), std::size_t { 0 });

    const bool isTold =
        sf_command (handle.get(), SFC_GET_CHANNEL_MAP_INFO, channelMap.data(), static_cast<int> (count * sizeof (int)))
        != 0;

    if (! isTold || channelMap.front() == SF_CHANNEL_MAP_INVALID)
        channelMap.clear();

    if (! isOgg && kindOf (info) != SF_FORMAT_FLAC)
        return;

    const auto& fixed = channelOrder (count);
    channelMap = fixed.map;

    if (isOgg && ! fixed.vorbis.empty())
        order = fixed.vorbis;
}

// What comes short must not pass for silence.
bool Recording::readSamples (int* const* channels, int channelCount, int startInChannels, juce::int64 start, int count)
{
    clearSamplesBeyondAvailableLength (channels, channelCount, startInChannels, start, count, lengthInSamples);

    if (count <= 0)
        return true;

    if (start != position && sf_seek (handle.get(), start, SEEK_SET) != start)
        throw UserError ("IN: " + path
                         + " has an encoding that can only be read once from its start; convert it to plain WAV");

    const auto width = static_cast<std::size_t> (info.channels);
    frames.resize (std::max (frames.size(), static_cast<std::size_t> (count) * width));

    if (sf_readf_float (handle.get(), frames.data(), count) != count)
        throw UserError ("IN: " + path + " cannot be read on at sample " + juce::String (start));

    position = start + count;

    for (std::size_t channel = 0; channel < static_cast<std::size_t> (channelCount); ++channel)
        if (auto* into = reinterpret_cast<float*> (channels[channel]); into != nullptr && channel < width)
            for (std::size_t i = 0; i < static_cast<std::size_t> (count); ++i)
                into[static_cast<std::size_t> (startInChannels) + i] = frames[i * width + order[channel]];

    return true;
}
} // namespace tarvelline::render
