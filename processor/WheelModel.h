// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/RelaxedAtomic.h"

#include <atomic>

namespace tarvelline
{
/** The motion of one wheel: how its sounding shift follows the wheel's position, like a wheel with mass.

    Once a sample the wheel's value is smoothed into a target (a one-pole low-pass); a follower chases the target at a limited
    speed, the smooth setting (a slew-rate limiter); a moving point chases the follower with a constant acceleration (inertia)
    and a proportional pull (gravity). The velocity itself is never damped: only the pull brings the point to rest.

    Units: positions are wheel units, 0..1 with 0.5 the centre; speeds are wheel units a sample; a shift in semitones is
            (point - 0.5) * span. Per-sample constants are written for 44.1 kHz and scaled by timeScale.
    Threads: moveWheel() belongs to the audio thread; the other functions may run on any thread at any time. One thread at a
            time moves the wheel, and none waits for it: what others ask for meanwhile, that thread does before it leaves, or
            the next one that comes. So nothing asked for is lost, whether audio runs or not; and a wheel that is just being
            put somewhere else stands still for the audio thread's run.
    Real time: everything here is a handful of double operations; nothing allocates, locks or waits. */
struct WheelRecord
{
    // The motion, of which the editor polls point and span.
    RelaxedAtomic<double> target { -100000.0 }; // smoothed wheel value; this start only marks a record never set
    RelaxedAtomic<double> follower { 0.0 };
    RelaxedAtomic<double> velocity { 0.0 };
    RelaxedAtomic<double> point { 0.0 };     // what sounds
    RelaxedAtomic<double> span { -1.0 };     // semitones from end to end; negative until chosen
    RelaxedAtomic<float> semitones { 0.0f }; // the shift after the last step

    // Settings, each a word of its own.
    RelaxedAtomic<double> slewStep { 0.001 };   // largest change of the follower a sample
    RelaxedAtomic<double> acceleration { 0.0 }; // change of velocity a sample
    RelaxedAtomic<double> pull { 0.0 };         // share of the remaining distance closed a sample, at most 1
    RelaxedAtomic<double> midiOffset { 0.0 };   // semitones, set by notes in transpose mode
    RelaxedAtomic<double> timeScale { 0.0 };    // 44100 / sample rate

    // What is asked of the thread that moves the wheel.
    std::atomic<bool> inMotion { false };      // one has it
    std::atomic<unsigned> requests { 0 };      // not yet done
    std::atomic<double> askedSpan { -1.0 };    // the span that was chosen last
    std::atomic<double> askedPosition { 0.5 }; // where the wheel is to rest on it
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

/** Chooses the span and puts the wheel to rest at a position on it, with the MIDI offset added twice, as by setRange() and
    reanchor(). */
void placeWheel (WheelRecord&, double position, double newSpan) noexcept;

/** Puts the wheel to rest at its target with the MIDI offset added. The offset adds up with every call; the smoothing of
    the next samples takes it out again. */
void reanchor (WheelRecord&) noexcept;

/** Moves the wheel by `count` samples and hands back the shift in semitones after each of them. */
void moveWheel (WheelRecord&, double wheelValue, float* semitones, int count) noexcept;
} // namespace tarvelline
