// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/ModeButton.h"

#include "widgets/SpokenValue.h"

namespace tarvelline
{
std::unique_ptr<juce::AccessibilityHandler> ModeButton::createAccessibilityHandler()
{
    using Type = juce::AccessibilityActionType;
    const auto click = [this] { triggerClick(); };

    return speakingHandler (
        *this, [this] { return getButtonText(); }, juce::AccessibilityRole::toggleButton,
        juce::AccessibilityActions().addAction (Type::press, click).addAction (Type::toggle, click),
        [this] (auto state) { return getToggleState() ? state.withCheckable().withChecked() : state.withCheckable(); });
}
} // namespace tarvelline
