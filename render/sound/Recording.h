// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_formats/juce_audio_formats.h>

#include <memory>

namespace tarvelline::render
{
/** Opens a recording that the plug-in can take: WAV, AIFF or FLAC, one or two channels, at least one sample. Throws UserError. */
std::unique_ptr<juce::AudioFormatReader> openRecording (const juce::File&);
} // namespace tarvelline::render
