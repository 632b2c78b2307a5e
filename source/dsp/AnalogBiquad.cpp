// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/AnalogBiquad.h"

#include <cmath>

namespace tarvik
{
AnalogBiquad AnalogBiquad::make (Type type, double q, double shelf, double amplitude, double omega0) noexcept
{
    const auto a = amplitude;
    const auto square = omega0 * omega0;
    const auto damping = omega0 / q;
    const auto shelfDamping = omega0 * std::sqrt (a) / q;
    const Coefficients resonant { 1.0, damping, square };

    switch (type)
    {
        case Type::lowPass:
            return { { 0.0, 0.0, square }, resonant };
        case Type::highPass:
            return { { 1.0, 0.0, 0.0 }, resonant };
        case Type::peak:
            return { { 1.0, omega0 * a / q, square }, { 1.0, omega0 / (a * q), square } };
        case Type::allPass:
            return { { 1.0, -damping, square }, resonant };
        case Type::bandPass:
            return { { 0.0, damping, 0.0 }, resonant };
        case Type::lowShelf:
            return { { a, a * shelfDamping, square * shelf }, { a, shelfDamping, square } };
        case Type::highShelf:
            return { { shelf, a * shelfDamping, square * a }, { 1.0, shelfDamping, square * a } };
    }

    return {};
}
} // namespace tarvik
