// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/NeedleFilter.h"

#include "dsp/AnalogBiquad.h"
#include "dsp/MZTiCoefs.h"

#include <cmath>
#include <cstddef>

namespace tarvik
{

NeedleFilter::Pair NeedleFilter::advanceOne (const Pair& from, double x) const noexcept
{
    return { from.second - recursion.first * from.first + input.first * x,
             -recursion.second * from.first + input.second * x };
}

void NeedleFilter::prepare (double rateHz)
{
    constexpr double omegaRadPerSecond = 13.50884841043611;
    constexpr double q = 0.615;
    using Design = MZTiCoefs<double, 2, 2>;

    const auto analogue = AnalogBiquad::make (AnalogBiquad::Type::lowPass, q, 1.0, 1.0, omegaRadPerSecond);
    Design design;
    design.numerator = analogue.numerator;
    design.denominator = analogue.denominator;
    design.sampleRate = rateHz;
    design.design();

    // A low pass has no zeros: the first section is 1 / (1 + a1 z^-1 + a2 z^-2), the last one b0 + b1 z^-1 + b2 z^-2.
    constexpr std::size_t b0 = 0, b1 = 1, b2 = 2, a1 = 4, a2 = 5;
    const auto* const poles = design.taps.data();
    const auto* const zeros = poles + BiquadCascade::tapsPerSection;
    recursion = { poles[a1], poles[a2] };
    feedForward = zeros[b0];
    input = { zeros[b1] - recursion.first * zeros[b0], zeros[b2] - recursion.second * zeros[b0] };

    stepOfFirst = { 1.0, 0.0 };
    stepOfSecond = { 0.0, 1.0 };
    auto response = input;

    for (std::size_t k = inputs.size(); k-- > 0;)
    {
        inputs[k] = response;
        response = advanceOne (response, 0.0);
        shorterStep = { stepOfFirst.first, stepOfSecond.first };
        stepOfFirst = advanceOne (stepOfFirst, 0.0);
        stepOfSecond = advanceOne (stepOfSecond, 0.0);
    }

    reset();
}

float NeedleFilter::process (const float* row, int n) noexcept
{
    if (n <= 0)
        return reading;

    auto now = state;
    auto beforeLast = 0.0; // the first delay as the last sample meets it
    int i = 0;

    for (; i < n % samplesPerStep; ++i)
    {
        beforeLast = now.first;
        now = advanceOne (now, static_cast<double> (row[i]));
    }

    for (; i < n; i += samplesPerStep)
    {
        Pair added;
        auto addedBeforeLast = 0.0;

        for (std::size_t k = 0; k < inputs.size(); ++k)
        {
            const auto x = static_cast<double> (row[static_cast<std::size_t> (i) + k]);
            added.first += inputs[k].first * x;
            added.second += inputs[k].second * x;

            if (k + 1 < inputs.size())
                addedBeforeLast += inputs[k + 1].first * x;
        }

        beforeLast = shorterStep.first * now.first + (shorterStep.second * now.second + addedBeforeLast);
        now = { stepOfFirst.first * now.first + (stepOfSecond.first * now.second + added.first),
                stepOfFirst.second * now.first + (stepOfSecond.second * now.second + added.second) };
    }

    reading = static_cast<float> (feedForward * static_cast<double> (row[n - 1]) + beforeLast);
    state = now;

    // A needle at rest stays at rest instead of creeping through numbers that slow the processor down.
    constexpr double unfelt = 1e-60;

    if (std::abs (state.first) < unfelt && std::abs (state.second) < unfelt)
        state = {};

    return reading;
}

} // namespace tarvik
