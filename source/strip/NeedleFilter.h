// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace tarvik
{

/** The inertia of a moving needle: a second-order low pass at 2.15 Hz with gain 1 at rest, slightly springy.

    Only where the needle stands after a row matters, so the rows pass through the state alone, eight samples in one
    step: state = A^8 state + (A^7 b) x0 + ... + b x7. 64-bit throughout.
*/
class NeedleFilter
{
public:
    /** Designs the filter for a rate in Hz, above 0, and puts the needle to 0. While no audio runs. */
    void prepare (double rateHz);

    /** Puts the needle to 0. */
    void reset() noexcept
    {
        state = {};
        reading = 0.0f;
    }

    /** Audio thread: takes n finite samples, which it leaves as they are, and returns the filtered value at the last of
        them; without samples the one before stays. */
    float process (const float* row, int n) noexcept;

private:
    static constexpr int samplesPerStep = 8;

    /** A pair of numbers, one for each delay of the filter. */
    struct Pair
    {
        double first = 0.0;
        double second = 0.0;
    };

    Pair advanceOne (const Pair& from, double x) const noexcept;

    double feedForward = 0.0;                   ///< from the input straight to the output
    Pair recursion;                             ///< a1 and a2 of the denominator 1 + a1 z^-1 + a2 z^-2
    Pair input;                                 ///< b: what a sample adds to the delays
    std::array<Pair, samplesPerStep> inputs {}; ///< A^(7 - k) b, for sample k of a step
    Pair stepOfFirst;                           ///< A^8 times (1, 0)
    Pair stepOfSecond;                          ///< A^8 times (0, 1)
    Pair shorterStep;                           ///< the first row of A^7, for the reading at a step's last sample
    Pair state;
    float reading = 0.0f;
};

} // namespace tarvik
