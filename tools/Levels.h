// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <algorithm>
#include <cmath>

namespace tarvik
{

/** Peak and mean power of one channel over a whole run. Samples that are not finite numbers are counted and left out. */
class ChannelLevels
{
public:
    void add (const float* samples, int numSamples) noexcept
    {
        for (int i = 0; i < numSamples; ++i)
        {
            if (! std::isfinite (samples[i]))
            {
                ++numBadSamples;
                continue;
            }

            const auto x = static_cast<double> (samples[i]);
            peak = std::max (peak, std::abs (x));
            sumOfSquares += x * x;
            ++numGoodSamples;
        }
    }

    /** Relative to full scale; minus infinity for silence. */
    double peakDbfs() const noexcept { return dbfs (peak); }

    /** Relative to a full-scale square wave: a full-scale sine reads -3.01 dBFS. */
    double rmsDbfs() const noexcept
    {
        return dbfs (numGoodSamples > 0 ? std::sqrt (sumOfSquares / static_cast<double> (numGoodSamples)) : 0.0);
    }

    juce::int64 badSamples() const noexcept { return numBadSamples; }

private:
    static double dbfs (double level) noexcept { return 20.0 * std::log10 (level); }

    double peak = 0.0;
    double sumOfSquares = 0.0;
    juce::int64 numGoodSamples = 0;
    juce::int64 numBadSamples = 0;
};

} // namespace tarvik
