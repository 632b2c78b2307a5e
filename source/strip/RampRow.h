// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/RampTimes.h"
#include "dsp/Ramps.h"
#include "dsp/RowOperations.h"

#include <cstddef>
#include <vector>

namespace tarvik
{
/** A smoothed value with the row of its coming samples, which is written once and kept while the ramp is idle. A full
    move lasts 0.1 s. As a Stage it is a gain. */
template <typename RampType>
class RampRow
{
public:
    explicit RampRow (double initial = 1.0) : ramp (initial) {}

    /** Any thread. */
    void request (double value) noexcept { ramp.request (value); }

    void prepare (double rateHz, int numChannels, int maxSamples)
    {
        numMain = numChannels;
        row.assign (static_cast<std::size_t> (maxSamples), 0.0f);
        ramp.prepare (rampSteps (rateHz));
        isConstant = false;
    }

    void reset() noexcept
    {
        ramp.snap();
        isConstant = false;
    }

    void release() { row = {}; }

    void process (float* const* channels, int numSamples) noexcept
    {
        const auto* const gains = advance (numSamples);

        if (! isConstantly (1.0f))
            for (int c = 0; c < numMain; ++c)
                rows::multiply (channels[c], gains, numSamples);
    }

    /** Audio thread: whether the ramp is idle and nothing waits. */
    bool isSettled() const noexcept { return ramp.isIdle(); }

    /** Audio thread: the next n values. */
    const float* advance (int n) noexcept
    {
        if (isConstant && ramp.isIdle())
            return row.data();

        ramp.takeRequest();
        isConstant = ramp.get().isIdle();
        ramp.fillTaken (row.data(), isConstant ? static_cast<int> (row.size()) : n);
        return row.data();
    }

    /** Audio thread, after advance(): whether all of these were one value. */
    bool isConstantly (float value) const noexcept { return isConstant && row.front() == value; }

private:
    SharedRamp<RampType> ramp;
    std::vector<float> row;
    int numMain = 0;
    bool isConstant = false;
};
} // namespace tarvik
