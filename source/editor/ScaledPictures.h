// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/EmbeddedResources.h"

#include <map>

namespace tarvik
{

/** The pictures at the sizes that are currently on a screen: one filtered copy for each picture and size, for all
    controls of all windows in the process. Held through `juce::SharedResourcePointer`, so it goes with the last window.
    Message thread only.
*/
class ScaledPictures
{
public:
    /** The picture with frames of these sizes in pixels; null if a side is not positive. The first call for a size
        makes the copy, and drops copies that no control holds any more; at its own size the picture itself is given.
    */
    juce::Image get (Picture picture, int frameWidth, int frameHeight);

    /** Bytes of all copies. */
    std::size_t memoryInUse() const;

private:
    struct Key
    {
        Picture picture;
        int width, height;

        auto operator<=> (const Key&) const = default;
    };

    std::map<Key, juce::Image> copies;
};

/** How many frames a picture has, from left to right. */
int numFramesOf (Picture picture);

/** A picture as one control draws it: keeps the copy for the control's size and the display's scale, and takes another
    when one of them changes.
*/
class ScaledPicture
{
public:
    ScaledPicture() = default;

    explicit ScaledPicture (Picture pictureToDraw) : picture (pictureToDraw) {}

    Picture getPicture() const noexcept { return picture; }

    void setPicture (Picture pictureToDraw);

    /** Draws the whole picture over an area; nothing without a picture. */
    void draw (juce::Graphics& g, juce::Rectangle<int> area) { drawFrame (g, area, 0, 0.0f); }

    /** The same around the area's centre, turned by an angle in radians, clockwise. */
    void drawTurned (juce::Graphics& g, juce::Rectangle<int> area, float angle) { drawFrame (g, area, 0, angle); }

    /** The same for a frame of a strip. */
    void drawFrame (juce::Graphics& g, juce::Rectangle<int> area, int frame, float angle);

private:
    Picture picture = Picture::none;
    juce::Image copy;
    int frameWidth = 0, frameHeight = 0;
    juce::SharedResourcePointer<ScaledPictures> pictures;
};

} // namespace tarvik
