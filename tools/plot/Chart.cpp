// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/plot/Chart.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarvik::plot
{

namespace
{
constexpr double paperWidth = 880.0;
constexpr double margin = 16.0;
constexpr double titleHeight = 40.0;
constexpr double captionLineHeight = 17.0;

constexpr double leftOfPlot = 52.0;  ///< Labels and title of the y axis.
constexpr double belowPlot = 40.0;   ///< The same of the x axis.
constexpr double abovePlot = 24.0;   ///< The chart's heading.
constexpr double rightOfPlot = 12.0; ///< Without a legend.
constexpr double legendWidth = 92.0;
constexpr double legendLineHeight = 16.0;
constexpr double legendSample = 20.0;

constexpr double smallText = 11.0;
constexpr double dotRadius = 2.6;

constexpr const char* gridColour = "#dfe3e6";
constexpr const char* fineGridColour = "#f0f2f4";
constexpr const char* frameColour = "#8a9299";
constexpr const char* axisTextColour = "#4a5157";
} // namespace

//==============================================================================
juce::String shade (double darkness)
{
    // From light to dark through one hue.
    constexpr std::array<std::array<double, 3>, 3> stops { { { 132, 205, 200 }, { 20, 132, 142 }, { 8, 48, 66 } } };
    const auto place = std::clamp (darkness, 0.0, 1.0) * 2.0;
    const auto lower = std::min (static_cast<std::size_t> (place), std::size_t { 1 });
    const auto fraction = place - static_cast<double> (lower);
    juce::String text ("#");

    for (std::size_t c = 0; c < 3; ++c)
        text << juce::String::toHexString (
                    juce::roundToInt ((1.0 - fraction) * stops[lower][c] + fraction * stops[lower + 1][c]))
                    .paddedLeft ('0', 2);

    return text;
}

juce::String shadeOf (std::size_t index, std::size_t count)
{
    return shade (count > 1 ? static_cast<double> (index) / static_cast<double> (count - 1) : 0.5);
}

//==============================================================================
namespace
{
/** The part of a chart in which the curves lie, with its two axes. */
struct PlotArea
{
    const Chart& chart;
    Box box;

    Pixel at (Point point) const noexcept
    {
        return { box.x + chart.x.positionOf (point.x) * box.width,
                 box.bottom() - chart.y.positionOf (point.y) * box.height };
    }

    /** Points that follow each other without a gap. */
    std::vector<std::vector<Pixel>> piecesOf (const std::vector<Point>& points) const
    {
        std::vector<std::vector<Pixel>> pieces;
        bool goesOn = false;

        for (const auto& point : points)
        {
            const auto isGap = ! std::isfinite (point.x) || ! std::isfinite (point.y);

            if (! isGap && ! goesOn)
                pieces.emplace_back();

            if (! isGap)
                pieces.back().push_back (at (point));

            goesOn = ! isGap;
        }

        return pieces;
    }

    void drawGrid (SvgCanvas& canvas) const
    {
        const TextStyle below { smallText, axisTextColour, Anchor::middle };
        const TextStyle beside { smallText, axisTextColour, Anchor::end };
        constexpr double gap = 6.0, lineOfText = 15.0, halfALetter = 4.0;

        for (const auto& tick : chart.x.ticks)
        {
            const auto x = at ({ tick.value, chart.y.start }).x;
            canvas.line ({ x, box.y }, { x, box.bottom() }, { tick.label.isEmpty() ? fineGridColour : gridColour });
            canvas.text ({ x, box.bottom() + lineOfText }, tick.label, below);
        }

        for (const auto& tick : chart.y.ticks)
        {
            const auto y = at ({ chart.x.start, tick.value }).y;
            canvas.line ({ box.x, y }, { box.right(), y }, { gridColour });
            canvas.text ({ box.x - gap, y + halfALetter }, tick.label, beside);
        }

        canvas.frame (box, frameColour);
        canvas.text ({ box.x + box.width / 2.0, box.bottom() + 2.0 * lineOfText + 1.0 }, chart.x.title, below);

        auto upwards = below;
        upwards.isVertical = true;
        canvas.text ({ box.x - leftOfPlot + smallText + 2.0, box.y + box.height / 2.0 }, chart.y.title, upwards);
    }

    void drawCurves (SvgCanvas& canvas) const
    {
        canvas.beginClip (box);

        for (const auto& curve : chart.curves)
            for (const auto& piece : piecesOf (curve.points))
                if (curve.isDots || piece.size() == 1)
                    for (const auto& pixel : piece)
                        canvas.dot (pixel, dotRadius, curve.colour);
                else
                    canvas.polyline (piece, { curve.colour, curve.width, curve.isDashed });

        canvas.endClip();

        for (const auto& note : chart.notes)
            canvas.text (at (note.place), note.words, { smallText, axisTextColour, note.anchor });
    }

    void drawLegend (SvgCanvas& canvas) const
    {
        constexpr double gap = 12.0, halfALetter = 4.0;
        Pixel place { box.right() + gap, box.y + legendLineHeight / 2.0 };

        for (const auto& curve : chart.curves)
        {
            if (curve.label.isEmpty())
                continue;

            if (curve.isDots)
                canvas.dot ({ place.x + legendSample / 2.0, place.y }, dotRadius, curve.colour);
            else
                canvas.line (place, { place.x + legendSample, place.y }, { curve.colour, 2.0, curve.isDashed });

            canvas.text ({ place.x + legendSample + halfALetter, place.y + halfALetter }, curve.label,
                         { smallText, axisTextColour });
            place.y += legendLineHeight;
        }
    }
};
} // namespace

void Chart::draw (SvgCanvas& canvas, const Box& box) const
{
    const auto hasLegend =
        std::any_of (curves.begin(), curves.end(), [] (const Curve& c) { return c.label.isNotEmpty(); });
    const auto right = hasLegend ? legendWidth : rightOfPlot;
    const PlotArea area { *this,
                          { box.x + leftOfPlot, box.y + abovePlot, box.width - leftOfPlot - right,
                            box.height - abovePlot - belowPlot } };
    constexpr double gap = 8.0, headingSize = 13.0;
    canvas.text ({ area.box.x, area.box.y - gap }, heading, { headingSize, "#22282c", Anchor::start, true });
    area.drawGrid (canvas);
    area.drawCurves (canvas);
    area.drawLegend (canvas);
}

juce::String Picture::toSvg() const
{
    const auto columnWidth = (paperWidth - 2.0 * margin) / numColumns;
    const auto rowHeight = [this] (std::size_t first)
    {
        double height = 0.0;

        for (auto i = first; i < std::min (charts.size(), first + static_cast<std::size_t> (numColumns)); ++i)
            height = std::max (height, charts[i].height);

        return height;
    };
    const auto step = static_cast<std::size_t> (numColumns);
    auto height = titleHeight + 2.0 * margin + captionLineHeight * caption.size();

    for (std::size_t i = 0; i < charts.size(); i += step)
        height += rowHeight (i);

    constexpr double titleSize = 17.0, captionSize = 12.0;
    SvgCanvas canvas (paperWidth, height, title + ". " + caption.joinIntoString (" "));
    canvas.text ({ margin, margin + titleSize - 2.0 }, title, { titleSize, "#14191c", Anchor::start, true });
    auto y = titleHeight;

    for (std::size_t i = 0; i < charts.size(); i += step)
    {
        for (auto k = i; k < std::min (charts.size(), i + step); ++k)
            charts[k].draw (canvas,
                            { margin + columnWidth * static_cast<double> (k - i), y, columnWidth, charts[k].height });

        y += rowHeight (i);
    }

    for (const auto& line : caption)
        canvas.text ({ margin, y += captionLineHeight }, line, { captionSize, "#4a5157" });

    return canvas.finished();
}

} // namespace tarvik::plot
