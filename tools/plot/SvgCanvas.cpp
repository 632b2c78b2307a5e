// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/plot/SvgCanvas.h"

#include <cmath>

namespace tarvik::plot
{

namespace
{
juce::String escaped (const juce::String& words)
{
    return words.replace ("&", "&amp;").replace ("<", "&lt;").replace (">", "&gt;").replace ("\"", "&quot;");
}

juce::String number (double value)
{
    const auto text = juce::String (value, 1);
    return text == "-0.0" ? juce::String ("0") : text.endsWith (".0") ? text.dropLastCharacters (2) : text;
}

juce::String attribute (const char* name, const juce::String& value)
{
    return juce::String (" ") + name + "=\"" + value + "\"";
}

juce::String attribute (const char* name, double value) { return attribute (name, number (value)); }

juce::String strokeOf (const Pen& pen)
{
    auto text = attribute ("stroke", pen.colour) + attribute ("stroke-width", pen.width);
    return pen.isDashed ? text + attribute ("stroke-dasharray", "5 3") : text;
}

juce::String boxOf (const Box& box)
{
    return attribute ("x", box.x) + attribute ("y", box.y) + attribute ("width", box.width)
           + attribute ("height", box.height);
}

/** How far a point lies from the line between two others. */
double distanceFromLine (Pixel point, Pixel from, Pixel to)
{
    const auto dx = to.x - from.x, dy = to.y - from.y;
    const auto length = std::hypot (dx, dy);
    const auto px = point.x - from.x, py = point.y - from.y;
    return length > 0.0 ? std::abs (dx * py - dy * px) / length : std::hypot (px, py);
}

/** Keeps a point unless every one since the last kept one lies on the line to the next. */
std::vector<Pixel> thinned (const std::vector<Pixel>& points)
{
    constexpr double tolerance = 0.1;
    std::vector<Pixel> kept;
    std::size_t last = 0;

    for (std::size_t i = 0; i < points.size(); ++i)
    {
        auto isNeeded = i == 0 || i + 1 == points.size();

        for (auto k = last + 1; ! isNeeded && k <= i; ++k)
            isNeeded = distanceFromLine (points[k], points[last], points[i + 1]) > tolerance;

        if (isNeeded)
        {
            kept.push_back (points[i]);
            last = i;
        }
    }

    return kept;
}
} // namespace

SvgCanvas::SvgCanvas (double width, double height, const juce::String& description)
{
    document << "<svg xmlns=\"http://www.w3.org/2000/svg\"" << attribute ("width", width)
             << attribute ("height", height) << attribute ("viewBox", "0 0 " + number (width) + " " + number (height))
             << attribute ("font-family", "sans-serif") << attribute ("role", "img") << ">\n<title>"
             << escaped (description) << "</title>\n<rect" << boxOf ({ 0.0, 0.0, width, height })
             << attribute ("fill", "#ffffff") << "/>\n";
}

void SvgCanvas::line (Pixel from, Pixel to, const Pen& pen)
{
    document << "<line" << attribute ("x1", from.x) << attribute ("y1", from.y) << attribute ("x2", to.x)
             << attribute ("y2", to.y) << strokeOf (pen) << "/>\n";
}

void SvgCanvas::frame (const Box& box, const juce::String& colour)
{
    document << "<rect" << boxOf (box) << attribute ("fill", "none") << strokeOf ({ colour }) << "/>\n";
}

void SvgCanvas::dot (Pixel centre, double radius, const juce::String& colour)
{
    document << "<circle" << attribute ("cx", centre.x) << attribute ("cy", centre.y) << attribute ("r", radius)
             << attribute ("fill", colour) << "/>\n";
}

void SvgCanvas::text (Pixel place, const juce::String& words, const TextStyle& style)
{
    constexpr const char* anchors[] = { "start", "middle", "end" };
    document << "<text" << attribute ("x", place.x) << attribute ("y", place.y) << attribute ("font-size", style.size)
             << attribute ("fill", style.colour);

    if (style.anchor != Anchor::start)
        document << attribute ("text-anchor", anchors[static_cast<int> (style.anchor)]);

    if (style.isBold)
        document << attribute ("font-weight", "bold");

    if (style.isVertical)
        document << attribute ("transform", "rotate(-90 " + number (place.x) + " " + number (place.y) + ")");

    document << ">" << escaped (words) << "</text>\n";
}

void SvgCanvas::polyline (const std::vector<Pixel>& points, const Pen& pen)
{
    juce::String places;

    for (const auto& point : thinned (points))
        places << (places.isEmpty() ? "" : " ") << number (point.x) << "," << number (point.y);

    document << "<polyline" << attribute ("fill", "none") << strokeOf (pen) << attribute ("stroke-linejoin", "round")
             << attribute ("points", places) << "/>\n";
}

void SvgCanvas::beginClip (const Box& box)
{
    const auto id = "clip" + juce::String (++numClips);
    document << "<clipPath" << attribute ("id", id) << "><rect" << boxOf (box) << "/></clipPath>\n<g"
             << attribute ("clip-path", "url(#" + id + ")") << ">\n";
}

void SvgCanvas::endClip() { document << "</g>\n"; }

juce::String SvgCanvas::finished() const { return document + "</svg>\n"; }

} // namespace tarvik::plot
