// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/RelaxedAtomic.h"

namespace tarvelline
{
/** The motion of one wheel: how its sounding shift follows the wheel's position, like a wheel with mass.

    Once a sample the wheel's value is smoothed into a target; a follower chases the target at a limited speed (the smooth
    setting); a moving point chases the follower with a constant acceleration (inertia) and a proportional pull (gravity).
    The velocity itself is never damped: only the pull brings the point to rest.

    Units: positions are wheel units, 0..1 with 0.5 the centre; speeds are wheel units a sample; a shift in semitones is
            (point - 0.5) * span. Per-sample constants are written for 44.1 kHz and scaled by timeScale.
    Threads: the steps belong to the audio thread. The other members may run on any thread at any time: every field is a
            relaxed atomic, and a change made in the microsecond in which a run of steps is made can be lost to it.
    Real time: everything here is a handful of double operations; nothing allocates or locks. */
struct WheelRecord
{
    RelaxedAtomic<double> target { -100000.0 }; // smoothed wheel value; this start only marks a record never set
    RelaxedAtomic<double> slewStep { 0.001 };   // largest change of the follower a sample
    RelaxedAtomic<double> smoothAmount { 0.1 }; // 0..1, as last set
    RelaxedAtomic<double> gravityAmount { 0.0 };
    RelaxedAtomic<double> inertiaAmount { 0.0 }; // 0..1, as last set
    RelaxedAtomic<double> acceleration { 0.0 };  // change of velocity a sample
    RelaxedAtomic<double> pull { 0.0 };          // share of the remaining distance closed a sample, at most 1
    RelaxedAtomic<double> velocity { 0.0 };
    RelaxedAtomic<double> point { 0.0 }; // what sounds; polled by the editor's follow dial every 20 ms
    RelaxedAtomic<double> follower { 0.0 };
    RelaxedAtomic<double> midiOffset { 0.0 }; // semitones, set by notes in transpose mode
    RelaxedAtomic<double> span { -1.0 };      // semitones from end to end; negative until chosen
    RelaxedAtomic<double> inverseSpan { -1.0 };
    RelaxedAtomic<double> timeScale { 0.0 }; // 44100 / sample rate
    RelaxedAtomic<float> semitones { 0.0f }; // the shift after the last step
};

/** Gravity from its 0..1 setting, of which as of the other two a NaN counts as 0. */
void setGravity (WheelRecord&, double amount) noexcept;

/** Inertia from its 0..1 setting. */
void setInertia (WheelRecord&, double amount) noexcept;

/** Smoothing from its 0..1 setting. */
void setSmooth (WheelRecord&, double amount) noexcept;

/** Chooses the span and keeps the shift in semitones as far as the wheel's travel allows. Stops the point.
    @returns old span / new span, 1 when there was none */
double setRange (WheelRecord&, double newSpan) noexcept;

/** Puts the wheel to rest at its target with the MIDI offset added. The offset adds up with every call; the smoothing of
    the next samples takes it out again. */
void reanchor (WheelRecord&) noexcept;

/** Moves the wheel by `count` samples, each smoothTarget() and movePoint(), and hands back the shift after each of them. */
void moveWheel (WheelRecord&, double wheelValue, float* semitones, int count) noexcept;

/** First part of a sample's step: smooths the wheel's value into the target. */
void smoothTarget (WheelRecord&, double wheelValue) noexcept;

/** Second part of a sample's step: moves follower and point, and states the shift in `semitones`. */
void movePoint (WheelRecord&) noexcept;
} // namespace tarvelline
