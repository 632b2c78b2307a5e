// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/BiquadCascade.h"

#include "dsp/BiquadCascadeKernels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tarvik
{
void BiquadCascade::setTaps (std::span<const double> taps) noexcept
{
    sections = {};
    numSections = std::min (static_cast<int> (taps.size()) / tapsPerSection, maxSections);

    for (std::size_t s = 0; s < static_cast<std::size_t> (numSections); ++s)
    {
        const auto section = taps.subspan (s * tapsPerSection, tapsPerSection);
        const auto a0 = section[3];
        sections.b0[s] = section[0] / a0;
        sections.a1[s] = section[4] / a0;
        sections.a2[s] = section[5] / a0;
        sections.c1[s] = section[1] / a0 - sections.a1[s] * sections.b0[s];
        sections.c2[s] = section[2] / a0 - sections.a2[s] * sections.b0[s];
    }
}

void BiquadCascade::clear() noexcept
{
    sections.s1.fill (0.0);
    sections.s2.fill (0.0);
}

/** Without input, a section's s1 swings out as far as it stands, and as far as its speed takes it: for the poles p,
    |1 - p| is the angle or the share that they move by in a sample. */
BiquadCascade::Rest BiquadCascade::findRest (double input) const noexcept
{
    Rest rest { input, 0.0 };

    for (std::size_t s = 0; s < static_cast<std::size_t> (numSections); ++s)
    {
        const auto& [b0, c1, c2, a1, a2, s1, s2] = sections;
        const auto poles = 1.0 + a1[s] + a2[s];              // (1 - p) of the one times that of the other
        const auto isNeutral = c1[s] == 0.0 && c2[s] == 0.0; // its poles may lie at 1, under its zeros
        const auto end1 = isNeutral ? 0.0 : (c1[s] + c2[s]) * rest.output / poles;
        const auto end2 = c2[s] * rest.output - a2[s] * end1;
        const auto from1 = s1[s] - end1, from2 = s2[s] - end2;
        const auto speed = from2 - (1.0 + a1[s]) * from1;
        const auto distance = std::abs (from1) + (speed != 0.0 ? std::abs (speed) / std::sqrt (poles) : 0.0);

        if (! (distance <= rest.distance)) // so a NaN stays
            rest.distance = distance;

        rest.output = b0[s] * rest.output + end1;
    }

    return rest;
}

void filterPlainly (const CascadeRow& row, int n) noexcept
{
    for (int i = 0; i < n; ++i)
    {
        const auto x = row.first->step (static_cast<double> (row.samples[i]));
        row.samples[i] = static_cast<float> (row.second != nullptr ? row.second->step (x) : x);
    }
}

void filterRows (std::span<const CascadeRow> rows, int n) noexcept
{
    while (! rows.empty())
    {
        auto numFiltered = filterInVectors (rows, n);

        if (numFiltered == 0)
        {
            filterPlainly (rows.front(), n);
            numFiltered = 1;
        }

        rows = rows.subspan (numFiltered);
    }
}
} // namespace tarvik
