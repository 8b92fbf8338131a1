// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvelline
{
/** Leaves the keyboard of a host alone when its user clicks into a plug-in's window: the framework would ask the display's
    server for it at every click, whatever the component below thinks of it. A host that hands its keyboard on, and the Tab
    key, work as before. For all windows of this module, from now on; call it on the message thread once a window has its
    peer, as often as you like. */
void leaveKeyboardToHost();
} // namespace tarvelline
