// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/EmbeddedResources.h"
#include "editor/ImageResampling.h"

#include <juce_events/juce_events.h>

#include <map>
#include <span>

namespace tarvik
{

/** The pictures at the sizes that windows draw them at: one filtered copy for each picture and size, for all controls of
    all windows in the process. They outlive the last window, so that the next one opens at once, and go when JUCE shuts
    down, with the last instance. Message thread only.
*/
class ScaledPictures final : private juce::DeletedAtShutdown
{
public:
    /** A picture with frames of these sizes in pixels. */
    struct Copy
    {
        Picture picture = Picture::none;
        int frameWidth = 0, frameHeight = 0;

        auto operator<=> (const Copy&) const = default;
    };

    ~ScaledPictures() override { clearSingletonInstance(); }

    JUCE_DECLARE_SINGLETON_SINGLETHREADED (ScaledPictures, false)

    /** Null if a side is not positive. The first call for a size makes the copy, and drops copies that no control holds
        any more.
    */
    juce::Image get (const Copy& wanted);

    /** Makes all of them that are missing, each picture on a thread of its own, and returns when they are there: the
        largest take a tenth of a second each to decode. Controls must hold them before the next call of
        `get`, which drops the others.
    */
    void makeTogether (std::span<const Copy> wanted);

    /** Drops the copies that no control holds. */
    void releaseUnused();

    /** Bytes of all copies. */
    std::size_t memoryInUse() const;

    /** Where pictures come from. A program may put in another, for any thread to call, while nobody holds a copy. */
    std::function<bool (Picture picture, const TakeRow& takeRow)> readPicture = readEmbeddedPicture;

private:
    /** Copies of one picture that are being made while it is read once for all. */
    using Work = std::map<Copy, RowResampler>;

    static void begin (Work& work, const Copy& copy);
    bool read (Work& work) const; ///< True if the picture could be read. Any thread.
    void keep (const Work& work);

    std::map<Copy, juce::Image> copies;
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

    /** What drawing over an area takes, at a display's scale. */
    ScaledPictures::Copy copyFor (juce::Rectangle<int> area, float scale) const;

    /** The scale of what is drawn on: pixels for each of a component's. */
    static float scaleOf (juce::Graphics& g) { return g.getInternalContext().getPhysicalPixelScaleFactor(); }

    /** Takes that copy. Drawing does so by itself. */
    void hold (juce::Rectangle<int> area, float scale);

    /** Draws the whole picture over an area; nothing without a picture. */
    void draw (juce::Graphics& g, juce::Rectangle<int> area) { drawFrame (g, area, 0, 0.0f); }

    /** The same around the area's centre, turned by an angle in radians, clockwise. */
    void drawTurned (juce::Graphics& g, juce::Rectangle<int> area, float angle) { drawFrame (g, area, 0, angle); }

    /** The same for a frame of a strip. */
    void drawFrame (juce::Graphics& g, juce::Rectangle<int> area, int frame, float angle);

private:
    Picture picture = Picture::none;
    ScaledPictures::Copy held;
    juce::Image copy;
};

} // namespace tarvik
