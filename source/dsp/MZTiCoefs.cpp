// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MZTiCoefs.h"

#include "dsp/PolynomialRoots.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace tarvik
{
namespace
{
using Complex = std::complex<double>;

constexpr std::size_t numFitPoints = 3; // 0, pi/3 and 2 pi/3 radians per sample

bool isFinite (Complex value) noexcept { return std::isfinite (value.real()) && std::isfinite (value.imag()); }

/** The polynomial at s = jw by Horner's rule; s has no real part. */
template <typename Polynomial>
Complex evaluateAtFrequency (const Polynomial& polynomial, double w) noexcept
{
    double re = 0.0;
    double im = 0.0;

    for (const auto coefficient : polynomial)
    {
        const auto previous = re;
        re = coefficient - im * w;
        im = previous * w;
    }

    return { re, im };
}

/** Finds a frequency near omega (rad per sample; changed) where the analogue response can serve as a target: neither
    nothing, as a high pass is at 0, nor infinite, nor 0/0. Returns false if there is none with a finite response. */
template <typename Polynomial>
bool findFitPoint (const Polynomial& numerator, const Polynomial& denominator, double sampleRate, double& omega,
                   Complex& response) noexcept
{
    constexpr auto smallestMagnitude = 1e-15;
    constexpr auto step = std::numbers::pi * 1e-6; // rad per sample
    constexpr auto maxSteps = 100;                 // a polynomial of NaN never passes

    for (int i = 0; i <= maxSteps; ++i)
    {
        if (i > 0)
            omega += step;

        const auto w = omega * sampleRate;
        response = evaluateAtFrequency (numerator, w) / evaluateAtFrequency (denominator, w);

        if (isFinite (response) && std::abs (response) >= smallestMagnitude)
            return true;
    }

    return isFinite (response);
}

/** The product of (1 - root e^(j omega)). */
template <typename Roots>
Complex evaluateDigital (const Roots& roots, double omega) noexcept
{
    const Complex turn { std::cos (omega), std::sin (omega) };
    Complex product { 1.0, 0.0 };

    for (std::size_t k = 0; k < roots.count; ++k)
        product *= 1.0 - roots.values[k] * turn;

    return product;
}

/** The section c0 + c1 z^-1 + c2 z^-2 with the magnitudes `targets` at 0, pi/3 and 2 pi/3.

    With |C|^2 at the three points as equations: the difference of the squares at the second and third point gives c1
    once c0 + c2 = A0 - c1 is put in, and the square at the second point then gives c2. Where the targets have no real
    solution, what is left is the plain gain A0. */
std::array<double, numFitPoints> solveCorrection (const std::array<double, numFitPoints>& targets) noexcept
{
    const auto [a0, a1, a2] = targets;
    const auto r = std::sqrt (a0 * a0 - 2.0 * a1 * a1 + 2.0 * a2 * a2);
    auto c1 = (a0 - r) / 2.0;
    const auto t = std::sqrt (12.0 * a1 * a1 - 3.0 * a0 * a0 - 6.0 * a0 * c1 - 3.0 * c1 * c1);
    auto c2 = (3.0 * (a0 - c1) - t) / 6.0;

    if (! std::isfinite (c1) || ! std::isfinite (c2))
        c1 = c2 = 0.0;

    return { a0 - c1 - c2, c1, c2 }; // the sum, the gain at 0, is exact in every case
}
} // namespace

template <typename Real, std::size_t n, std::size_t d>
auto MZTiCoefs<Real, n, d>::makeConstantOne() noexcept -> Polynomial
{
    Polynomial polynomial {};
    polynomial.back() = 1;
    return polynomial;
}

template <typename Real, std::size_t n, std::size_t d>
auto MZTiCoefs<Real, n, d>::makeNeutralTaps() noexcept -> Taps
{
    Taps neutral {};

    for (std::size_t i = 0; i < neutral.size(); i += 3) // b0 and a0 of every section
        neutral[i] = 1;

    return neutral;
}

template <typename Real, std::size_t n, std::size_t d>
std::size_t MZTiCoefs<Real, n, d>::countLeadingZeros (const Polynomial& polynomial) noexcept
{
    const auto first = std::find_if (polynomial.begin(), polynomial.end(), [] (Real c) { return c != 0; });
    return static_cast<std::size_t> (first - polynomial.begin());
}

template <typename Real, std::size_t n, std::size_t d>
bool MZTiCoefs<Real, n, d>::findRoots (const Polynomial& polynomial, std::size_t first, Roots& roots) noexcept
{
    roots.count = first < degree ? degree - first : 0;
    return roots.count == 0 || findPolynomialRoots (std::span (polynomial).subspan (first), roots.values);
}

template <typename Real, std::size_t n, std::size_t d>
void MZTiCoefs<Real, n, d>::Quadratics::add (Real first, Real second) noexcept
{
    if (count < numBiquads - 1)
        values[count++] = { first, second };
}

/** Conjugate pairs come first, in the order of their upper halves; then the real roots, in ascending order and by twos,
    with a root at 0 for the one that is left over. It is the place of z that counts, not that of s: a root so far out
    that its angle runs past pi, or that e^s underflows, ends elsewhere. */
template <typename Real, std::size_t n, std::size_t d>
auto MZTiCoefs<Real, n, d>::pairRoots (const Roots& roots) noexcept -> Quadratics
{
    Quadratics quadratics;
    std::array<Real, degree + 1> reals {};
    auto end = reals.begin();

    for (std::size_t k = 0; k < roots.count; ++k)
    {
        const auto root = roots.values[k];

        if (root.imag() > 0)
            quadratics.add (-2 * root.real(), std::norm (root));
        else if (! (root.imag() < 0))
        {
            const auto place = std::upper_bound (reals.begin(), end, root.real());
            std::move_backward (place, end, end + 1);
            *place = root.real();
            ++end;
        }
    }

    for (auto root = reals.begin(); root < end; root += 2) // the element after the last root is 0
        quadratics.add (-root[0] - root[1], root[0] * root[1]);

    return quadratics;
}

template <typename Real, std::size_t n, std::size_t d>
bool MZTiCoefs<Real, n, d>::designTaps() noexcept
{
    const auto firstOfNumerator = countLeadingZeros (numerator);
    const auto firstOfDenominator = countLeadingZeros (denominator);

    if (firstOfDenominator > degree)
        return false;

    const auto scale = denominator[firstOfDenominator];

    for (auto* const polynomial : { &numerator, &denominator })
        for (auto& coefficient : *polynomial)
            coefficient /= scale;

    Roots zeros;
    Roots poles;

    if (! findRoots (numerator, firstOfNumerator, zeros) || ! findRoots (denominator, firstOfDenominator, poles))
        return false;

    std::array<Real, numFitPoints> omegas { 0, std::numbers::pi / 3, 2 * std::numbers::pi / 3 };
    std::array<Complex, numFitPoints> analogue {};

    for (std::size_t i = 0; i < numFitPoints; ++i)
        if (! findFitPoint (numerator, denominator, sampleRate, omegas[i], analogue[i]))
            return false;

    for (auto* const roots : { &zeros, &poles })
        for (auto& root : roots->values)
            root = std::polar (std::exp (root.real() / sampleRate), root.imag() / sampleRate);

    std::array<Real, numFitPoints> targets {};

    for (std::size_t i = 0; i < numFitPoints; ++i)
    {
        const auto digital = evaluateDigital (zeros, omegas[i]) / evaluateDigital (poles, omegas[i]);
        targets[i] = analogue[i] == digital ? 1 : std::abs (analogue[i]) / std::abs (digital);
    }

    const auto ofZeros = pairRoots (zeros);
    const auto ofPoles = pairRoots (poles);
    const auto correction = solveCorrection (targets);
    taps = makeNeutralTaps();

    // Zeros and poles share a section by their place in the two lists alone.
    for (std::size_t k = 0; k < numBiquads - 1; ++k)
    {
        auto* const section = taps.data() + k * BiquadCascade::tapsPerSection;
        std::copy (ofZeros.values[k].begin(), ofZeros.values[k].end(), section + 1); // b1, b2
        std::copy (ofPoles.values[k].begin(), ofPoles.values[k].end(), section + 4); // a1, a2
    }

    std::copy (correction.begin(), correction.end(), taps.end() - BiquadCascade::tapsPerSection);
    return std::all_of (taps.begin(), taps.end(), [] (Real tap) { return std::isfinite (tap); });
}

template <typename Real, std::size_t n, std::size_t d>
void MZTiCoefs<Real, n, d>::design() noexcept
{
    if (! designTaps())
        taps = makeNeutralTaps();
}

template <typename Real, std::size_t n, std::size_t d>
auto MZTiCoefs<Real, n, d>::tapsFor (const Polynomial& numerator, const Polynomial& denominator, Real rateHz) noexcept
    -> Taps
{
    MZTiCoefs design;
    design.numerator = numerator;
    design.denominator = denominator;
    design.sampleRate = rateHz;
    design.design();
    return design.taps;
}

template class MZTiCoefs<double, 2, 2>;
template class MZTiCoefs<double, 5, 5>;
} // namespace tarvik
