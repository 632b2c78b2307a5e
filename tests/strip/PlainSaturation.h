// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/AnalogBiquad.h"
#include "dsp/BiquadCascade.h"
#include "tests/dsp/FilterTestTools.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>
#include <vector>

// The saturation stage as its formulas say it, sample by sample in 64 bits: what the fast forms are held against.
namespace tarvik::test
{
/** Two chains of eight all-pass sections, y = k (x + y two ago) - x two ago. */
class PlainQuadrature
{
public:
    /** Chain one, a sample late, and chain two. */
    std::pair<double, double> process (double x)
    {
        const auto late = delayed;
        delayed = run (chainOne, one, x);
        return { late, run (chainTwo, two, x) };
    }

private:
    using Coefficients = std::array<double, 8>;
    using Memory = std::array<std::array<double, 2>, 9>; // what went into each section, and out of the last

    static double run (Memory& memory, const Coefficients& coefficients, double x)
    {
        for (std::size_t s = 0; s < coefficients.size(); ++s)
        {
            const auto y = coefficients[s] * (x + memory[s + 1][1]) - memory[s][1];
            memory[s] = { x, memory[s][0] };
            x = y;
        }

        memory.back() = { x, memory.back()[0] };
        return x;
    }

    static constexpr Coefficients one { 0.9995336,  0.9970231,  0.99118406, 0.9755971,
                                        0.93388945, 0.82755935, 0.59095794, 0.21985206 };
    static constexpr Coefficients two { 0.9984784, 0.9947861,  0.9852872,  0.9597163,
                                        0.8924666, 0.72967243, 0.41320083, 0.06199008 };
    Memory chainOne {}, chainTwo {};
    double delayed = 0.0;
};

/** What was measured of a sine: its amplitude, and signed those of the harmonics, each at its number. */
using MeasuredSine = std::array<double, 8>;

/** At -2 dB and at each 4 dB below, from the levels as they were read off, in dB. */
inline const std::array<MeasuredSine, 8> measuredSines = []
{
    constexpr double harmonicsDb[8][6] {
        { -62.5, -71.3, -86.2, -82.3, -108.7, -85.2 },      { -71.6, -80.7, -101.1, -82.7, -110.5, -88.1 },
        { -80.0, -87.1, -106.1, -84.5, -104.2, -95.6 },     { -88.1, -88.4, -106.2, -92.4, -112.7, -105.4 },
        { -95.8, -97.6, -119.6, -107.3, -121.4, -115.2 },   { -104.0, -111.0, -124.0, -117.0, -130.1, -125.0 },
        { -111.8, -120.8, -128.4, -126.7, -138.8, -134.8 }, { -120.0, -130.6, -132.8, -136.4, -147.5, -144.6 }
    };
    constexpr double signs[] { 1.0, -1.0, 1.0, 1.0, -1.0, -1.0 };
    const auto gainOf = [] (double db) // with the six digits of the console's data
    {
        const auto gain = std::pow (10.0, db / 20.0), unit = std::pow (10.0, std::floor (std::log10 (gain)) - 5.0);
        return std::round (gain / unit) * unit;
    };
    std::array<MeasuredSine, 8> sines {};

    for (std::size_t row = 0; row < sines.size(); ++row)
    {
        sines[row][1] = gainOf (-2.0 - 4.0 * static_cast<double> (row));

        for (std::size_t h = 0; h < std::size (signs); ++h)
            sines[row][h + 2] = signs[h] * gainOf (harmonicsDb[row][h]);
    }

    return sines;
}();

class PlainShaper
{
public:
    static constexpr double unit = 8.70143;

    double process (double sample, double scale)
    {
        const auto x = std::clamp (sample / unit, -1.54, 1.54);
        const auto [a, b] = quadrature.process (x);
        const auto envelope = std::clamp (std::max (std::abs (x), std::hypot (a, b)), 0.0316259, 0.7943282);
        const auto position = (-2.0 - 20.0 * std::log10 (envelope)) / 4.0;
        const auto row = static_cast<std::size_t> (std::floor (position));
        const auto f = position - std::floor (position);

        MeasuredSine h {};

        for (std::size_t k = 1; k < h.size(); ++k)
            h[k] = (1.0 - f) * measuredSines[row][k] + f * measuredSines[row + 1][k];

        const auto A = h[1];
        const std::array<double, 8> c { h[4] - h[2] - h[6],
                                        A - 3 * h[3] + 5 * h[5] - 7 * h[7],
                                        2 * h[2] - 8 * h[4] + 18 * h[6],
                                        4 * h[3] - 20 * h[5] + 56 * h[7],
                                        8 * h[4] - 48 * h[6],
                                        16 * h[5] - 112 * h[7],
                                        32 * h[6],
                                        64 * h[7] };
        auto out = c[0] + c[1] * x / A;

        for (std::size_t k = 2; k < c.size(); ++k)
            out += c[k] * std::pow (x * scale / A, static_cast<double> (k));

        return unit * out;
    }

private:
    PlainQuadrature quadrature;
};

/** A channel with the values of one console channel: high pass Hz and Q, low pass Hz and Q, gain. */
class PlainSaturation
{
public:
    PlainSaturation (double thdDb, const std::array<double, 5>& parts, double rateHz)
        : gain (std::pow (10.0, thdDb / 20.0))
    {
        design (highPass, AnalogBiquad::Type::highPass, parts[0], parts[1], 1.0, rateHz);
        design (lowPass, AnalogBiquad::Type::lowPass, parts[2], parts[3], parts[4], rateHz);
    }

    void process (std::vector<float>& row)
    {
        const auto k = std::max (gain - 1.0, 0.0) * 0.002;

        for (auto& sample : row)
        {
            const auto out = shaper.process (static_cast<double> (sample), std::min (gain, 1.0));
            sample = static_cast<float> (out * (1.0 - k) - std::tanh (0.5 - out) * k);
        }

        filterPlainly ({ row.data(), &highPass }, static_cast<int> (row.size()));
        filterPlainly ({ row.data(), &lowPass }, static_cast<int> (row.size()));
    }

private:
    static void design (BiquadCascade& cascade, AnalogBiquad::Type type, double hz, double q, double numeratorGain,
                        double rateHz)
    {
        const auto prototype = AnalogBiquad::make (type, q, 1.0, 1.0, 2.0 * std::numbers::pi * hz);
        auto numerator = prototype.numerator;

        for (auto& coefficient : numerator)
            coefficient *= numeratorGain;

        cascade.setTaps (designTaps<2> (numerator, prototype.denominator, rateHz));
    }

    double gain;
    PlainShaper shaper;
    BiquadCascade highPass, lowPass;
};
} // namespace tarvik::test
