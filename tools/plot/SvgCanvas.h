// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <vector>

namespace tarvik::plot
{

/** A place on the paper in pixels, from the upper left corner. */
struct Pixel
{
    double x = 0.0, y = 0.0;
};

struct Box
{
    double x = 0.0, y = 0.0, width = 0.0, height = 0.0;

    double right() const noexcept { return x + width; }

    double bottom() const noexcept { return y + height; }
};

enum class Anchor
{
    start,
    middle,
    end
};

/** How a line is drawn. */
struct Pen
{
    juce::String colour;
    double width = 1.0;
    bool isDashed = false;
};

/** How a text is set. Sizes in pixels. */
struct TextStyle
{
    double size = 12.0;
    juce::String colour = "#333333";
    Anchor anchor = Anchor::start;
    bool isBold = false;
    bool isVertical = false; ///< Reads upwards.
};

/** An SVG document on white paper, so that it reads the same on a light and on a dark page. Coordinates are written
    with one decimal: what is drawn twice from the same numbers is the same file, byte by byte.
*/
class SvgCanvas
{
public:
    /** `description` is what a reader without eyes gets. */
    SvgCanvas (double width, double height, const juce::String& description);

    void line (Pixel from, Pixel to, const Pen& pen);
    void frame (const Box& box, const juce::String& colour);
    void dot (Pixel centre, double radius, const juce::String& colour);
    void text (Pixel place, const juce::String& words, const TextStyle& style);

    /** Points that lie on the line of their neighbours, to a tenth of a pixel, are left away. */
    void polyline (const std::vector<Pixel>& points, const Pen& pen);

    /** What is drawn until `endClip` shows only inside the box. */
    void beginClip (const Box& box);
    void endClip();

    /** The whole document. */
    juce::String finished() const;

private:
    juce::String document;
    int numClips = 0;
};

} // namespace tarvik::plot
