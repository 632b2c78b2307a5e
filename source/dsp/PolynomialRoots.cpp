// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/PolynomialRoots.h"

#include "dsp/Armadillo.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace tarvik
{
namespace
{
constexpr std::size_t mostRoots = maxPolynomialDegree;

/** The workspace that LAPACK is given for each row of a matrix. It chooses its way by this number, so results depend on it. */
constexpr std::size_t workPerRow = 64;

/** The eigenvalues of the companion matrix of a polynomial whose first and last coefficients count. All that this needs
    is on the stack, some 3 KiB: Armadillo's own classes would take it from the heap.
*/
bool findNonZeroRoots (std::span<const double> coefficients, std::span<std::complex<double>> roots) noexcept
{
    const auto degree = coefficients.size() - 1;
    std::array<double, mostRoots * mostRoots> matrix {}; // by columns
    std::array<double, mostRoots> realParts, imaginaryParts;
    std::array<double, mostRoots * workPerRow> work;

    for (std::size_t column = 0; column < degree; ++column)
    {
        matrix[column * degree] = -coefficients[column + 1] / coefficients[0];

        if (! std::isfinite (matrix[column * degree]))
            return false;

        if (column + 1 < degree)
            matrix[column * degree + column + 1] = 1.0;
    }

    char noVectors = 'N';
    double noVector = 0.0;
    arma::blas_int size = static_cast<arma::blas_int> (degree), one = 1, info = 0;
    arma::blas_int workLength = static_cast<arma::blas_int> (workPerRow) * size;
    arma::lapack::geev (&noVectors, &noVectors, &size, matrix.data(), &size, realParts.data(), imaginaryParts.data(),
                        &noVector, &one, &noVector, &one, work.data(), &workLength, &info);

    for (std::size_t i = 0; i < degree; ++i)
        roots[i] = { realParts[i], imaginaryParts[i] };

    return info == 0;
}
} // namespace

bool findPolynomialRoots (std::span<const double> coefficients, std::span<std::complex<double>> roots) noexcept
{
    const auto isFinite = [] (double c) { return std::isfinite (c); };

    if (coefficients.empty() || coefficients.size() > mostRoots + 1 || roots.size() + 1 < coefficients.size()
        || ! std::all_of (coefficients.begin(), coefficients.end(), isFinite))
        return false;

    // A coefficient that underflows beside the largest counts as 0. If that is the first, its roots are lost.
    double largest = 0.0;

    for (const auto c : coefficients)
        largest = std::max (largest, std::abs (c));

    const auto counts = [largest] (double c) { return c / largest != 0.0; };

    if (! (largest > 0.0) || ! counts (coefficients.front()))
        return false;

    auto numCounting = coefficients.size();

    while (! counts (coefficients[numCounting - 1]))
        --numCounting;

    std::fill (roots.begin() + static_cast<std::ptrdiff_t> (numCounting) - 1,
               roots.begin() + static_cast<std::ptrdiff_t> (coefficients.size()) - 1, 0.0);
    return numCounting == 1 || findNonZeroRoots (coefficients.first (numCounting), roots);
}
} // namespace tarvik
