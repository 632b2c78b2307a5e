// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarvik
{
/** A polynomial in s with coefficients that are not negative. Its degree follows from how it was put together and not
    from the numbers: a coefficient beyond the degree is exactly 0. Nothing here subtracts, so nothing can cancel. */
class CircuitPolynomial
{
public:
    static constexpr std::size_t maxDegree = 5;

    constexpr CircuitPolynomial (double constant) noexcept : coefficients { constant } {} // a number is a polynomial

    /** slope * s */
    static constexpr CircuitPolynomial makeSlope (double slope) noexcept
    {
        CircuitPolynomial result (0.0);
        result.coefficients[1] = slope;
        result.degree = 1;
        return result;
    }

    constexpr std::size_t getDegree() const noexcept { return degree; }

    /** The coefficient of s^power, for a power up to maxDegree. */
    constexpr double operator[] (std::size_t power) const noexcept { return coefficients[power]; }

    friend constexpr CircuitPolynomial operator+ (const CircuitPolynomial& a, const CircuitPolynomial& b) noexcept
    {
        CircuitPolynomial sum = a;
        sum.degree = std::max (a.degree, b.degree);

        for (std::size_t i = 0; i <= b.degree; ++i)
            sum.coefficients[i] += b.coefficients[i];

        return sum;
    }

    /** The degrees must add up to at most maxDegree. */
    friend constexpr CircuitPolynomial operator* (const CircuitPolynomial& a, const CircuitPolynomial& b) noexcept
    {
        CircuitPolynomial product (0.0);
        product.degree = std::min (a.degree + b.degree, maxDegree);

        for (std::size_t i = 0; i <= a.degree; ++i)
            for (std::size_t k = 0; k <= b.degree && i + k <= maxDegree; ++k)
                product.coefficients[i + k] += a.coefficients[i] * b.coefficients[k];

        return product;
    }

private:
    std::array<double, maxDegree + 1> coefficients; ///< lowest power first
    std::size_t degree = 0;
};

/** A two-pole of resistors, inductors and capacitors: Z(s) = over / under. Common factors stay where they are; the
    circuit's own common denominators are the only thing that is multiplied out. */
struct Impedance
{
    CircuitPolynomial over;
    CircuitPolynomial under;

    static constexpr Impedance resistor (double ohms) noexcept { return { ohms, 1.0 }; }

    static constexpr Impedance inductor (double henries) noexcept
    {
        return { CircuitPolynomial::makeSlope (henries), 1.0 };
    }

    static constexpr Impedance capacitor (double farads) noexcept
    {
        return { 1.0, CircuitPolynomial::makeSlope (farads) };
    }
};

/** In series. */
constexpr Impedance operator+ (const Impedance& a, const Impedance& b) noexcept
{
    return { a.over * b.under + b.over * a.under, a.under * b.under };
}

/** In parallel. */
constexpr Impedance operator| (const Impedance& a, const Impedance& b) noexcept
{
    return { a.over * b.over, a.over * b.under + b.over * a.under };
}

/** A ladder of arms from the input to an output without load. Its response is the voltage at the output over that
    at the input.

    Each arm multiplies the ladder's chain matrix (A B; C D) by its own: (1 Z; 0 1) for an arm in series with the signal,
    (1 0; 1/Z 1) for an arm to ground. The response without load is 1 / A, for which the first row is enough. Both
    entries are kept multiplied by the arms' denominators, whose product is `product`, so that H(s) = product / a. */
class Ladder
{
public:
    /** An arm in series with the signal. */
    constexpr void addSeries (const Impedance& arm) noexcept
    {
        b = a * arm.over + b * arm.under;
        a = a * arm.under;
        product = product * arm.under;
    }

    /** An arm from the current node to ground. */
    constexpr void addShunt (const Impedance& arm) noexcept
    {
        a = a * arm.over + b * arm.under;
        b = b * arm.over;
        product = product * arm.over;
    }

    constexpr const CircuitPolynomial& getNumerator() const noexcept { return product; }

    constexpr const CircuitPolynomial& getDenominator() const noexcept { return a; }

private:
    CircuitPolynomial a { 1.0 };
    CircuitPolynomial b { 0.0 };
    CircuitPolynomial product { 1.0 };
};
} // namespace tarvik
