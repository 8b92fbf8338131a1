// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/SpokenValue.h"

namespace tarvelline
{
namespace
{
using Actions = juce::AccessibilityActions;
using State = juce::AccessibleState;
using Type = juce::AccessibilityActionType;

class Value : public juce::AccessibilityTextValueInterface
{
public:
    explicit Value (std::function<juce::String()> source) : value (std::move (source)) {}

    bool isReadOnly() const override { return true; }
    juce::String getCurrentValueAsString() const override { return value(); }
    void setValueAsString (const juce::String&) override {}

private:
    const std::function<juce::String()> value;
};

/** Says a control's title, its value and the state that it is in. */
class Handler : public juce::AccessibilityHandler
{
public:
    Handler (juce::Component& owner, juce::AccessibilityRole ownRole, Actions ownActions,
             std::function<juce::String()> value, std::function<State (State)> stateOf)
        : AccessibilityHandler (owner, ownRole, std::move (ownActions),
                                { std::make_unique<Value> (std::move (value)) }),
          addState (std::move (stateOf))
    {
    }

    State getCurrentState() const override { return addState (AccessibilityHandler::getCurrentState()); }

private:
    const std::function<State (State)> addState;
};
} // namespace

std::unique_ptr<juce::AccessibilityHandler> speakingHandler (juce::Component& component,
                                                             std::function<juce::String()> value)
{
    return std::make_unique<Handler> (component, juce::AccessibilityRole::staticText, Actions(), std::move (value),
                                      [] (State state) { return state; });
}

std::unique_ptr<juce::AccessibilityHandler> ModeButton::createAccessibilityHandler()
{
    const auto click = [this] { triggerClick(); };
    return std::make_unique<Handler> (
        *this, juce::AccessibilityRole::toggleButton,
        Actions().addAction (Type::press, click).addAction (Type::toggle, click), [this] { return getButtonText(); },
        [this] (State state)
        { return getToggleState() ? state.withCheckable().withChecked() : state.withCheckable(); });
}

std::unique_ptr<juce::AccessibilityHandler> TitledBox::createAccessibilityHandler()
{
    const auto open = [this] { showPopup(); };
    return std::make_unique<Handler> (
        *this, juce::AccessibilityRole::comboBox,
        Actions().addAction (Type::press, open).addAction (Type::showMenu, open), [this] { return getText(); },
        [this] (State state)
        { return isPopupActive() ? state.withExpandable().withExpanded() : state.withExpandable().withCollapsed(); });
}
} // namespace tarvelline
