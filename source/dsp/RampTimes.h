// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdint>

namespace tarvik
{
/** How long a full move of a smoothed gain and a crossfade of filters take. */
inline constexpr double rampSeconds = 0.1;

/** Whole samples of such a move at a rate; at least one, also at a rate that makes no sense. */
inline std::uint32_t rampSteps (double rateHz, double seconds = rampSeconds) noexcept
{
    constexpr double highestRateHz = 1e9;
    return rateHz > 0.0 ? static_cast<std::uint32_t> (std::max (1.0, std::min (rateHz, highestRateHz) * seconds)) : 1;
}
} // namespace tarvik
