// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MZTiCoefs.h"

#include <array>
#include <complex>
#include <cstddef>
#include <numbers>
#include <span>

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

// The taps that a design makes of H(s).
template <std::size_t degree>
auto designTaps (const std::array<double, degree + 1>& numerator, const std::array<double, degree + 1>& denominator,
                 double rateHz)
{
    MZTiCoefs<double, degree, degree> coefs;
    coefs.numerator = numerator;
    coefs.denominator = denominator;
    coefs.sampleRate = rateHz;
    coefs.design();
    return coefs.taps;
}

} // namespace tarvik::test
