// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

namespace tarvik
{

/** A place on a panel, as shares of its width (x, w) and height (y, h). */
struct Box
{
    float x = 0.0f, y = 0.0f, w = 0.0f, h = 0.0f;

    juce::Rectangle<int> on (int panelWidth, int panelHeight) const
    {
        const auto width = static_cast<float> (panelWidth);
        const auto height = static_cast<float> (panelHeight);
        return { juce::roundToInt (x * width), juce::roundToInt (y * height), juce::roundToInt (w * width),
                 juce::roundToInt (h * height) };
    }
};

} // namespace tarvik
