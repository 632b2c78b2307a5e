// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/EQControls.h"

#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <span>
#include <vector>

namespace tarvik::test
{
using Complex = std::complex<double>;

// A polynomial, highest power first, at s.
inline Complex evaluate (std::span<const double> polynomial, Complex s)
{
    Complex value = 0.0;

    for (const auto coefficient : polynomial)
        value = value * s + coefficient;

    return value;
}

// H(s) at a frequency in Hz.
inline Complex analogueResponse (std::span<const double> numerator, std::span<const double> denominator, double hz)
{
    const Complex s (0.0, 2.0 * std::numbers::pi * hz);
    return evaluate (numerator, s) / evaluate (denominator, s);
}

// A list of taps at an angle in radians per sample.
inline Complex digitalResponse (std::span<const double> taps, double omega)
{
    const auto delay = std::polar (1.0, -omega);
    Complex response = 1.0;

    for (std::size_t i = 0; i + 5 < taps.size(); i += 6)
        response *= (taps[i] + delay * (taps[i + 1] + delay * taps[i + 2]))
                    / (taps[i + 3] + delay * (taps[i + 4] + delay * taps[i + 5]));

    return response;
}

inline double toDecibels (double gain) { return 20.0 * std::log10 (gain); }

// Any position of every switch and pot, on any channel.
inline EQControls drawControls (std::mt19937& random)
{
    const auto draw = [&random] (unsigned count) { return static_cast<std::int32_t> (random() % count); };
    const auto drawPot = [&random] { return static_cast<float> (random() % 101) * 0.01f; };
    return { draw (3), draw (11), draw (8), drawPot(), draw (2), draw (10), drawPot(), draw (3), draw (32) };
}
} // namespace tarvik::test
