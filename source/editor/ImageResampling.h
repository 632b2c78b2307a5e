// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

namespace tarvik
{

/** A copy of an image at another size. Shrinking gives each new pixel the exact mean of the area that it covers, with
    premultiplied alpha, which JUCE's renderer does not do: it picks single pixels, and print turns ragged. Enlarging
    interpolates. A strip of frames is resampled frame by frame, so that none bleeds into its neighbours;
    `width` is that of one frame. Null for a null image or for no area. Message thread.
*/
juce::Image resampled (const juce::Image& source, int width, int height, int numFrames = 1);

} // namespace tarvik
