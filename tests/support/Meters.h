// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <span>

namespace tarvelline::test
{
/** Meters for one channel of samples. They compute in double; a part of a signal is measured by handing on a subspan. */
using Signal = std::span<const float>;

/** Frequency of the strongest component, in Hz. The signal is at least 1024 samples long. A clean tone that is some tens
    of periods long comes out within 0.001 cents; weaker components more than four bins (rate / length) away do not pull it. */
double frequencyHz (Signal, double rate);

/** Interval from a reference up to a frequency, in cents (1200 an octave). */
double centsBetween (double referenceHz, double hertz);

/** RMS level in dB; a sine of amplitude 1 has -3.01 dB. Silence has -infinity. */
double levelDb (Signal);

/** Level of the component at a frequency in dB; a sine of amplitude 1 there has 0 dB. Hann-windowed: other components are
    suppressed once they are more than two bins (rate / length) away. */
double componentDb (Signal, double hertz, double rate);

/** The largest magnitude. */
float peak (Signal);

/** Level of what was expected over the level of the difference, in dB; infinite when they are equal. */
double signalToDifferenceDb (Signal actual, Signal expected);

/** Whether no sample is infinite or a NaN. */
bool allFinite (Signal);

/** Whether no sample is subnormal: a sign of arithmetic that gets slow in silence. */
bool noneSubnormal (Signal);

/** Whether two signals are equally long and agree bit for bit (so that a NaN equals itself, and 0 differs from -0). */
bool sameBits (Signal, Signal);
} // namespace tarvelline::test
