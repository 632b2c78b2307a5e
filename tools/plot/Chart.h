// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/plot/Axis.h"
#include "tools/plot/SvgCanvas.h"

namespace tarvik::plot
{

struct Point
{
    double x = 0.0, y = 0.0;
};

struct Curve
{
    juce::String label;        ///< For the legend; empty for none.
    std::vector<Point> points; ///< Where one is no finite number the line has a gap.
    juce::String colour;
    bool isDashed = false;
    bool isDots = false; ///< Single values instead of a line.
    double width = 1.6;
};

/** A few words inside the chart, in its own units. */
struct Note
{
    Point place;
    juce::String words;
    Anchor anchor = Anchor::middle;
};

/** Curves over two axes, with a heading and a legend. */
struct Chart
{
    juce::String heading;
    Axis x, y;
    std::vector<Curve> curves;
    std::vector<Note> notes;
    double height = 250.0; ///< Of the whole chart, in pixels.

    /** Everything inside the box, axes' texts and legend included. */
    void draw (SvgCanvas& canvas, const Box& box) const;
};

/** A shade of the one colour that all pictures use: 0 the lightest, 1 the darkest. */
juce::String shade (double darkness);

/** The shade of one of several curves that follow each other. */
juce::String shadeOf (std::size_t index, std::size_t count);

/** Charts under a common title, with a caption of one or more lines below. */
struct Picture
{
    juce::String name; ///< Of the file, without its ending.
    juce::String title;
    juce::StringArray caption;
    std::vector<Chart> charts {};
    int numColumns = 1;

    juce::String toSvg() const;
};

} // namespace tarvik::plot
