// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <memory>

namespace tarvik
{

/** The inertia of a moving needle: a second-order low pass at 2.15 Hz with gain 1 for what stays, slightly springy.

    Only where the needle stands after a row matters, so the rows pass through the state alone, up to 64 samples in one
    step: state = A^n state + A^(n-1) b x0 + ... + b x(n-1). 64-bit throughout.
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

    /** Audio thread: takes n finite samples, which it leaves as they are. */
    void process (const float* row, int n) noexcept;

    /** Audio thread: n samples of one value, 0 or more of them, in the time of few. */
    void hold (double value, int n) noexcept;

    /** The filtered value at the last sample. */
    float getReading() const noexcept { return reading; }

private:
    static constexpr std::size_t longestStep = 64;

    /** A pair of numbers, one for each delay of the filter. */
    struct Pair
    {
        double first = 0.0;
        double second = 0.0;
    };

    /** What a number of samples of silence makes of the delays (1, 0) and (0, 1): the columns of a power of A. */
    struct Step
    {
        Pair ofFirst;
        Pair ofSecond;
    };

    using Inputs = std::array<double, longestStep>;

    Pair advanceOne (const Pair& from, double x) const noexcept;
    Pair advance (const Pair& from, const float* row, std::size_t n) const noexcept;
    static Pair apply (const Step& step, const Pair& from, const Pair& added) noexcept;
    void finish (double newest) noexcept;

    struct Tables
    {
        std::array<Step, longestStep + 1> steps {}; ///< A^0, A^1, ...
        Inputs firstInputs {};                      ///< what a row's samples add to the first delay: ..., A^1 b, A^0 b
        Inputs secondInputs {};                     ///< and to the second
    };

    Tables makeTables() const noexcept;

    double feedForward = 0.0;             ///< from the input straight to the output
    Pair recursion;                       ///< a1 and a2 of the denominator 1 + a1 z^-1 + a2 z^-2
    Pair input;                           ///< b: what a sample adds to the delays
    std::shared_ptr<const Tables> tables; ///< all needles at a rate have the same
    Pair state;
    float reading = 0.0f;
};

} // namespace tarvik
