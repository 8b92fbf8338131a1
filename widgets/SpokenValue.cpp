// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/SpokenValue.h"

#include <utility>

namespace tarvelline
{
namespace
{
using State = juce::AccessibleState;

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

class Handler : public juce::AccessibilityHandler
{
public:
    Handler (juce::Component& owner, std::function<juce::String()> value, juce::AccessibilityRole ownRole,
             juce::AccessibilityActions ownActions, std::function<State (State)> stateOf)
        : AccessibilityHandler (owner, ownRole, std::move (ownActions),
                                { std::make_unique<Value> (std::move (value)) }),
          addState (std::move (stateOf))
    {
    }

    State getCurrentState() const override
    {
        const auto state = AccessibilityHandler::getCurrentState();
        return addState ? addState (state) : state;
    }

private:
    const std::function<State (State)> addState;
};
} // namespace

std::unique_ptr<juce::AccessibilityHandler>
speakingHandler (juce::Component& component, std::function<juce::String()> value, juce::AccessibilityRole role,
                 juce::AccessibilityActions actions, std::function<State (State)> stateOf)
{
    return std::make_unique<Handler> (component, std::move (value), role, std::move (actions), std::move (stateOf));
}
} // namespace tarvelline
