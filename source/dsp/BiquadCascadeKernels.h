// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/BiquadCascade.h"

#include <cstddef>
#include <span>

namespace tarvik
{
/** Filters n samples of the first of the rows (there is at least one) together with the following ones whose cascades
    are equally long: four rows of one cascade each where vectors are wide enough, else two or one. Returns how many
    that were, 0 where there is no vector form for the lengths; there is one for 2 or 4 sections, and for 2 followed by
    2 or 4. The bits are those of filterPlainly(). */
std::size_t filterInVectors (std::span<const CascadeRow> rows, int n) noexcept;
} // namespace tarvik
