// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace tarvik
{

/** What the system shows of an area of the screen, as red, green and blue in one number for each pixel; empty without a screen.
    Apart from JUCE's headers, whose names are also Xlib's and Windows'.
*/
std::vector<std::uint32_t> captureScreen (int x, int y, int width, int height);

} // namespace tarvik
