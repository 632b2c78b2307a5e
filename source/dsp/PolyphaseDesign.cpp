// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/PolyphaseDesign.h"

#include <cmath>
#include <numbers>
#include <numeric>

namespace tarvik
{
namespace
{
// Ripple of both bands, linear; about 54 dB.
constexpr float designRipple = 0.002f;

// Below this attenuation a Kaiser window has no shape left: a rectangle, whose transition has a fixed width.
constexpr float rectangleAttenuationDb = 21.0f;

// Kaiser's estimate of the transition width, radians per sample of the high rate, from attenuation and length.
float transitionWidth (float attenuationDb, int length)
{
    const auto intervals = static_cast<float> (length - 1);

    if (attenuationDb > rectangleAttenuationDb)
        return (attenuationDb - 7.95f) / (2.285f * intervals);

    return 5.79f / intervals;
}

// Kaiser's estimate of the window's shape.
double kaiserShape (double attenuationDb)
{
    if (attenuationDb > 50.0)
        return 0.1102 * (attenuationDb - 8.7);

    const auto above = attenuationDb - static_cast<double> (rectangleAttenuationDb);
    return above > 0.0 ? 0.5842 * std::pow (above, 0.4) + 0.07886 * above : 0.0;
}

// The modified Bessel function of the first kind and order 0, by its power series: sum of ((x/2)^k / k!)^2.
double besselI0 (double x)
{
    const auto quarterSquare = 0.25 * x * x;
    double sum = 1.0, term = 1.0;

    for (int k = 1; term > sum * 1.0e-17; ++k)
    {
        term *= quarterSquare / (static_cast<double> (k) * k);
        sum += term;
    }

    return sum;
}

// The window at `distance` taps from the middle of a filter that reaches `reach` taps to either side.
float kaiserWindow (int distance, int reach, double shape)
{
    const auto position = static_cast<double> (distance) / reach;
    return static_cast<float> (besselI0 (shape * std::sqrt (1.0 - position * position)) / besselI0 (shape));
}
} // namespace

std::vector<float> designPolyphaseFilter (int factor)
{
    const auto length = polyphaseLatencySamples * factor + 1;
    const auto middle = (length - 1) / 2;
    const auto attenuationDb = -20.0f * std::log10 (designRipple);
    const auto shape = kaiserShape (static_cast<double> (attenuationDb));

    // Half a transition below the new Nyquist frequency, cycles per sample of the high rate. The divisor is 2 pi with
    // the digits of a 32-bit float.
    const auto halfWidth = 0.5 * static_cast<double> (transitionWidth (attenuationDb, length));
    const auto cutoff = 0.5 / factor - halfWidth / 6.2831855;

    std::vector<float> taps (static_cast<std::size_t> (length));

    for (int n = 0; n < length; ++n)
    {
        const auto k = n - middle;
        const auto angle = std::numbers::pi * k;
        const auto sinc = k == 0 ? 2.0 * cutoff : std::sin (2.0 * cutoff * angle) / angle;
        taps[static_cast<std::size_t> (n)] = static_cast<float> (sinc) * kaiserWindow (k, middle, shape);
    }

    const auto sum = static_cast<float> (std::accumulate (taps.begin(), taps.end(), 0.0));

    for (auto& tap : taps)
        tap *= sum;

    return taps;
}
} // namespace tarvik
