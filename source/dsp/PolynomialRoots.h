// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <complex>
#include <span>

namespace tarvik
{
/** The highest degree of a polynomial that findPolynomialRoots() solves. */
constexpr int maxPolynomialDegree = 5;

/** Finds all complex roots of a real polynomial as eigenvalues of its companion matrix, by LAPACK's general eigenvalue
    routine; the same to the bit as Armadillo's roots.

    @param coefficients  highest power first, the first one not 0; 1 to maxPolynomialDegree + 1 of them. A root at 0,
                         that is a trailing coefficient of 0, comes out as exactly 0.
    @param roots         room for one root fewer than there are coefficients; conjugate pairs are exact mirror images
    @returns whether the roots were found. It is false, and the roots are undefined, for a coefficient that is not
             finite, a first one of 0, a wrong size or a matrix on which LAPACK gives up.

    Any thread, several at once. Takes no memory from the heap, takes no lock and doesn't throw: the workspace is on the
    caller's stack (some 3 KiB), and LAPACK's reference version takes none of its own for these sizes. */
bool findPolynomialRoots (std::span<const double> coefficients, std::span<std::complex<double>> roots) noexcept;
} // namespace tarvik
