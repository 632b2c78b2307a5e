// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/BypassFader.h"

#include "dsp/RowOperations.h"
#include "plugin/LatencyDelay.h"
#include "strip/RampTimes.h"

namespace tarvik
{

void BypassFader::prepare (double rateHz, int mainChannels, int maxSamples)
{
    numChannels = mainChannels;
    wet.steps = rampSteps (rateHz);
    wet.remaining = 0;
    wet.current = wet.target;
    rowLength = static_cast<std::size_t> (maxSamples);
    storage.assign (static_cast<std::size_t> (numChannels + firstSignalRow) * rowLength, 0.0f);
    activeThisSlice = false;
}

void BypassFader::beginSlice (const float* const* channels, int n, LatencyDelay& latencyDelay, int delay) noexcept
{
    activeThisSlice = static_cast<float> (wet.target) < 1.0f || ! wet.isIdle();

    if (activeThisSlice)
    {
        wet.fill (rowAt (wetRow), n);
        rows::fill (rowAt (dryRow), 1.0f, n);
        rows::subtract (rowAt (dryRow), rowAt (wetRow), n);
    }

    for (int c = 0; c < numChannels; ++c)
    {
        auto* const dry = rowAt (firstSignalRow + c);

        // At rest the dry share is nothing at all. Left as they were, the rows would sound again at the next bypass.
        if (activeThisSlice)
            rows::multiply (dry, channels[c], rowAt (dryRow), n);
        else
            rows::fill (dry, 0.0f, n);

        latencyDelay.process (c, dry, n, delay);
    }
}

void BypassFader::endSlice (float* const* channels, int n) noexcept
{
    if (! activeThisSlice)
        return;

    for (int c = 0; c < numChannels; ++c)
    {
        rows::multiply (channels[c], rowAt (wetRow), n);
        rows::add (channels[c], rowAt (firstSignalRow + c), n);
    }
}

} // namespace tarvik
