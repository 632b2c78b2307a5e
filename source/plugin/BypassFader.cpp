// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/BypassFader.h"

#include "dsp/RampTimes.h"
#include "plugin/LatencyDelay.h"

namespace tarvik
{

void BypassFader::prepare (double rateHz, int mainChannels, int maxSamples)
{
    wet.steps = rampSteps (rateHz);
    wet.snap();
    blend.prepare (mainChannels, maxSamples);
    activeThisSlice = false;
    silentSamples = 0;
}

bool BypassFader::isSettled() const noexcept { return wet.isIdleAtOne() && silentSamples >= LatencyDelay::length; }

void BypassFader::beginSlice (const float* const* channels, int n, LatencyDelay& latencyDelay, int delay) noexcept
{
    activeThisSlice = static_cast<float> (wet.target) < 1.0f || ! wet.isIdle();

    if (activeThisSlice)
    {
        blend.split (wet, channels, n);
        silentSamples = 0;
    }
    else if (silentSamples >= LatencyDelay::length)
    {
        return;
    }

    for (int c = 0; c < blend.getNumChannels(); ++c)
    {
        // Without a fade the dry share is silence. Left as it was, the last fade would sound again at the next bypass.
        if (! activeThisSlice)
            rows::fill (blend.dryRow (c), 0.0f, n);

        latencyDelay.process (c, blend.dryRow (c), n, delay);
    }

    if (! activeThisSlice)
        silentSamples += n;
}

void BypassFader::endSlice (float* const* channels, int n) noexcept
{
    if (activeThisSlice)
        blend.join (channels, n);
}

} // namespace tarvik
