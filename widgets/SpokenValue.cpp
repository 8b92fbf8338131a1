// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/SpokenValue.h"

namespace tarvelline
{
namespace
{
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

class ModeButtonHandler : public juce::AccessibilityHandler
{
public:
    explicit ModeButtonHandler (juce::Button& owner)
        : AccessibilityHandler (
            owner, juce::AccessibilityRole::toggleButton,
            juce::AccessibilityActions()
                .addAction (juce::AccessibilityActionType::press, [&owner] { owner.triggerClick(); })
                .addAction (juce::AccessibilityActionType::toggle, [&owner] { owner.triggerClick(); }),
            { std::make_unique<Value> ([&owner] { return owner.getButtonText(); }) }),
          button (owner)
    {
    }

    juce::AccessibleState getCurrentState() const override
    {
        const auto state = AccessibilityHandler::getCurrentState().withCheckable();
        return button.getToggleState() ? state.withChecked() : state;
    }

private:
    juce::Button& button;
};
} // namespace

std::unique_ptr<juce::AccessibilityHandler> speakingHandler (juce::Component& component,
                                                             std::function<juce::String()> value)
{
    return std::make_unique<juce::AccessibilityHandler> (
        component, juce::AccessibilityRole::staticText, juce::AccessibilityActions(),
        juce::AccessibilityHandler::Interfaces { std::make_unique<Value> (std::move (value)) });
}

std::unique_ptr<juce::AccessibilityHandler> ModeButton::createAccessibilityHandler()
{
    return std::make_unique<ModeButtonHandler> (*this);
}
} // namespace tarvelline
