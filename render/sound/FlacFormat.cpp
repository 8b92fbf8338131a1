// SPDX-License-Identifier: GPL-3.0-or-later
// The framework's FLAC codec on the system's libFLAC. The shared code is compiled without it, so that the plug-in depends on
// no codec; here it is compiled for this program alone.
#undef JUCE_USE_FLAC
#define JUCE_USE_FLAC 1
#define JUCE_INCLUDE_FLAC_CODE 0 // the system's library instead of a copy
#include "render/sound/FlacFormat.h"

#include <juce_audio_formats/codecs/juce_FlacAudioFormat.cpp>

namespace juce::FlacNamespace
{
namespace
{
struct Check
{
    FLAC__StreamMetadata_StreamInfo info = {};
    FLAC__uint64 decoded = 0;
    bool damaged = false;
};

FLAC__StreamDecoderWriteStatus countFrame (const FLAC__StreamDecoder*, const FLAC__Frame* frame,
                                           const FLAC__int32* const[], void* data)
{
    auto& check = *static_cast<Check*> (data);
    const auto& header = frame->header;
    check.decoded += header.blocksize;
    check.damaged |= header.channels != check.info.channels || header.sample_rate != check.info.sample_rate
                     || header.bits_per_sample != check.info.bits_per_sample;
    return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
}

void keepInfo (const FLAC__StreamDecoder*, const FLAC__StreamMetadata* metadata, void* data)
{
    static_cast<Check*> (data)->info = metadata->data.stream_info; // the only kind that is asked for
}

void noteDamage (const FLAC__StreamDecoder*, FLAC__StreamDecoderErrorStatus, void* data)
{
    static_cast<Check*> (data)->damaged = true;
}
} // namespace

static String fault (const File& file)
{
    const std::unique_ptr<FLAC__StreamDecoder, decltype (&FLAC__stream_decoder_delete)> decoder (
        FLAC__stream_decoder_new(), FLAC__stream_decoder_delete);
    Check check;
    FLAC__stream_decoder_set_md5_checking (decoder.get(), true);

    const auto opened = FLAC__stream_decoder_init_file (decoder.get(), file.getFullPathName().toRawUTF8(), countFrame,
                                                        keepInfo, noteDamage, &check);

    if (opened != FLAC__STREAM_DECODER_INIT_STATUS_OK)
        return "is no FLAC file";

    const bool read = FLAC__stream_decoder_process_until_end_of_stream (decoder.get()) != 0;

    // The sum covers the whole, so a file that is cut off differs too. A stream need not state its length.
    if (check.decoded < check.info.total_samples)
        return "is cut off or damaged: " + String (check.decoded) + " of " + String (check.info.total_samples)
               + " samples can be decoded";

    return FLAC__stream_decoder_finish (decoder.get()) && read && ! check.damaged ? "" : "is damaged";
}
} // namespace juce::FlacNamespace

namespace tarvelline::render
{
std::unique_ptr<juce::AudioFormat> createFlacFormat() { return std::make_unique<juce::FlacAudioFormat>(); }

juce::String flacFault (const juce::File& file)
{
    // The reader's positions are 32-bit numbers.
    if (file.getSize() > std::numeric_limits<int>::max())
        return "is a FLAC file of more than 2 GiB, which cannot be read; convert it to WAV";

    return juce::FlacNamespace::fault (file);
}
} // namespace tarvelline::render
