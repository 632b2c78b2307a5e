// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvik
{

/** Shows what has been waiting to be painted since the screen's last refresh. JUCE on Windows paints when the graphics driver
    announces one, and never where no driver does, as in Wine. Message thread, by a timer of the window.
*/
inline void paintWithoutRefresh()
{
#if JUCE_WINDOWS
    auto& desktop = juce::Desktop::getInstance();

    for (int i = 0; i < desktop.getNumComponents(); ++i)
        if (auto* const peer = desktop.getComponent (i)->getPeer())
            peer->performAnyPendingRepaintsNow();
#endif
}

} // namespace tarvik
