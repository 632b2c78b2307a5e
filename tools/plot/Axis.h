// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <vector>

namespace tarvik::plot
{

/** One axis with its grid. */
struct Axis
{
    struct Tick
    {
        double value = 0.0;
        juce::String label; ///< Empty for a fine line between the labelled ones.
    };

    juce::String title;
    double start = 0.0, end = 1.0;
    bool isLogarithmic = false;
    std::vector<Tick> ticks;

    /** Equal steps from start to end, each labelled. */
    static Axis linear (const juce::String& title, double start, double end, double step);

    /** In hertz, with the decades and their 2 and 5 labelled. */
    static Axis frequency (double startHz, double endHz);

    /** In seconds, logarithmic, with the decades labelled. */
    static Axis time (const juce::String& title, double startSeconds, double endSeconds);

    /** 0 at the start, 1 at the end. */
    double positionOf (double value) const noexcept;
};

} // namespace tarvik::plot
