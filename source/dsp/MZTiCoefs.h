// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/BiquadCascade.h"

#include <array>
#include <complex>
#include <cstddef>
#include <mutex>
#include <type_traits>

namespace tarvik
{
/** Turns an analogue transfer function H(s) = numerator / denominator of degree up to N into a cascade of digital
    biquads, without the warping of the bilinear transform.

    Every analogue pole and zero goes to z = e^(s / sampleRate), the matched z-transform, so it stays at its exact
    frequency. What this leaves wrong near half the rate is mended by one last section, c0 + c1 z^-1 + c2 z^-2, whose
    magnitude makes up for the difference at 0, pi/3 and 2 pi/3 radians per sample.

    The arrays and `taps` belong to whoever holds `designLock`. Two instantiations exist: N = 2 and N = 5. */
template <typename Real, std::size_t numeratorDegree, std::size_t denominatorDegree>
class MZTiCoefs
{
    static_assert (std::is_same_v<Real, double> && numeratorDegree == denominatorDegree);

public:
    static constexpr std::size_t degree = denominatorDegree;

    /** Sections for the poles and zeros, and the magnitude-correcting one. */
    static constexpr std::size_t numBiquads = (degree + 1) / 2 + 1;

    using Polynomial = std::array<Real, degree + 1>;
    using Taps = std::array<Real, numBiquads * BiquadCascade::tapsPerSection>;

    /** All sections at 1, 0, 0, 1, 0, 0: the input comes back. */
    static Taps makeNeutralTaps() noexcept;

    /** Designs `taps` from `numerator`, `denominator` and `sampleRate` (above 0), and divides both polynomials by the
        denominator's first coefficient that isn't 0. The caller holds designLock. Allocates nothing and ends in bounded
        time whatever the polynomials hold: if nothing finite comes out of them, the taps are neutral.

        Any thread, but only one at a time on an object. About 5 microseconds for five poles. */
    void design() noexcept;

    /** The taps that design() makes of both polynomials at a rate in Hz, above 0. */
    static Taps tapsFor (const Polynomial& numerator, const Polynomial& denominator, Real rateHz) noexcept;

    Real sampleRate = 0;                        ///< in Hz; 0 while unknown
    Polynomial numerator = makeConstantOne();   ///< highest power first
    Polynomial denominator = makeConstantOne(); ///< highest power first
    Taps taps = makeNeutralTaps();              ///< per section b0, b1, b2, a0, a1, a2
    std::mutex designLock;

private:
    using Complex = std::complex<Real>;

    /** Poles or zeros. */
    struct Roots
    {
        std::array<Complex, degree> values {};
        std::size_t count = 0;
    };

    /** The coefficients of z^-1 and z^-2 of up to numBiquads - 1 sections. */
    struct Quadratics
    {
        std::array<std::array<Real, 2>, numBiquads> values {};
        std::size_t count = 0;

        void add (Real first, Real second) noexcept;
    };

    static Polynomial makeConstantOne() noexcept;
    static std::size_t countLeadingZeros (const Polynomial& polynomial) noexcept;
    static bool findRoots (const Polynomial& polynomial, std::size_t first, Roots& roots) noexcept;
    static Quadratics pairRoots (const Roots& roots) noexcept;
    bool designTaps() noexcept;
};

extern template class MZTiCoefs<double, 2, 2>;
extern template class MZTiCoefs<double, 5, 5>;
} // namespace tarvik
