// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/CascadeBanks.h"

#include "dsp/RampTimes.h"
#include "dsp/RowOperations.h"

#include <algorithm>

namespace tarvik
{
namespace
{
/** toFirst[i] = (1 - share[i]) x[i], toSecond[i] = share[i] x[i] */
void distribute (float* toFirst, float* toSecond, const float* x, const float* share, int n) noexcept
{
    for (int i = 0; i < n; ++i)
    {
        toFirst[i] = (1 - share[i]) * x[i];
        toSecond[i] = share[i] * x[i];
    }
}
} // namespace

void CascadeBanks::prepare (double sampleRate, int channels, int maxSamples)
{
    constexpr auto hurriedTailSeconds = 0.01;

    numChannels = static_cast<std::size_t> (std::max (channels, 0));
    const auto rowLength = static_cast<std::size_t> (std::max (maxSamples, 1));
    filters.resize (2 * numChannels);
    filterPointers.resize (filters.size());
    std::transform (filters.begin(), filters.end(), filterPointers.begin(), [] (auto& filter) { return &filter; });
    workRows.resize (2 * numChannels);

    for (auto* const row : { &onRow, &offRow, &bankRow, &tailRow })
        row->resize (rowLength);

    for (auto& row : workRows)
        row.resize (rowLength);

    const auto steps = rampSteps (sampleRate);
    onRamp.prepare (steps);
    bankRamp.steps = tailSteps = steps;
    hurrySteps = rampSteps (sampleRate, hurriedTailSeconds);
}

void CascadeBanks::settle (std::span<const double> taps) noexcept
{
    bankRamp.snap();
    tail.end();
    hurry.end();

    for (auto& filter : filters)
    {
        if (taps.empty())
            filter.clear();
        else
            filter.setTaps (taps);
    }
}

void CascadeBanks::beginCrossfade (std::span<const double> taps) noexcept
{
    const auto idleBank = 1 - static_cast<int> (bankRamp.target);

    for (auto* const filter : getBank (static_cast<std::size_t> (idleBank)))
        filter->setTaps (taps);

    bankRamp.set (idleBank);
}

void CascadeBanks::hurryTail() noexcept
{
    if (! tail.isIdle() && hurry.isIdle())
        hurry.begin (hurrySteps);
}

bool CascadeBanks::isSettled (double& level) const noexcept
{
    constexpr double farthest = 1e-8; // -179 dBFS at the calibration that nothing has changed

    if (! onRamp.isIdle())
        return false;

    if (isOut())
        return true; // crossfade and tail stand still

    if (isChanging())
        return false;

    const auto input = level;

    for (const auto* const cascade : getActiveCascades())
    {
        const auto rest = cascade->findRest (input);
        level = rest.output;

        if (! (rest.distance < farthest))
            return false;
    }

    return true;
}

int CascadeBanks::getPieceLength (int n) const noexcept
{
    if (numChannels == 0 || isOut())
        return n;

    auto length = std::min (n, static_cast<int> (onRow.size()));

    for (const auto remaining :
         { onRamp.get().remaining, bankRamp.remaining, tail.getRemaining(), hurry.getRemaining() })
        if (remaining > 0)
            length = static_cast<int> (std::min (static_cast<std::uint32_t> (length), remaining));

    return length;
}

void CascadeBanks::feed (float* const* rows, int begin, CascadeBatch& batch) noexcept
{
    const auto n = batch.n;
    moves = {};

    if (numChannels == 0 || isOut())
        return;

    moves = { .isFading = ! onRamp.get().isIdle(), .isChangingBanks = ! bankRamp.isIdle(), .hasTail = ! tail.isIdle() };
    const auto [isFading, isChangingBanks, hasTail] = moves;

    if (isFading)
    {
        onRamp.fillTaken (onRow.data(), n);
        rows::combine (rows::ScalarOperation::subtractFrom, offRow.data(), onRow.data(), 1.0f, n);
    }

    if (isChangingBanks)
        bankRamp.fill (bankRow.data(), n);

    if (hasTail)
        fillTailShare (n);

    const auto active = isChangingBanks ? 0 : static_cast<std::size_t> (bankRamp.target);

    for (std::size_t c = 0; c < numChannels; ++c)
    {
        auto* const x = rows[c] + begin;
        auto* const first = workRows[2 * c].data();
        auto* const second = workRows[2 * c + 1].data();

        if (isChangingBanks)
            distribute (first, second, x, bankRow.data(), n);
        else if (isFading)
            rows::multiply (first, x, onRow.data(), n);

        if (hasTail)
            rows::fill (second, 0.0f, n);

        batch.add ({ isChangingBanks || isFading ? first : x, getBank (active)[c] });

        if (isChangingBanks || hasTail)
            batch.add ({ second, getBank (1 - active)[c] });
    }
}

void CascadeBanks::finish (float* const* rows, int begin, int n) noexcept
{
    const auto [isFading, isChangingBanks, hasTail] = moves;

    for (std::size_t c = 0; c < numChannels; ++c)
    {
        auto* const x = rows[c] + begin;
        auto* const first = isFading || isChangingBanks ? workRows[2 * c].data() : x;
        auto* const second = workRows[2 * c + 1].data();

        if (hasTail)
            rows::multiply (second, tailRow.data(), n);

        if (hasTail || isChangingBanks)
            rows::combine (rows::RowOperation::add, isFading ? first : x, first, second, n);

        if (isFading && isChangingBanks)
            rows::multiply (first, onRow.data(), n);

        if (isFading)
        {
            rows::multiply (x, offRow.data(), n);
            rows::add (x, first, n);
        }
    }

    if (isChangingBanks && bankRamp.isIdle())
        tail.begin (tailSteps);

    if (tail.isIdle())
        hurry.end();
}

void CascadeBanks::fillTailShare (int n) noexcept
{
    rows::fill (tailRow.data(), 1.0f, n);
    tail.multiply (tailRow.data(), n);

    if (! hurry.isIdle())
    {
        hurry.multiply (tailRow.data(), n);

        if (hurry.isIdle())
            tail.end();
    }

    if (moves.isFading)
        rows::multiply (tailRow.data(), onRow.data(), n);
}
} // namespace tarvik
