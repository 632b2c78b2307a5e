// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace tarvik
{
/** A second-order analogue prototype H(s) = numerator / denominator, each as the coefficients of s^2, s^1 and s^0. */
struct AnalogBiquad
{
    /** The numbers are part of the interface. */
    enum class Type
    {
        lowPass = 0,
        highPass = 1,
        peak = 2, ///< gain A^2 at omega0, 1 far from it
        allPass = 3,
        bandPass = 4, ///< gain 1 at omega0
        lowShelf = 5, ///< gain `shelf` at s = 0, 1 at high s
        highShelf = 6 ///< gain `shelf` at high s, 1 at s = 0
    };

    using Coefficients = std::array<double, 3>;

    Coefficients numerator { 1.0, 0.0, 0.0 };
    Coefficients denominator { 1.0, 0.0, 0.0 };

    /** @param q          above 0
        @param shelf      gain of a shelf at its far end, linear; the other types don't read it
        @param amplitude  A, above 0: the square root of a peak's gain, the steepness of a shelf; 1 and unread elsewhere
        @param omega0     corner or centre in rad/s, above 0

        Any thread. The formulas are the usual s-domain prototypes of parametric equalisers, with omega0 left in. */
    static AnalogBiquad make (Type type, double q, double shelf, double amplitude, double omega0) noexcept;
};
} // namespace tarvik
