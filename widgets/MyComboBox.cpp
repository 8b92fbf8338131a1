// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/MyComboBox.h"

#include "widgets/SpokenValue.h"

namespace tarvelline
{
/** The text is a component, made anew with every look, that would take the keyboard by itself. */
void MyComboBox::childrenChanged()
{
    for (auto* child : getChildren())
        child->setMouseClickGrabsKeyboardFocus (false);
}

std::unique_ptr<juce::AccessibilityHandler> MyComboBox::createAccessibilityHandler()
{
    using Type = juce::AccessibilityActionType;
    const auto open = [this] { showPopup(); };

    return speakingHandler (
        *this, [this] { return getText(); }, juce::AccessibilityRole::comboBox,
        juce::AccessibilityActions().addAction (Type::press, open).addAction (Type::showMenu, open),
        [this] (auto state)
        { return isPopupActive() ? state.withExpandable().withExpanded() : state.withExpandable().withCollapsed(); });
}
} // namespace tarvelline
