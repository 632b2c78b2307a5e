// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/BiquadCascade.h"

#include <array>

namespace tarvik
{
/** The cascades of two channels, equally long. */
using CascadePair = std::array<BiquadCascade*, 2>;

/** Filters two rows of n samples in place: each through its cascade of `first` and then, unless `second` is null,
    through that of `second`. A single row runs with `right` null; the cascades beside it must exist, and
    keep what they have if their delay lines are clear.

    Returns false, and does nothing, for lengths that there is no vector form for; there is one for 2 or 4 sections, and
    for 2 followed by 2 or 4. The bits are those of processPlainInTurn(). */
bool filterInVectors (const CascadePair& first, const CascadePair* second, float* left, float* right, int n) noexcept;

/** Filters four rows of n samples in place, the first two each through its cascade of `first`, the others through those
    of `second`, all four equally long. Returns false, and does nothing, if the instruction set's vectors are too short
    or there is no form for the length; there is one for 2 and 4 sections. The bits are those of
    BiquadCascade::process(). */
bool filterFourInVectors (const CascadePair& first, const CascadePair& second, float* const* rows, int n) noexcept;
} // namespace tarvik
