// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ConsoleLayout.h"

#include <optional>

namespace tarvik
{

/** The window's fixed parts, in its own pixels: what does not grow with the zoom. */
namespace editorSize
{
inline constexpr int stripHeight = 24; ///< Of the strip above and of the bar below.
inline constexpr int shadowHeight = 8; ///< Between each of them and the console.
inline constexpr int frameHeight = 2 * (stripHeight + shadowHeight);

/** The console's, at a zoom of 1. */
inline constexpr double panelWidth = consoleLayout::designWidth / static_cast<double> (picturePixelsPerPixel);
inline constexpr float panelHeight = consoleLayout::designHeight / static_cast<float> (picturePixelsPerPixel);

/** The editor's width and height for a zoom setting, held within what a window can be drawn at; one that is not a number
    counts as 1. The window takes at most nine tenths of the display's width and height, if there is a display with an
    area, however small that makes it.
*/
juce::Point<int> forZoom (double zoomSetting, std::optional<juce::Rectangle<int>> display);

/** The same for exactly this zoom, for pictures of the window. */
juce::Point<int> atZoom (float zoom);
} // namespace editorSize

} // namespace tarvik
