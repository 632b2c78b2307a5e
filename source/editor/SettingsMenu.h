// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/Tarvik41Processor.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <array>
#include <functional>

namespace tarvik
{

/** The menu of what is set once per instance and not automated: calibration, oversampling, noise, limiter sensitivity,
    zoom, and the external side chains, with ways to reach all instances and to keep a value as the default. Message
    thread.
*/
namespace settingsMenu
{
inline constexpr int numSubMenus = 5;

/** What the menu is built from, and what its answer refers to, however long the user thinks about it. */
struct Captured
{
    std::array<double, numSubMenus> values {}; ///< In the menu's order; a switch is 0 or 1.
    bool isCompressorKeyExternal = false;
    bool isExpanderKeyExternal = false;
};

Captured capture (const Tarvik41Processor& processor);

/** The items, with ticks at the captured values and " (default)" after those that the settings file holds. */
juce::PopupMenu build (const Tarvik41Processor& processor, const Captured& captured);

/** What an answer can ask of the window. */
struct WindowActions
{
    std::function<void()> showAbout;
    std::function<void()> updateSize;
};

/** Does what item `id` says. With Shift, a setting other than the zoom also goes to all instances of this process; with
    Alt, it also becomes the default. 0, the answer of a dismissed menu, and unknown ids do nothing.
*/
void apply (int id, juce::ModifierKeys modifiers, const Captured& captured, Tarvik41Processor& processor,
            const WindowActions& actions);
} // namespace settingsMenu

} // namespace tarvik
