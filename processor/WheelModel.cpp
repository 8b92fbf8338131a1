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

/** What may be asked of the thread that moves a wheel, in the order in which that does it. */
enum Request : unsigned
{
    onSpan = 1,     // change to askedSpan, and rest where the shift stays ...
    atPosition = 2, // ... or at askedPosition
    atRest = 4      // rest at the target
};

/** A wheel in motion, taken out of the record that other threads see. */
struct Motion
{
    explicit Motion (const WheelRecord& wheel) noexcept
        : target (wheel.target), follower (wheel.follower), velocity (wheel.velocity), point (wheel.point),
          share (wheel.timeScale * targetShare), offset (1.0 / wheel.span * wheel.midiOffset),
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

    void storeIn (WheelRecord& wheel) const noexcept
    {
        wheel.target = target;
        wheel.follower = follower;
        wheel.velocity = velocity;
        wheel.point = point;
        wheel.semitones = semitones();
    }

    double target, follower, velocity, point;
    const double share, offset, slewStep, acceleration, pull, span;
};

double ratioOfSpans (double oldSpan, double newSpan) noexcept
{
    return oldSpan > 0.0 ? oldSpan * (1.0 / newSpan) : 1.0;
}

void restAt (WheelRecord& wheel, double position) noexcept
{
    wheel.target = wheel.follower = wheel.point = position + 1.0 / wheel.span * wheel.midiOffset;
    wheel.velocity = 0.0;
}

/** Where the shift in semitones stays when the span changes, as far as the wheel's travel allows. */
double positionOnSpan (const WheelRecord& wheel, double newSpan) noexcept
{
    if (wheel.span <= 0.0)
        return wheel.target;

    return std::clamp ((wheel.target - centre) * ratioOfSpans (wheel.span, newSpan) + centre, 0.0, 1.0);
}

/** Does what was asked; for the thread that has the wheel. */
void fulfilRequests (WheelRecord& wheel) noexcept
{
    const auto requests = wheel.requests.exchange (0);

    if (requests & onSpan)
    {
        const double newSpan = wheel.askedSpan;
        const auto position = requests & atPosition ? wheel.askedPosition.load() : positionOnSpan (wheel, newSpan);
        wheel.span = newSpan;
        restAt (wheel, position);
    }

    if (requests & atRest)
        restAt (wheel, wheel.target);
}

/** @returns whether the wheel is this thread's now, up to letGo() */
bool take (WheelRecord& wheel) noexcept { return ! wheel.inMotion.exchange (true); }

void letGo (WheelRecord& wheel) noexcept { wheel.inMotion = false; }

/** Does what is asked, unless another thread has the wheel: that one will, since it calls this after it has let go. */
void attend (WheelRecord& wheel) noexcept
{
    while (wheel.requests != 0 && take (wheel))
    {
        fulfilRequests (wheel);
        letGo (wheel);
    }
}

void ask (WheelRecord& wheel, unsigned requests) noexcept
{
    wheel.requests |= requests;
    attend (wheel);
}
} // namespace

void setGravity (WheelRecord& wheel, double amount) noexcept
{
    const auto gravity = std::min (std::pow (numberOrZero (amount), 5.0) + minimumGravity, 1.0);
    wheel.pull = std::min (gravity * pullPerGravity * wheel.timeScale, 1.0);
}

void setInertia (WheelRecord& wheel, double amount) noexcept
{
    wheel.acceleration = (numberOrZero (amount) * accelerationPerInertia + minimumAcceleration) * wheel.timeScale;
}

void setSmooth (WheelRecord& wheel, double amount) noexcept
{
    const auto openness = 1.0 - numberOrZero (amount);
    const auto root = 2.0 - (1.0 - openness * openness * openness) * 1.7;
    wheel.slewStep = root * root * root * root * slewUnit * wheel.timeScale;
}

double setRange (WheelRecord& wheel, double newSpan) noexcept
{
    const auto oldSpan = wheel.askedSpan.exchange (newSpan);
    ask (wheel, onSpan);
    return ratioOfSpans (oldSpan, newSpan);
}

void placeWheel (WheelRecord& wheel, double position, double newSpan) noexcept
{
    wheel.askedPosition = position;
    wheel.askedSpan = newSpan;
    ask (wheel, onSpan | atPosition | atRest);
}

void reanchor (WheelRecord& wheel) noexcept { ask (wheel, atRest); }

void moveWheel (WheelRecord& wheel, double wheelValue, float* semitones, int count) noexcept
{
    if (! take (wheel)) // it is just being put somewhere else
    {
        std::fill_n (semitones, count, wheel.semitones.get());
        return;
    }

    fulfilRequests (wheel);
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

    motion.storeIn (wheel);
    letGo (wheel);
    attend (wheel);
}
} // namespace tarvelline
