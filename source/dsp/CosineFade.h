// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace tarvik
{
/** A weight that falls from 1 to 0 as half a cosine, so that neither its beginning nor its end has a corner. One
    thread; nothing allocates. */
class CosineFade
{
public:
    /** The next `length` samples make the fade. */
    void begin (std::uint32_t length) noexcept { steps = remaining = length; }

    /** The fade is over, wherever it is. */
    void end() noexcept { remaining = 0; }

    bool isIdle() const noexcept { return remaining == 0; }

    std::uint32_t getRemaining() const noexcept { return remaining; }

    /** Multiplies a row by the next n weights, at most as many as remain. They depend on their place in the fade alone,
        not on where rows begin. */
    void multiply (float* row, int n) noexcept
    {
        // (1 + sin (pi v / 2)) / 2 for v from 1 to -1, by the sine's series: within 3e-8.
        constexpr double c1 = 0.7853981633974483, c3 = -0.3229820487531231, c5 = 0.03984631312308352,
                         c7 = -0.0023408770676593433, c9 = 8.022059239367987e-05, c11 = -1.799421617606042e-06;
        const auto scale = 2.0 / steps;
        const auto last = static_cast<std::int32_t> (remaining) - 1;

        for (std::int32_t i = 0; i < n; ++i)
        {
            const auto v = scale * (last - i) - 1.0, square = v * v;
            const auto sine = v * (c1 + square * (c3 + square * (c5 + square * (c7 + square * (c9 + square * c11)))));
            row[i] *= static_cast<float> (0.5 + sine);
        }

        remaining -= static_cast<std::uint32_t> (n);
    }

private:
    std::uint32_t steps = 1;
    std::uint32_t remaining = 0;
};
} // namespace tarvik
