// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/AnalogBiquad.h"
#include "dsp/BiquadCascade.h"
#include "dsp/MZTiCoefs.h"
#include "strip/HarmonicTable.h"

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

        const auto lerp = [f] (float upper, float lower)
        { return (1.0 - f) * static_cast<double> (upper) + f * static_cast<double> (lower); };

        const auto& [upperA, upper] = HarmonicTable::rows[row];
        const auto& [lowerA, lower] = HarmonicTable::rows[row + 1];
        const auto A = lerp (upperA, lowerA);
        std::array<double, 8> h {};

        for (std::size_t k = 2; k < h.size(); ++k)
            h[k] = lerp (upper[k - 2], lower[k - 2]);

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

/** A channel at rest with the values of one console channel: high pass Hz and Q, low pass Hz and Q, gain. */
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

        highPass.processPlain (row.data(), static_cast<int> (row.size()));
        lowPass.processPlain (row.data(), static_cast<int> (row.size()));
    }

private:
    static void design (BiquadCascade& cascade, AnalogBiquad::Type type, double hz, double q, double numeratorGain,
                        double rateHz)
    {
        const auto prototype = AnalogBiquad::make (type, q, 1.0, 1.0, 2.0 * std::numbers::pi * hz);
        MZTiCoefs<double, 2, 2> coefs;
        coefs.sampleRate = rateHz;
        coefs.numerator = prototype.numerator;
        coefs.denominator = prototype.denominator;

        for (auto& coefficient : coefs.numerator)
            coefficient *= numeratorGain;

        coefs.design();
        cascade.setTaps (coefs.taps);
    }

    double gain;
    PlainShaper shaper;
    BiquadCascade highPass, lowPass;
};
} // namespace tarvik::test
