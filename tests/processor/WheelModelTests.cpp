// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/WheelModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tarvelline::test
{
namespace
{
/** A wheel at rest on `position`. */
void rest (WheelRecord& wheel, double rate, double span, double position)
{
    wheel.timeScale = static_cast<float> (44100.0 / rate);
    wheel.target = position;
    setRange (wheel, span);
    setInertia (wheel, 0.5);
    setGravity (wheel, 0.5);
    setSmooth (wheel, 0.0);
}

class WheelAtRate : public testing::TestWithParam<double>
{
};

// A power, a floor or a limit of the shaping that is off, or a rate that is not taken into account. Numbers by hand.
TEST_P (WheelAtRate, ShapesItsSettings)
{
    const auto t = static_cast<double> (static_cast<float> (44100.0 / GetParam()));
    WheelRecord wheel;
    wheel.timeScale = t;

    for (const auto& [inertia, acceleration] : { std::pair { 0.0, 5.0e-10 }, { 0.5, 5.5e-9 }, { 1.0, 1.05e-8 } })
    {
        setInertia (wheel, inertia);
        EXPECT_NEAR (wheel.acceleration, acceleration * t, 1.0e-22);
    }

    for (const auto& [gravity, pull] : { std::pair { 0.0, 8.0e-6 }, { 0.5, 1.33e-4 }, { 1.0, 4.0e-3 } })
    {
        setGravity (wheel, gravity);
        EXPECT_NEAR (wheel.pull, pull * t, 1.0e-17);
    }

    for (const auto& [smooth, slew] : { std::pair { 0.0, 1.6e-3 }, { 0.5, 6.89883056640625e-6 }, { 1.0, 8.1e-7 } })
    {
        setSmooth (wheel, smooth);
        EXPECT_NEAR (wheel.slewStep, slew * t, 1.0e-16);
    }
}

// The order of two steps, a comparison made after instead of before an update, or the offset at the wrong place: against
// the steps written down one by one, through a jump, a note and a slow stretch.
TEST_P (WheelAtRate, MovesStepByStep)
{
    WheelRecord wheel;
    rest (wheel, GetParam(), 12.0, 0.5);
    double target = 0.5, follower = 0.5, point = 0.5, velocity = 0.0;
    auto furthest = 0.0;

    for (int i = 0; i < 200000; ++i)
    {
        const auto position = i < 100 ? 0.5 : i < 60000 ? 1.0 : 0.3;

        if (i == 30000)
            wheel.midiOffset = -7.0;

        if (i == 100000)
            setSmooth (wheel, 0.8);

        smoothTarget (wheel, position);
        movePoint (wheel);

        const auto a = wheel.timeScale * 0.005;
        target = position * a + (1.0 - a) * target;
        const auto aim = wheel.midiOffset / 12.0 + target;
        const auto before = follower;
        follower = before > aim   ? std::max (before - wheel.slewStep, aim)
                   : before < aim ? std::min (before + wheel.slewStep, aim)
                                  : before;

        if (point > follower || point < follower)
        {
            velocity += point > follower ? -wheel.acceleration : +wheel.acceleration;
            point += velocity;
        }

        point += (follower - point) * wheel.pull;

        if (std::abs (aim - point) < 3.0e-5 && std::abs (velocity) < 1.0e-6)
        {
            velocity = 0.0;
            follower = point = aim;
        }

        furthest = std::max ({ furthest, std::abs (wheel.point - point), std::abs (wheel.follower - follower),
                               std::abs (wheel.velocity - velocity), std::abs (wheel.target - target) });
        ASSERT_EQ (wheel.semitones, static_cast<float> ((wheel.point - 0.5) * 12.0));
    }

    EXPECT_LT (furthest, 1.0e-12);
}

// A speed limit in samples instead of seconds, or none: at 44.1 kHz a jump over half the travel takes 313 samples or more.
TEST_P (WheelAtRate, FollowsAJumpInTheSameTime)
{
    WheelRecord wheel;
    rest (wheel, GetParam(), 12.0, 0.5);
    auto samples = 0;

    for (auto before = 0.5; wheel.follower < 0.99; ++samples, before = wheel.follower)
    {
        smoothTarget (wheel, 1.0);
        movePoint (wheel);
        ASSERT_LE (wheel.follower - before, 1.6e-3 * wheel.timeScale + 1.0e-15);
    }

    // The target's own smoothing rules the end: ln 50 / 0.005 = 782 samples at 44.1 kHz.
    EXPECT_NEAR (samples * 44100.0 / GetParam(), 782.0, 2.0);
    EXPECT_GE (samples * 44100.0 / GetParam(), 313.0);
}

INSTANTIATE_TEST_SUITE_P (Rates, WheelAtRate, testing::Values (44100.0, 88200.0, 192000.0),
                          [] (const auto& row) { return std::to_string (static_cast<int> (row.param)); });

// Full gravity at a rate so low that the point would be pulled past its target and swing out of all bounds.
TEST (Wheel, PullsNoFurtherThanItsTarget)
{
    WheelRecord wheel;
    wheel.timeScale = 441.0;
    setGravity (wheel, 1.0);
    EXPECT_EQ (wheel.pull, 1.0);
}

// A span change that forgets the offset, clamps the shift instead of the position, or keeps the velocity.
TEST (Wheel, KeepsItsShiftWhenTheSpanChanges)
{
    struct Row
    {
        double newSpan, offset, ratio, target;
    };

    for (const auto& [newSpan, offset, ratio, target] :
         { Row { 48.0, 0.0, 0.25, 0.5625 }, Row { 24.0, 12.0, 0.5, 0.625 + 0.5 }, Row { 2.0, 0.0, 6.0, 1.0 },
           Row { 2.0, -1.0, 6.0, 1.0 - 0.5 }, Row { 12.0, 0.0, 1.0, 0.75 } })
    {
        WheelRecord wheel;
        EXPECT_EQ (wheel.span, -1.0);
        wheel.target = 0.75;
        EXPECT_EQ (setRange (wheel, 12.0), 1.0) << "there was no span yet";
        EXPECT_EQ (wheel.target, 0.75);
        wheel.velocity = 0.01;
        wheel.midiOffset = offset;

        EXPECT_DOUBLE_EQ (setRange (wheel, newSpan), ratio);
        EXPECT_DOUBLE_EQ (wheel.target, target);
        EXPECT_EQ (wheel.point, wheel.target);
        EXPECT_EQ (wheel.follower, wheel.target);
        EXPECT_EQ (wheel.velocity, 0.0);
        EXPECT_DOUBLE_EQ (wheel.inverseSpan, 1.0 / newSpan);
    }

    WheelRecord low;
    low.target = 0.25;
    setRange (low, 12.0);
    setRange (low, 2.0);
    EXPECT_EQ (low.target, 0.0);
}

// An offset that is set instead of added: it adds up with every call, and the smoothing takes it out again.
TEST (Wheel, AddsItsOffsetAtEveryRest)
{
    WheelRecord wheel;
    rest (wheel, 44100.0, 12.0, 0.5);
    wheel.midiOffset = 3.0;
    wheel.velocity = 0.01;
    reanchor (wheel);
    EXPECT_DOUBLE_EQ (wheel.target, 0.75);
    EXPECT_EQ (wheel.velocity, 0.0);
    reanchor (wheel);
    EXPECT_DOUBLE_EQ (wheel.target, 1.0);
    EXPECT_EQ (wheel.point, wheel.target);
    EXPECT_EQ (wheel.follower, wheel.target);

    for (int i = 0; i < 441000; ++i)
    {
        smoothTarget (wheel, 0.5);
        movePoint (wheel);
    }

    EXPECT_NEAR (wheel.target, 0.5, 1.0e-12);
    EXPECT_NEAR (wheel.semitones, 3.0f, 1.0e-3f);
}

// A wheel that never quite rests, so that the dry signal never takes over; or one that is stopped while it still moves.
TEST (Wheel, ComesToRestOnlyWhenNearAndSlow)
{
    struct Row
    {
        double distance, velocity;
        bool rests;
    };

    for (const auto& [distance, velocity, rests] :
         { Row { 2.9e-5, 0.9e-6, true }, Row { -2.9e-5, -0.9e-6, true }, Row { 2.0e-5, 1.1e-6, false },
           Row { 2.0e-5, -1.1e-6, false }, Row { 3.1e-5, 0.0, false } })
    {
        WheelRecord wheel;
        wheel.target = 0.5;
        setRange (wheel, 12.0); // acceleration and pull are still 0
        wheel.point = 0.5 + distance;
        wheel.velocity = velocity;
        movePoint (wheel);
        EXPECT_EQ (wheel.point == 0.5, rests) << distance << ", " << velocity;
        EXPECT_EQ (wheel.velocity, rests ? 0.0 : velocity);
    }
}
} // namespace
} // namespace tarvelline::test
