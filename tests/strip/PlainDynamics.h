// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/ParameterSnapshot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace tarvik::plain
{
// The dynamics as their formulas stand, in 64 bits, one step after the other and nothing combined beforehand: what the
// fast form is measured against. One channel, settings that do not move, without the detector's filters.
class Dynamics
{
public:
    Dynamics (const ParameterSnapshot& snapshot, double rateHz) : p (snapshot), rate (rateHz) {}

    struct Sample
    {
        float main, detector, key; // all at the section's input; detector and key are main or side chain
    };

    // One sample through the section.
    double process (const Sample& in)
    {
        const auto smash = p.compNuke && p.compRatio != 0;
        const auto input = pot (p.compInput) * (smash ? 10.0 : 1.0);
        const auto output = pot (p.compOutput) * std::pow (10.0, 0.2) * (smash ? 0.5 : 1.0);
        const auto mix = static_cast<double> (p.compMix);

        // What goes into the loop stands in rows of floats.
        const auto inputFactor = static_cast<float> (input);
        const auto d = gain * static_cast<double> (in.detector * (inputFactor * static_cast<float> (sensitivity())));
        const auto e =
            expander (static_cast<double> (in.main), gain * static_cast<double> (in.key * inputFactor) * 0.5);
        const auto l = limiter (d);
        const auto m = (std::max (e, l) - 1.288849) / 0.95376545;
        gain = curve (std::max (m, compressor (d)));

        return static_cast<double> (in.main) * ((1.0 - mix) + input * mix * gain * output);
    }

    // Gains at control scales of -11.0, -10.9, and so on.
    static constexpr std::array curvePoints { 0.74419,  0.80251,  0.87547,  0.96114,  1.05755,  1.16275,  1.27479,
                                              1.39049,  1.53093,  1.74648,  2.02748,  2.40933,  2.92279,  3.6334,
                                              4.67308,  6.23261,  8.2961,   11.36658, 14.94594, 19.19445, 24.03922,
                                              28.63725, 33.62392, 39.25255, 45.62331 };

    static double curve (double w)
    {
        const auto v = -9.914435 - (w - 12.32) * 0.087612525;
        const auto position = (v + 11.0) * 10.000001;
        const auto index = static_cast<std::size_t> (std::clamp (position, 0.0, 23.0));
        const auto slope = curvePoints[index + 1] - curvePoints[index];
        return std::max (curvePoints[index] + (position - static_cast<double> (index)) * slope, 0.0); // the guard
    }

    // Where the line through the first two points reaches 0, about 39.275: the guard against a turned feedback.
    static constexpr double ceiling =
        12.32 - (-11.0 - curvePoints[0] / (curvePoints[1] - curvePoints[0]) / 10.000001 + 9.914435) / 0.087612525;

    double gain = 1.0; // the gain element's

private:
    static constexpr double dt = 1.0 / 44100.0;

    static double pot (float position)
    {
        const auto v = static_cast<double> (position) / 5.0;
        return std::min (static_cast<double> (position), 1.0) * std::pow (10.0, (34.0 * v - 34.0) * 0.05);
    }

    double sensitivity() const
    {
        return p.limiterSensitivity == 1   ? std::pow (10.0, -0.35)
               : p.limiterSensitivity == 2 ? std::pow (10.0, -0.75)
                                           : 1.0;
    }

    double threshold() const
    {
        constexpr std::array scales { 0.599057, 0.373849, 0.257642, 0.166667, 0.125964, 0.095745,
                                      0.07483,  0.052925, 0.043601, 0.032442, 0.022989 };
        const auto position = (static_cast<double> (p.compThreshold) + 20.0) / 2.0;
        const auto index = std::min (static_cast<std::size_t> (position), scales.size() - 2);
        return scales[index] + (position - static_cast<double> (index)) * (scales[index + 1] - scales[index]);
    }

    double compressor (double d)
    {
        const auto r = rectified (d);
        peak = std::max (peak + std::min (r - 0.5 - peak, 230.0 / rate), peak * std::exp (-(1.0 / rate) / 0.264));
        const auto target = targetFor (peak, r);
        const auto u = target - c;
        const auto f = u > 0.0 ? std::exp (-1.0 / u) : 0.0;
        const auto k =
            (1.0 - f) * (1.0 - std::exp (dt / (rl() * -2.2e-06))) + f * (1.0 - std::exp (dt / (ra() * -2.2e-06)));
        const auto c1 = std::min ((1.0 - k) * c + k * target, ceiling); // the guard
        const auto i = (c1 - vB) / (p.compRelease == 8 ? 33000.0 : 153000.0);
        const auto sum = i + iPrev;
        c = c1 - (dt / 4.4e-06) * sum;
        vB = vB + (dt / 2e-05) * sum;
        iPrev = i;
        return c;
    }

    double rectified (double d) const { return std::abs (d * (p.compRatio == 0 ? 0.0 : threshold()) * 11.8); }

    double ra() const { return std::array { 10000.0, 909.0909, 215.26419 }[static_cast<std::size_t> (p.compAttack)]; }

    double rl() const
    {
        return std::array {
            15000.0, 33000.0, 68000.0, 120000.0, 220000.0, 560000.0, 1000000.0, 2200000.0, 120000.0
        }[static_cast<std::size_t> (p.compRelease)];
    }

    // The voltage to which the first capacitor is drawn.
    double targetFor (double peakVolts, double r) const
    {
        struct Ratio
        {
            double rr, a0, b;
        };

        constexpr std::array<Ratio, 6> ratios { { { 0.0, 1000.0, 0.38 },
                                                  { 0.0, 1000.0, 0.38 },
                                                  { 56000.0, 120.0, 0.3 },
                                                  { 120000.0, 115.0, 0.2 },
                                                  { 1000000.0, 104.0, -0.6 },
                                                  { 2200000.0, 100.0, -1.1 } } };
        const auto [rr, a0, b] = ratios[static_cast<std::size_t> (p.compRatio)];
        const auto a = 1.0 / (22000.0 / (rr + 22000.0) + 1.0 / a0);
        const auto s = (peakVolts + r + b / a - 1.5) * a - 0.6;
        return (0.25 / (std::abs (2.0 * s) + 1.0) + std::max (s, 0.0)) * rl() / (rl() + ra());
    }

    double limiter (double d)
    {
        const auto step = 1.0 / rate;
        const auto y = 50.0 * (p.compLimit ? std::max (std::abs (d) - 3.37, 0.0) : 0.0);
        auto& w = limiterVolts;
        w = w + std::max ((y - w) * (step / (step + 0.004)), 0.0) - w * (step / (step + 0.05));
        return w;
    }

    double expander (double main, double gateKey)
    {
        if (p.expMode == 1)
            return 0.0;

        const auto step = 1.0 / rate;
        const auto q = (1.0 - std::exp (-1.0 / (0.00572 * rate))) * 0.5;
        const auto key =
            (p.expMode == 0 ? main : gateKey) * std::pow (10.0, (-40.0 - static_cast<double> (p.expThreshold)) * 0.05);
        const auto z = std::max (key * key, 1e-05);
        rms = rms + q * (z / rms - rms);

        const auto level = std::max (20.0 * std::log10 (rms), -100.0);
        const auto e0 = (-20.0 - level) - 2.2184875;
        const auto range = -static_cast<double> (p.expRange);
        auto a = std::max (std::min (range, e0) - 4.0 / (std::abs ((e0 - range) * 0.125) + 1.0), 0.0);

        if (p.expHold)
        {
            if (held >= a)
            {
                held = a;
                timer = 0.01;
            }
            else if (timer <= 0.0)
            {
                held = 20.0;
            }
            else
            {
                timer -= step;
                a = held;
            }
        }

        if (p.expInverted)
            a = range - a;

        constexpr std::array attacks { 47000.0, 4272.727272727273, 465.34653465346537 };
        const auto ra = attacks[static_cast<std::size_t> (p.expAttack)];
        auto& v = expanderVolts;
        v = v + std::max ((a - v) * (step / (ra * 4.7e-07 + step)), 0.0)
            - v * (step / (step + static_cast<double> (p.expRelease)));
        return 0.5 * v;
    }

    const ParameterSnapshot& p;
    double rate;
    double c = 0.0, vB = 0.0, iPrev = 0.0, peak = 0.0;
    double rms = 1e-05, held = 0.0, timer = 0.0, expanderVolts = 0.0, limiterVolts = 0.0;
};
} // namespace tarvik::plain
