// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik
{
/** Below this, what a filter or a circuit remembers is set to 0. In silence it would go on shrinking until the
    processor slows down for its smallness; a float has stopped showing it long before. */
inline constexpr double stateFloor = 1e-60;
} // namespace tarvik
