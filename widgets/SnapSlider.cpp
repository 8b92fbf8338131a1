// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/SnapSlider.h"

#include <cmath>

namespace tarvelline
{
namespace
{
// Of a step of the grid
constexpr double lineSlack = 1.0e-5; // a float's error at 48 steps is a tenth of it
constexpr double stepSlack = 1.0e-3; // what a hundred free steps add up to; nobody hears less

constexpr double shiftShare = 0.1;            // of a free step
constexpr float notchTravel = 50.0f / 256.0f; // as the framework counts a notch on X11; elsewhere it is a little more
} // namespace

bool SnapSlider::isSnapping (juce::ModifierKeys keys) const { return snapTo > 0.0 && ! keys.isShiftDown(); }

double SnapSlider::snapValue (double attemptedValue, DragMode)
{
    const auto stands = std::equal_to<double>() (attemptedValue, getValue());

    if (stands || ! isSnapping (juce::ModifierKeys::currentModifiers))
        return attemptedValue;

    const auto place = (attemptedValue - 0.5) * snapTo;
    return std::trunc (place + std::copysign (lineSlack, place)) / snapTo + 0.5;
}

/** A click is no drag, although no hand holds still: the lean to the centre would make a semitone of one pixel. */
void SnapSlider::mouseDrag (const juce::MouseEvent& event)
{
    if (event.mouseWasDraggedSinceMouseDown() || ! isSnapping (event.mods))
        Slider::mouseDrag (event);
}

void SnapSlider::mouseWheelMove (const juce::MouseEvent& event, const juce::MouseWheelDetails& wheel)
{
    step (notchesOf (wheel), event.mods);
}

bool SnapSlider::keyPressed (const juce::KeyPress& key)
{
    using Key = juce::KeyPress;
    const auto modifiers = key.getModifiers();
    const auto isOneOf = [&] (int first, int second) { return key.isKeyCode (first) || key.isKeyCode (second); };
    const auto direction = isOneOf (Key::upKey, Key::rightKey) ? 1 : isOneOf (Key::downKey, Key::leftKey) ? -1 : 0;

    if (direction == 0 || modifiers.withoutFlags (juce::ModifierKeys::shiftModifier).isAnyModifierKeyDown())
        return false; // the host's

    step (direction, modifiers);
    return true;
}

void SnapSlider::step (int steps, juce::ModifierKeys modifiers)
{
    if (steps == 0 || ! isEnabled() || isMouseButtonDown()) // in the middle of a drag's gesture
        return;

    auto value = getValue();

    if (isSnapping (modifiers))
    {
        const auto place = (value - 0.5) * snapTo;
        const auto line = steps > 0 ? std::floor (place + stepSlack) : std::ceil (place - stepSlack);
        value = (line + steps) / snapTo + 0.5;
    }
    else
    {
        value += steps * freeStep * (snapTo <= 0.0 && modifiers.isShiftDown() ? shiftShare : 1.0);
    }

    value = getRange().clipValue (value);

    if (std::not_equal_to<double>() (value, getValue())) // no gesture at an end
    {
        const ScopedDragNotification gesture (*this);
        setValue (value, juce::sendNotificationSync);
    }
}

/** Devices that scroll smoothly say many small parts of a notch. */
int SnapSlider::notchesOf (const juce::MouseWheelDetails& wheel)
{
    const auto delta = (std::abs (wheel.deltaX) > std::abs (wheel.deltaY) ? -wheel.deltaX : wheel.deltaY)
                       * (wheel.isReversed ? -1.0f : 1.0f);

    if (delta * wheelTravel < 0.0f) // turned round
        wheelTravel = 0.0f;

    wheelTravel += wheel.isSmooth ? delta : juce::jlimit (-notchTravel, notchTravel, delta);
    const auto notches = static_cast<int> (wheelTravel / notchTravel);
    wheelTravel -= static_cast<float> (notches) * notchTravel;
    return notches;
}
} // namespace tarvelline
