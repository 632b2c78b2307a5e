// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EditorSize.h"

#include "plugin/EditorInterface.h"

#include <cmath>

namespace tarvik::editorSize
{

namespace
{
constexpr double shareOfDisplay = 0.9;
constexpr double wholeHeight = panelHeight + frameHeight; ///< At a zoom of 1.
constexpr float smallestOnTinyDisplay = 0.1f;

/** A zoom setting may come from a damaged project. */
float usableZoom (double setting)
{
    const auto usable = juce::jlimit (ZoomableEditor::lowestZoom, ZoomableEditor::highestZoom, setting);
    return std::isfinite (setting) ? static_cast<float> (usable) : 1.0f;
}

float largestZoomOn (juce::Rectangle<int> display)
{
    const auto byHeight = (display.getHeight() * shareOfDisplay - frameHeight) / wholeHeight;
    const auto byWidth = display.getWidth() * shareOfDisplay / panelWidth;
    return std::max (smallestOnTinyDisplay, static_cast<float> (std::min (byHeight, byWidth)));
}
} // namespace

juce::Point<int> forZoom (double zoomSetting, std::optional<juce::Rectangle<int>> display)
{
    auto zoom = usableZoom (zoomSetting);

    if (display && ! display->isEmpty())
        zoom = std::min (zoom, largestZoomOn (*display));

    return atZoom (zoom);
}

juce::Point<int> atZoom (float zoom)
{
    return { static_cast<int> (zoom * static_cast<float> (panelWidth) + 0.5f),
             static_cast<int> (zoom * panelHeight + 0.5f) + frameHeight };
}

} // namespace tarvik::editorSize
