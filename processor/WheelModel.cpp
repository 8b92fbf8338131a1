// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/WheelModel.h"

#include <algorithm>
#include <cmath>

namespace tarvelline
{
namespace
{
constexpr double centre = 0.5; // wheel units: no shift

// Per sample at 44.1 kHz
constexpr double targetShare = 0.005; // of the distance to the wheel's value that the target closes
constexpr double accelerationPerInertia = 1.0e-8;
constexpr double minimumAcceleration = 5.0e-10;
constexpr double pullPerGravity = 0.004;
constexpr double minimumGravity = 0.002; // a wheel without gravity still comes home, slowly
constexpr double slewUnit = 0.0001;      // 0.0016 a sample without smoothing, 8.1e-7 with all of it

// Nearer and slower than this the point is put to rest on its target.
constexpr double restDistance = 3.0e-5;
constexpr double restVelocity = 1.0e-6;

/** A NaN in a coefficient would stay in the point when the coefficient is right again. */
double numberOrZero (double amount) noexcept { return std::isnan (amount) ? 0.0 : amount; }

/** A wheel in motion, taken out of the record that other threads see. */
struct Motion
{
    explicit Motion (const WheelRecord& wheel) noexcept
        : target (wheel.target), follower (wheel.follower), velocity (wheel.velocity), point (wheel.point),
          share (wheel.timeScale * targetShare), offset (wheel.inverseSpan * wheel.midiOffset),
          slewStep (wheel.slewStep), acceleration (wheel.acceleration), pull (wheel.pull), span (wheel.span)
    {
    }

    void smooth (double wheelValue) noexcept { target = wheelValue * share + (1.0 - share) * target; }

    void move() noexcept
    {
        const auto destination = offset + target;

        if (follower > destination)
            follower = std::max (follower - slewStep, destination);
        else if (follower < destination)
            follower = std::min (follower + slewStep, destination);

        if (point != follower) // a point on its follower waits there, whatever its velocity
        {
            velocity += point < follower ? acceleration : -acceleration;
            point += velocity;
        }

        point += (follower - point) * pull;

        if (std::abs (destination - point) < restDistance && std::abs (velocity) < restVelocity)
        {
            velocity = 0.0;
            follower = point = destination;
        }
    }

    float semitones() const noexcept { return static_cast<float> ((point - centre) * span); }

    bool isWhere (const Motion& other) const noexcept
    {
        return target == other.target && follower == other.follower && velocity == other.velocity
               && point == other.point;
    }

    void storePoint (WheelRecord& wheel) const noexcept
    {
        wheel.follower = follower;
        wheel.velocity = velocity;
        wheel.point = point;
        wheel.semitones = semitones();
    }

    double target, follower, velocity, point;
    const double share, offset, slewStep, acceleration, pull, span;
};
} // namespace

void setGravity (WheelRecord& wheel, double amount) noexcept
{
    amount = numberOrZero (amount);
    wheel.gravityAmount = std::min (std::pow (amount, 5.0) + minimumGravity, 1.0);
    wheel.pull = std::min (wheel.gravityAmount * pullPerGravity * wheel.timeScale, 1.0);
}

void setInertia (WheelRecord& wheel, double amount) noexcept
{
    amount = numberOrZero (amount);
    wheel.inertiaAmount = amount;
    wheel.acceleration = (amount * accelerationPerInertia + minimumAcceleration) * wheel.timeScale;
}

void setSmooth (WheelRecord& wheel, double amount) noexcept
{
    amount = numberOrZero (amount);
    const auto openness = 1.0 - amount;
    const auto root = 2.0 - (1.0 - openness * openness * openness) * 1.7;

    wheel.smoothAmount = amount;
    wheel.slewStep = root * root * root * root * slewUnit * wheel.timeScale;
}

double setRange (WheelRecord& wheel, double newSpan) noexcept
{
    const auto inverse = 1.0 / newSpan;
    auto ratio = 1.0;
    double position = wheel.target;

    if (wheel.span > 0.0)
    {
        ratio = wheel.span * inverse;
        position = std::clamp ((position - centre) * ratio + centre, 0.0, 1.0);
    }

    wheel.inverseSpan = inverse;
    wheel.span = newSpan;
    wheel.velocity = 0.0;
    wheel.target = wheel.point = wheel.follower = position + inverse * wheel.midiOffset;
    return ratio;
}

void reanchor (WheelRecord& wheel) noexcept
{
    const auto position = wheel.target + wheel.inverseSpan * wheel.midiOffset;
    wheel.target = wheel.point = wheel.follower = position;
    wheel.velocity = 0.0;
}

void smoothTarget (WheelRecord& wheel, double wheelValue) noexcept
{
    Motion motion (wheel);
    motion.smooth (wheelValue);
    wheel.target = motion.target;
}

void movePoint (WheelRecord& wheel) noexcept
{
    Motion motion (wheel);
    motion.move();
    motion.storePoint (wheel);
}

void moveWheel (WheelRecord& wheel, double wheelValue, float* semitones, int count) noexcept
{
    Motion motion (wheel);

    for (int i = 0; i < count; ++i)
    {
        const auto before = motion;
        motion.smooth (wheelValue);
        motion.move();
        semitones[i] = motion.semitones();

        if (motion.isWhere (before)) // at rest: every further sample would leave it there
        {
            std::fill (semitones + i, semitones + count, semitones[i]);
            break;
        }
    }

    wheel.target = motion.target;
    motion.storePoint (wheel);
}
} // namespace tarvelline
