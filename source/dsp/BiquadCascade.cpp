// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/BiquadCascade.h"

#include "dsp/BiquadCascadeKernels.h"

#include <algorithm>
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

void BiquadCascade::processPlain (float* row, int n) noexcept { processPlainInTurn (*this, nullptr, row, n); }

void processPlainInTurn (BiquadCascade& first, BiquadCascade* second, float* row, int n) noexcept
{
    for (int i = 0; i < n; ++i)
    {
        const auto x = first.step (static_cast<double> (row[i]));
        row[i] = static_cast<float> (second != nullptr ? second->step (x) : x);
    }
}

void BiquadCascade::process (float* row, int n) noexcept
{
    BiquadCascade silent; // beside this one in the vectors' lanes

    if (! filterInVectors ({ this, &silent }, nullptr, row, nullptr, n))
        processPlain (row, n);
}

namespace
{
bool areAlike (const CascadePair& pair) noexcept { return pair[0]->getNumSections() == pair[1]->getNumSections(); }
} // namespace

void processSideBySide (std::span<BiquadCascade* const> cascades, float* const* rows, int n) noexcept
{
    std::size_t row = 0;

    for (; row + 3 < cascades.size(); row += 4)
    {
        const CascadePair first { cascades[row], cascades[row + 1] }, second { cascades[row + 2], cascades[row + 3] };
        const auto allAlike = areAlike (first) && areAlike (second) && areAlike ({ first[0], second[0] });

        if (! allAlike || ! filterFourInVectors (first, second, rows + row, n))
            break;
    }

    for (; row + 1 < cascades.size(); row += 2)
    {
        const CascadePair pair { cascades[row], cascades[row + 1] };

        if (! areAlike (pair) || ! filterInVectors (pair, nullptr, rows[row], rows[row + 1], n))
            break;
    }

    for (; row < cascades.size(); ++row)
        cascades[row]->process (rows[row], n);
}

void processInTurn (std::span<BiquadCascade* const> first, std::span<BiquadCascade* const> second, float* const* rows,
                    int n) noexcept
{
    if (first.size() == 1)
    {
        BiquadCascade silent;
        const CascadePair seconds { second[0], &silent };

        if (filterInVectors ({ first[0], &silent }, &seconds, rows[0], nullptr, n))
            return;
    }
    else if (first.size() == 2)
    {
        const CascadePair firsts { first[0], first[1] }, seconds { second[0], second[1] };

        if (areAlike (firsts) && areAlike (seconds) && filterInVectors (firsts, &seconds, rows[0], rows[1], n))
            return;
    }

    for (std::size_t row = 0; row < first.size(); ++row)
        processPlainInTurn (*first[row], second[row], rows[row], n);
}
} // namespace tarvik
