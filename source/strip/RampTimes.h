// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdint>

namespace tarvik
{

/** How long every smoothed gain of the strip takes for a full move. */
inline constexpr double rampSeconds = 0.1;

/** Whole samples of such a move at a rate; one at a rate that makes no sense. */
inline std::uint32_t rampSteps (double rateHz) noexcept
{
    constexpr double highestRateHz = 1e9;
    return rateHz > 0.0 ? static_cast<std::uint32_t> (std::max (1.0, std::min (rateHz, highestRateHz) * rampSeconds))
                        : 1;
}

} // namespace tarvik
