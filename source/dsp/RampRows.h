// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <span>

/** The rows of ramps, and what a crossfade makes of a row with them.

    Rules as in RowOperations.h: any thread, no allocation, no alignment, and the same bits on every processor, each
    product and difference rounded by itself. */
namespace tarvik::rows
{
/** dst[i] = target - increment * (remaining - 1 - i), computed in 64 bits: the next n samples of a straight way of
    which `remaining` samples are left. */
void fillLine (float* dst, double target, double increment, int remaining, int n) noexcept;

/** Fills groups of as many samples as there are powers: the value before the group times each of them. Returns the last
    value, which is the one before the next group. */
double fillPowers (float* dst, double before, std::span<const double> powers, int groups) noexcept;

/** toFirst[i] = (1 - share[i]) * x[i], toSecond[i] = share[i] * x[i]. The destinations are neither the source nor each
    other. */
void distribute (float* toFirst, float* toSecond, const float* x, const float* share, int n) noexcept;
} // namespace tarvik::rows
