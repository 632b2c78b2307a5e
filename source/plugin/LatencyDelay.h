// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/Polyphase.h"

#include <vector>

namespace tarvik
{

/** Delays the dry signal by the samplers' latency, so that it stays in step with the wet one. Each channel keeps the
    last `length` samples, whatever the delay, which may change at any time. Audio thread, except `prepare`.
*/
class LatencyDelay
{
public:
    /** Samples of history per channel, the longest delay. */
    static constexpr int length = Polyphase::latencySamples;

    /** While no audio runs: sizes and clears the history. */
    void prepare (int numChannels);

    int getNumChannels() const noexcept { return numRows; }

    /** Delays n samples of a channel in place by `delay`, which is 0 to `length`. */
    void process (int channel, float* row, int n, int delay) noexcept;

private:
    int numRows = 0;
    std::vector<float> buffer; ///< Per channel 2 x length: the history, and room to join new samples to it.
};

} // namespace tarvik
