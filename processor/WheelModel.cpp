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
} // namespace

void setGravity (WheelRecord& wheel, double amount) noexcept
{
    wheel.gravityAmount = std::min (std::pow (amount, 5.0) + minimumGravity, 1.0);
    wheel.pull = std::min (wheel.gravityAmount * pullPerGravity * wheel.timeScale, 1.0);
}

void setInertia (WheelRecord& wheel, double amount) noexcept
{
    wheel.inertiaAmount = amount;
    wheel.acceleration = (amount * accelerationPerInertia + minimumAcceleration) * wheel.timeScale;
}

void setSmooth (WheelRecord& wheel, double amount) noexcept
{
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
    const auto share = wheel.timeScale * targetShare;
    wheel.target = wheelValue * share + (1.0 - share) * wheel.target;
}

void movePoint (WheelRecord& wheel) noexcept
{
    const auto target = wheel.inverseSpan * wheel.midiOffset + wheel.target;
    double follower = wheel.follower;
    double velocity = wheel.velocity;
    double point = wheel.point;

    if (follower > target)
        follower = std::max (follower - wheel.slewStep, target);
    else if (follower < target)
        follower = std::min (follower + wheel.slewStep, target);

    if (point != follower) // a point on its follower waits there, whatever its velocity
    {
        velocity += point < follower ? wheel.acceleration.get() : -wheel.acceleration.get();
        point += velocity;
    }

    point += (follower - point) * wheel.pull;

    if (std::abs (target - point) < restDistance && std::abs (velocity) < restVelocity)
    {
        velocity = 0.0;
        follower = point = target;
    }

    wheel.follower = follower;
    wheel.velocity = velocity;
    wheel.point = point;
    wheel.semitones = static_cast<float> ((point - centre) * wheel.span);
}
} // namespace tarvelline
