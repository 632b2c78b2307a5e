// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/NeedleFilter.h"

#include <vector>

namespace tarvik
{
/** A moving needle that shows how large the mean of the channels is on average. A sine at 18 dB below the largest
    sample value, with the calibration at 18, reads 1, which is 0 VU. */
class NeedleMeter
{
public:
    // A Stage that changes nothing. NaN and infinity count as 0, because the needle would never recover from them.
    void prepare (double rateHz, int numChannels, int maxSamples);
    void reset() noexcept;

    void release() { magnitude = {}; }

    void process (const float* const* channels, int numSamples) noexcept;

    /** Audio thread: as much silence. */
    void skip (int numSamples) noexcept;

    /** Linear, 1 is 0 VU, at the end of the last row; below zero while nothing has been measured. Audio thread. */
    float getReading() const noexcept { return reading; }

private:
    static constexpr float unmeasured = -50.0f;

    void read() noexcept;

    NeedleFilter needle;
    int numMain = 0;
    std::vector<float> magnitude;
    float reading = unmeasured;
};
} // namespace tarvik
