// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/SnapSlider.h"

namespace tarvelline
{
double SnapSlider::snapValue (double attemptedValue, DragMode)
{
    if (snapTo <= 0.0 || juce::ModifierKeys::currentModifiers.isShiftDown())
        return attemptedValue;

    return static_cast<int> ((attemptedValue - 0.5) * snapTo) / snapTo + 0.5;
}
} // namespace tarvelline
