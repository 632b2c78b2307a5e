// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/plot/Measurements.h"

namespace tarvik::plot
{

/** What a kind of plot gets and gives: the module to measure, and the pictures; figures worth reading are printed, one
    line each. Both may throw `ToolError` or `Interrupted`.
*/
using Pictures = std::vector<Picture>;

Pictures plotEqualiser (const juce::File& bundle);
Pictures plotCompressor (const juce::File& bundle);
Pictures plotExpander (const juce::File& bundle);
Pictures plotSaturation (const juce::File& bundle);

/** How far the equaliser's digital filters are from their network, measured through the module, beside the error that a
    bilinear transform of the same networks makes. Prints a table.
*/
void printFilterErrors (const juce::File& bundle);

/** One line of the summary: what was measured, and the figure with its unit. */
void printFigure (const juce::String& subject, double value, const char* unit, int decimals = 2);

/** The highest point of a curve. */
Point highest (const std::vector<Point>& points);

/** The lowest point of a curve. */
Point lowest (const std::vector<Point>& points);

} // namespace tarvik::plot
