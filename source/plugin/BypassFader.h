// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/Ramps.h"
#include "strip/WetDryRows.h"

namespace tarvik
{

class LatencyDelay;

/** Fades between the strip and its delayed input over 100 ms; without a fade it costs nothing once the delay's history
    is silent. Audio thread, except `prepare`.
*/
class BypassFader
{
public:
    LinearRamp wet { 1.0 }; ///< The strip's share.

    /** While no audio runs: sizes and clears the rows for slices of at most maxSamples, and ends a fade. */
    void prepare (double rateHz, int mainChannels, int maxSamples);

    /** Whether no fade runs, and the delay's history is silent. */
    bool isSettled() const noexcept;

    /** Keeps the dry share of the slice before the strip works on it, delayed by `delay` samples. */
    void beginSlice (const float* const* channels, int n, LatencyDelay& latencyDelay, int delay) noexcept;

    /** Blends the strip's output with what `beginSlice` kept. */
    void endSlice (float* const* channels, int n) noexcept;

private:
    WetDryRows blend;
    bool activeThisSlice = false;
    int silentSamples = 0; ///< What the delay has had since the last fade; counted no further than its length.
};

} // namespace tarvik
