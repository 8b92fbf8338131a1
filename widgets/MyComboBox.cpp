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

/** As the framework's own, but for its last act from JUCE 9 on: that gives the box the keyboard, even if the host has it. */
void MyComboBox::showPopup()
{
    auto menu = *getRootMenu();

    for (juce::PopupMenu::MenuItemIterator items (menu, true); items.next();)
        items.getItem().isTicked = items.getItem().itemID == getSelectedId();

    const auto options = juce::PopupMenu::Options()
                             .withTargetComponent (this)
                             .withItemThatMustBeVisible (getSelectedId())
                             .withInitiallySelectedItem (getSelectedId())
                             .withMinimumWidth (getWidth())
                             .withMaximumNumColumns (1)
                             .withStandardItemHeight (getChildComponent (0)->getHeight());

    menu.setLookAndFeel (&getLookAndFeel());
    menu.showMenuAsync (options,
                        [box = SafePointer<MyComboBox> (this)] (int chosen)
                        {
                            if (box != nullptr)
                                box->close (chosen);
                        });
}

void MyComboBox::close (int chosen)
{
    hidePopup();

    if (chosen != 0)
        setSelectedId (chosen);
}

std::unique_ptr<juce::AccessibilityHandler> MyComboBox::createAccessibilityHandler()
{
    using Type = juce::AccessibilityActionType;
    const auto open = [this] { keyPressed (juce::KeyPress (juce::KeyPress::returnKey)); };

    return speakingHandler (
        *this, [this] { return getText(); }, juce::AccessibilityRole::comboBox,
        juce::AccessibilityActions().addAction (Type::press, open).addAction (Type::showMenu, open),
        [this] (auto state)
        { return isPopupActive() ? state.withExpandable().withExpanded() : state.withExpandable().withCollapsed(); });
}
} // namespace tarvelline
