// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/plot/Axis.h"

#include <cmath>

namespace tarvik::plot
{

namespace
{
/** With as many decimals as the step of its scale has, at most two. */
juce::String shortNumber (double value, double step)
{
    constexpr double slack = 1e-9;
    int decimals = 0;

    while (decimals < 2 && std::abs (step - std::round (step)) > slack)
    {
        step *= 10.0;
        ++decimals;
    }

    return decimals > 0 ? juce::String (value, decimals) : juce::String (juce::roundToInt (value));
}

/** 1000 as "1k". */
juce::String shortHz (double hz)
{
    constexpr double kilo = 1000.0;
    return hz >= kilo ? shortNumber (hz / kilo, hz / kilo) + "k" : shortNumber (hz, hz);
}

juce::String shortSeconds (double seconds)
{
    constexpr double millisecondsPerSecond = 1000.0;
    return seconds < 0.999 ? juce::String (juce::roundToInt (seconds * millisecondsPerSecond)) + " ms"
                           : juce::String (juce::roundToInt (seconds)) + " s";
}

template <typename Label>
Axis logarithmicAxis (double start, double end, Label&& label)
{
    constexpr double decade = 10.0;
    constexpr double roundingSlack = 1e-9;
    Axis axis { {}, start, end, true, {} };

    for (auto exponent = std::floor (std::log10 (start)); exponent <= std::ceil (std::log10 (end)); exponent += 1.0)
        for (int digit = 1; digit < static_cast<int> (decade); ++digit)
            if (const auto value = digit * std::pow (decade, exponent);
                value >= start * (1.0 - roundingSlack) && value <= end * (1.0 + roundingSlack))
                axis.ticks.push_back ({ value, label (value, digit) });

    return axis;
}
} // namespace

Axis Axis::linear (const juce::String& title, double start, double end, double step)
{
    Axis axis { title, start, end, false, {} };
    const auto numSteps = juce::roundToInt ((end - start) / step);

    for (int i = 0; i <= numSteps; ++i)
        axis.ticks.push_back ({ start + i * step, shortNumber (start + i * step, step) });

    return axis;
}

Axis Axis::frequency (double startHz, double endHz)
{
    auto axis = logarithmicAxis (startHz, endHz,
                                 [] (double hz, int digit)
                                 { return digit == 1 || digit == 2 || digit == 5 ? shortHz (hz) : juce::String(); });
    axis.title = "Frequency / Hz";
    return axis;
}

Axis Axis::time (const juce::String& title, double startSeconds, double endSeconds)
{
    auto axis = logarithmicAxis (startSeconds, endSeconds,
                                 [] (double seconds, int digit)
                                 { return digit == 1 ? shortSeconds (seconds) : juce::String(); });
    axis.title = title;
    return axis;
}

double Axis::positionOf (double value) const noexcept
{
    return isLogarithmic ? std::log (value / start) / std::log (end / start) : (value - start) / (end - start);
}

} // namespace tarvik::plot
