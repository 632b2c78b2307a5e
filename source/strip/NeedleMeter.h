// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/NeedleFilter.h"

namespace tarvik
{
/** A moving needle that shows how large a signal is on average, of two channels their mean. A sine at 18 dB below the
    largest sample value, with the calibration at 18, rests at 1, which is 0 VU. */
class NeedleMeter
{
public:
    /** While no audio runs: a needle at rest. */
    void prepare (double rateHz);

    /** Audio thread: n samples of one or two channels. NaN and infinity count as nothing, since the needle would never
        recover from them. */
    void process (const float* const* channels, int numChannels, int n) noexcept;

    /** Linear, 1 is 0 VU, as at the end of the last row; below zero while nothing has been measured. Audio thread. */
    float getReading() const noexcept { return reading; }

private:
    static constexpr float restingReading = -50.0f;

    NeedleFilter needle;
    float reading = restingReading;
};
} // namespace tarvik
