// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/HostedControl.h"

namespace tarvelline
{
bool showHostMenu (juce::Component& control)
{
    auto* editor = control.findParentComponentOfClass<juce::AudioProcessorEditor>();
    const auto* host = editor != nullptr ? editor->getHostContext() : nullptr;
    const auto index = host != nullptr ? editor->getControlParameterIndex (control) : -1;

    if (index < 0)
        return false;

    const auto menu = host->getContextMenuForParameter (editor->processor.getParameters()[index]);

    if (menu == nullptr)
        return false;

    menu->showNativeMenu (editor->getMouseXYRelative());
    return true;
}
} // namespace tarvelline
