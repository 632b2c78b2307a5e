// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/NeedleFilter.h"

#include "dsp/AnalogBiquad.h"
#include "dsp/MZTiCoefs.h"
#include "dsp/StateFloor.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace tarvik
{

namespace
{
/** Four sums that don't wait for each other, which the compiler makes vectors of. */
double weightedSum (const double* weights, const float* row, std::size_t n) noexcept
{
    std::array<double, 4> sums {};
    std::size_t k = 0;

    for (; k + sums.size() <= n; k += sums.size())
        for (std::size_t lane = 0; lane < sums.size(); ++lane)
            sums[lane] += weights[k + lane] * static_cast<double> (row[k + lane]);

    for (; k < n; ++k)
        sums[0] += weights[k] * static_cast<double> (row[k]);

    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}
} // namespace

NeedleFilter::Pair NeedleFilter::advanceOne (const Pair& from, double x) const noexcept
{
    return { from.second - recursion.first * from.first + input.first * x,
             -recursion.second * from.first + input.second * x };
}

void NeedleFilter::prepare (double rateHz)
{
    constexpr double omegaRadPerSecond = 2.0 * std::numbers::pi * 2.15;
    constexpr double q = 0.615; // swings over by 1.2 %
    using Design = MZTiCoefs<double, 2, 2>;

    const auto analogue = AnalogBiquad::make (AnalogBiquad::Type::lowPass, q, 1.0, 1.0, omegaRadPerSecond);
    const auto taps = Design::tapsFor (analogue.numerator, analogue.denominator, rateHz);

    // A low pass has no zeros: the first section is 1 / (1 + a1 z^-1 + a2 z^-2), the last one b0 + b1 z^-1 + b2 z^-2.
    constexpr std::size_t b0 = 0, b1 = 1, b2 = 2, a1 = 4, a2 = 5;
    const auto* const poles = taps.data();
    const auto* const zeros = poles + BiquadCascade::tapsPerSection;
    recursion = { poles[a1], poles[a2] };
    feedForward = zeros[b0];
    input = { zeros[b1] - recursion.first * zeros[b0], zeros[b2] - recursion.second * zeros[b0] };

    auto response = input;
    steps.front() = { { 1.0, 0.0 }, { 0.0, 1.0 } };

    for (std::size_t k = 0; k < longestStep; ++k)
    {
        firstInputs[longestStep - 1 - k] = response.first;
        secondInputs[longestStep - 1 - k] = response.second;
        response = advanceOne (response, 0.0);
        steps[k + 1] = { advanceOne (steps[k].ofFirst, 0.0), advanceOne (steps[k].ofSecond, 0.0) };
    }

    reset();
}

NeedleFilter::Pair NeedleFilter::advance (const Pair& from, const float* row, std::size_t n) const noexcept
{
    const auto& [ofFirst, ofSecond] = steps[n];
    const auto unused = longestStep - n;
    return { ofFirst.first * from.first + ofSecond.first * from.second + weightedSum (&firstInputs[unused], row, n),
             ofFirst.second * from.first + ofSecond.second * from.second
                 + weightedSum (&secondInputs[unused], row, n) };
}

void NeedleFilter::process (const float* row, int n) noexcept
{
    if (n <= 0)
        return;

    const auto length = static_cast<std::size_t> (n);

    for (std::size_t done = 0; done < length; done += longestStep)
        state = advance (state, row + done, std::min (length - done, longestStep));

    // The first delay as the last sample met it: what that one made of the second says so, and a2 is close to 1.
    const auto newest = static_cast<double> (row[length - 1]);
    const auto beforeLast = (input.second * newest - state.second) / recursion.second;
    reading = static_cast<float> (feedForward * newest + beforeLast);

    if (std::abs (state.first) < stateFloor && std::abs (state.second) < stateFloor)
        state = {};
}

} // namespace tarvik
