// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/RampTimes.h"
#include "dsp/Ramps.h"
#include "strip/WetDryRows.h"

namespace tarvik
{

/** Blends a stage in and out around what it does: `begin` before the stage, `end` after it. While the fade is idle at 1
    both cost nothing.
*/
class WetDryFader
{
public:
    /** The way in for the wet share, 0 to 1; any thread. */
    SharedRamp<LinearRamp> fade;

    /** While no audio runs. rateHz is the rate at which the stage runs; a full fade lasts 100 ms. */
    void prepare (double rateHz, int numChannels, int maxSamples)
    {
        fade.prepare (rampSteps (rateHz));
        blend.prepare (numChannels, maxSamples);
    }

    void release() { blend.release(); }

    /** Audio thread: as long as nothing else is asked of the fade, nothing is heard of the stage. */
    bool isClosed() const noexcept { return fade.get().isIdle() && fade.get().current == 0.0; }

    /** Audio thread; n is at most maxSamples. */
    void begin (const float* const* channels, int n) noexcept
    {
        isActive = ! fade.isIdleAtOne();

        if (isActive)
            blend.split (fade, channels, n);
    }

    /** Audio thread, after `begin` with the same arguments. */
    void end (float* const* channels, int n) noexcept
    {
        if (isActive)
            blend.join (channels, n);
    }

private:
    WetDryRows blend;
    bool isActive = false;
};

} // namespace tarvik
