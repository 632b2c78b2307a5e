// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "strip/NeedleFilter.cpp" // this file, compiled once for each instruction set

#include "strip/NeedleFilter.h"

#include "dsp/AnalogBiquad.h"
#include "dsp/Dispatch.h"
#include "dsp/MZTiCoefs.h"
#include "dsp/SharedTables.h"
#include "dsp/StateFloor.h"

#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

HWY_BEFORE_NAMESPACE();

namespace tarvik::needles::HWY_NAMESPACE
{
namespace
{
namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t lanes = HWY_MAX_BYTES >= 32 ? 4 : HWY_MAX_BYTES >= 16 ? 2 : 1;
constexpr std::size_t numSums = 4;
using D = hn::FixedTag<double, lanes>;
using Floats = hn::FixedTag<float, lanes>;
using Vectors = std::array<hn::Vec<D>, numSums / lanes>;

/** All four sums, with the samples that are left over in the first. */
HWY_INLINE double total (const Vectors& vectors, const double* weights, const float* row, std::size_t numLeft)
{
    HWY_ALIGN std::array<double, numSums> sums;

    for (std::size_t v = 0; v < vectors.size(); ++v)
        hn::Store (vectors[v], D(), &sums[v * lanes]);

    for (std::size_t k = 0; k < numLeft; ++k)
        sums[0] += weights[k] * static_cast<double> (row[k]);

    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

/** The row's sums with two sets of weights: each as four sums that don't wait for each other. The same bits on every instruction set. */
std::array<double, 2> weightedSums (const double* first, const double* second, const float* row, std::size_t n)
{
    Vectors ofFirst, ofSecond;
    ofFirst.fill (hn::Zero (D()));
    ofSecond.fill (hn::Zero (D()));
    std::size_t k = 0;

    for (; k + numSums <= n; k += numSums)
    {
        HWY_UNROLL (4)
        for (std::size_t v = 0; v < ofFirst.size(); ++v)
        {
            const auto at = k + v * lanes;
            const auto x = hn::PromoteTo (D(), hn::LoadU (Floats(), row + at));
            ofFirst[v] = hn::Add (ofFirst[v], hn::Mul (hn::LoadU (D(), first + at), x));
            ofSecond[v] = hn::Add (ofSecond[v], hn::Mul (hn::LoadU (D(), second + at), x));
        }
    }

    return { total (ofFirst, first + k, row + k, n - k), total (ofSecond, second + k, row + k, n - k) };
}
} // namespace
} // namespace tarvik::needles::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tarvik
{
namespace needles
{
HWY_EXPORT (weightedSums);
}

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

    static SharedTables<double, Tables> all;
    tables = all.get (rateHz, [this] { return makeTables(); });
    reset();
}

NeedleFilter::Tables NeedleFilter::makeTables() const noexcept
{
    Tables made;
    auto response = input;
    made.steps.front() = { { 1.0, 0.0 }, { 0.0, 1.0 } };

    for (std::size_t k = 0; k < longestStep; ++k)
    {
        made.firstInputs[longestStep - 1 - k] = response.first;
        made.secondInputs[longestStep - 1 - k] = response.second;
        response = advanceOne (response, 0.0);
        made.steps[k + 1] = { advanceOne (made.steps[k].ofFirst, 0.0), advanceOne (made.steps[k].ofSecond, 0.0) };
    }

    return made;
}

NeedleFilter::Pair NeedleFilter::advance (const Pair& from, const float* row, std::size_t n) const noexcept
{
    const auto& [ofFirst, ofSecond] = tables->steps[n];
    const auto* const first = &tables->firstInputs[longestStep - n];
    const auto* const second = &tables->secondInputs[longestStep - n];
    const auto sums = TARVIK_DISPATCH (needles::weightedSums) (first, second, row, n);
    return { ofFirst.first * from.first + ofSecond.first * from.second + sums[0],
             ofFirst.second * from.first + ofSecond.second * from.second + sums[1] };
}

void NeedleFilter::process (const float* row, int n) noexcept
{
    if (n <= 0)
        return;

    const auto length = static_cast<std::size_t> (n);

    for (std::size_t done = 0; done < length; done += longestStep)
        state = advance (state, row + done, std::min (length - done, longestStep));

    finish (static_cast<double> (row[length - 1]));
}

/** From one power of A to the next by squaring: where x samples make A^x of the state and add s, 2 x make A^x A^x of it
    and add A^x s + s. */
void NeedleFilter::hold (double value, int n) noexcept
{
    auto step = tables->steps[1];
    Pair added { input.first * value, input.second * value };

    for (auto left = std::max (n, 0); left > 0; left /= 2)
    {
        if (left % 2 != 0)
            state = apply (step, state, added);

        added = apply (step, added, added);
        step = { apply (step, step.ofFirst, {}), apply (step, step.ofSecond, {}) };
    }

    finish (value);
}

NeedleFilter::Pair NeedleFilter::apply (const Step& step, const Pair& from, const Pair& added) noexcept
{
    return { step.ofFirst.first * from.first + step.ofSecond.first * from.second + added.first,
             step.ofFirst.second * from.first + step.ofSecond.second * from.second + added.second };
}

void NeedleFilter::finish (double newest) noexcept
{
    // The first delay as the last sample met it: what that one made of the second says so, and a2 is close to 1.
    const auto beforeLast = (input.second * newest - state.second) / recursion.second;
    reading = static_cast<float> (feedForward * newest + beforeLast);

    if (std::abs (state.first) < stateFloor && std::abs (state.second) < stateFloor)
        state = {};
}

} // namespace tarvik

#endif
