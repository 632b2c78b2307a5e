// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/SmoothedIppIIR.h"

#include "dsp/RampTimes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <mutex>

namespace tarvik
{
namespace
{
constexpr auto retryMilliseconds = 10;
constexpr auto hurriedTailSeconds = 0.01;
} // namespace

template <typename Sample, typename Coefs>
SmoothedIppIIR<Sample, Coefs>::SmoothedIppIIR() = default;

template <typename Sample, typename Coefs>
SmoothedIppIIR<Sample, Coefs>::~SmoothedIppIIR()
{
    stopTimer();
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::setAnalogue (const Polynomial& numerator, const Polynomial& denominator) noexcept
{
    analogue.getWriteSlot() = { numerator, denominator };
    analogue.publish();
    isDisturbed = true;
    work();
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::bringInCoefficients() noexcept
{
    isBringInWanted = true;
    isDisturbed = true;
    work();

    const auto hasToWait = isCrossfading.load() || hasWork();

    if (hasToWait && mayStartTimer() && ! isRetrying.exchange (true))
        startTimer (retryMilliseconds);
}

/** Starting a timer locks and may allocate, so a thread that processes audio doesn't, not even where a program renders
    on its message thread. (MessageManager::existsAndIsCurrentThread() would lock, too.) */
template <typename Sample, typename Coefs>
bool SmoothedIppIIR<Sample, Coefs>::mayStartTimer() const noexcept
{
    const auto* const messages = juce::MessageManager::getInstanceWithoutCreating();
    const auto thisThread = juce::Thread::getCurrentThreadId();
    return messages != nullptr && messages->getCurrentMessageThread() == thisThread
           && processingThread.load() != thisThread;
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::timerCallback()
{
    work();

    if (! hasWork() && ! (isCrossfading.load() && (published.hasNews() || isWaiting.load())))
    {
        stopTimer();
        isRetrying = false;
    }
}

template <typename Sample, typename Coefs>
bool SmoothedIppIIR<Sample, Coefs>::hasWork() const noexcept
{
    return analogue.hasNews() || isBringInWanted.load();
}

/** Designs and publishes what the control side has left, unless there is nothing or another thread is at it. */
template <typename Sample, typename Coefs>
bool SmoothedIppIIR<Sample, Coefs>::tryToWork() noexcept
{
    if (! hasWork() || ! coefs.designLock.try_lock())
        return false;

    doWorkLocked();
    coefs.designLock.unlock();
    return true;
}

/** Whoever has worked looks again when the lock is free: a thread that found it taken has left its work to this one. */
template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::work() noexcept
{
    while (tryToWork())
    {
    }
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::doWorkLocked() noexcept
{
    // The request is read before the polynomials: those that it was made for are then certainly among them.
    const auto bringIn = isBringInWanted.exchange (false);

    if (analogue.takeNewest())
    {
        coefs.numerator = analogue.getReadSlot().numerator;
        coefs.denominator = analogue.getReadSlot().denominator;

        if (coefs.sampleRate > 0)
            coefs.design();
    }

    if (bringIn)
    {
        published.getWriteSlot() = coefs.taps;
        published.publish();
        isDisturbed = true;
    }
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::prepare (double sampleRate, int channels, int maxSamples)
{
    stopTimer();
    isRetrying = false;

    numChannels = static_cast<std::size_t> (std::max (channels, 0));
    const auto rowLength = static_cast<std::size_t> (std::max (maxSamples, 1));
    filters.resize (2 * numChannels);
    filterPointers.resize (filters.size());
    std::transform (filters.begin(), filters.end(), filterPointers.begin(), [] (auto& filter) { return &filter; });
    workRows.resize (2 * numChannels);

    for (auto* const row : { &bankRow, &onRow, &tailRow })
        row->resize (rowLength);

    for (auto& row : workRows)
        row.resize (rowLength);

    const auto steps = rampSteps (sampleRate);
    onRamp.prepare (steps);
    bankRamp.steps = tailSteps = steps;
    hurrySteps = rampSteps (sampleRate, hurriedTailSeconds);

    {
        const std::lock_guard lock (coefs.designLock);

        const auto isNewRate = ! (sampleRate == coefs.sampleRate); // NaN differs from everything
        coefs.sampleRate = sampleRate;

        if (isNewRate && ! analogue.hasNews())
            coefs.design();

        isBringInWanted = true;
        doWorkLocked();
    }

    settle();
    work(); // what came on another thread while the lock was held
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::reset() noexcept
{
    {
        // No audio runs, so this may wait for a design in progress: what is newest must be in when it does.
        const std::lock_guard lock (coefs.designLock);
        doWorkLocked();
    }

    onRamp.snap();
    settle();
    work(); // what came on another thread while the lock was held
}

/** Ends a crossfade and leaves both banks at rest, on the newest published design if there is one. */
template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::settle() noexcept
{
    bankRamp.snap();
    endTail();
    isCrossfading = false;
    isAtRest = false;

    const auto isNew = published.takeNewest() || isWaiting.load();
    isWaiting = false;

    if (isNew)
        currentTaps = published.getReadSlot();

    for (auto& filter : filters)
    {
        if (isNew)
            filter.setTaps (currentTaps);
        else
            filter.clear();
    }
}

template <typename Sample, typename Coefs>
bool SmoothedIppIIR<Sample, Coefs>::isOff() const noexcept
{
    const auto& ramp = onRamp.get();
    return ramp.isIdle() && static_cast<float> (ramp.target) != 1.0f;
}

template <typename Sample, typename Coefs>
bool SmoothedIppIIR<Sample, Coefs>::beginDisturbedSlice() noexcept
{
    isDisturbed.exchange (false); // first: what comes from now on disturbs the next slice

    // Storing for other threads to see takes as long as filtering several samples, so it is done only where something
    // changes.
    if (const auto thisThread = juce::Thread::getCurrentThreadId();
        processingThread.load (std::memory_order_relaxed) != thisThread)
        processingThread = thisThread;

    tryToWork(); // once: a slice lends a hand, it doesn't take over

    const auto wasOff = isOff();
    onRamp.takeRequest();

    takePublished();

    if (isOff() ? isWaiting.load() : wasOff) // nothing is heard of it: no crossfade is needed
        settle();
    else if (isWaiting.load() && ! isChanging())
        beginCrossfade();
    else if (isWaiting.load() && ! tail.isIdle() && hurry.isIdle())
        hurry.begin (hurrySteps);

    noteCrossfading();
    const auto rests = ! isChanging() && onRamp.get().isIdle() && ! isOff();
    isAtRest = rests && ! hasWork(); // else the lock was taken, and the next slice looks again
    return rests;
}

/** A design equal to the current one replaces one that waited, and nothing is left to do. */
template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::takePublished() noexcept
{
    if (published.takeNewest())
        isWaiting = published.getReadSlot() != currentTaps;
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::beginCrossfade() noexcept
{
    const auto idleBank = 1 - static_cast<int> (bankRamp.target);
    currentTaps = published.getReadSlot();
    isWaiting = false;

    for (auto* const filter : getBank (static_cast<std::size_t> (idleBank)))
        filter->setTaps (currentTaps);

    bankRamp.set (idleBank);
}

template <typename Sample, typename Coefs>
int SmoothedIppIIR<Sample, Coefs>::getPieceLength (int n) const noexcept
{
    if (isOff())
        return n;

    auto length = static_cast<std::uint32_t> (n);

    for (const auto remaining :
         { onRamp.get().remaining, bankRamp.remaining, tail.getRemaining(), hurry.getRemaining() })
        if (remaining > 0)
            length = std::min (length, remaining);

    return static_cast<int> (length);
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::noteCrossfading() noexcept
{
    if (isCrossfading.load (std::memory_order_relaxed) != isChanging())
        isCrossfading = isChanging();
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::process (Sample* const* rows, int n) noexcept
{
    auto* const self = this;
    processTogether (std::span (&self, 1), rows, n);
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::processTogether (std::span<SmoothedIppIIR* const> filters, Sample* const* rows,
                                                     int n) noexcept
{
    for (int done = 0, length = 0; done < n; done += length)
    {
        length = n - done;

        for (auto* const filter : filters)
        {
            filter->beginSlice();
            length = filter->getPieceLength (length);

            if (filter->numChannels > 0)
                length = std::min (length, static_cast<int> (filter->bankRow.size()));
        }

        CascadePass pass (length);

        for (std::size_t f = 0, row = 0; f < filters.size(); row += filters[f++]->numChannels)
            filters[f]->feed (rows + row, done, pass);

        pass.finish();

        for (std::size_t f = 0, row = 0; f < filters.size(); row += filters[f++]->numChannels)
            filters[f]->finish (rows + row, done, length);
    }
}

/** Begins a piece: gives the pass what the cascades have to filter. Where nothing moves, that is the rows
    themselves. */
template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::feed (Sample* const* rows, int begin, CascadePass& pass) noexcept
{
    const auto n = pass.n;

    if (numChannels == 0 || isOff())
    {
        moves = {};
        return;
    }

    moves = { .isFading = ! onRamp.get().isIdle(),
              .isChangingBanks = ! bankRamp.isIdle(),
              .hasTail = ! tail.isIdle(),
              .isHurried = ! hurry.isIdle() };
    const auto [isFading, isChangingBanks, hasTail, isHurried] = moves;

    if (isFading)
        onRamp.fillTaken (onRow.data(), n);

    if (isChangingBanks)
        bankRamp.fill (bankRow.data(), n);

    if (hasTail)
    {
        std::fill_n (tailRow.data(), n, Sample (1));
        tail.multiply (tailRow.data(), n);

        if (isHurried)
            hurry.multiply (tailRow.data(), n);
    }

    if (hasTail && isFading)
        std::transform (tailRow.data(), tailRow.data() + n, onRow.data(), tailRow.data(), std::multiplies<>());

    const auto active = isChangingBanks ? 0 : static_cast<std::size_t> (bankRamp.target);

    for (std::size_t c = 0; c < numChannels; ++c)
    {
        auto* const x = rows[c] + begin;
        auto* const first = workRows[2 * c].data();
        auto* const second = workRows[2 * c + 1].data();

        if (isChangingBanks)
        {
            rows::distribute (first, second, x, bankRow.data(), n);
        }
        else if (isFading)
        {
            std::transform (x, x + n, onRow.data(), first, std::multiplies<>());
        }

        if (hasTail)
            std::fill_n (second, n, Sample());

        pass.add (getBank (active)[c], isChangingBanks || isFading ? first : x);

        if (isChangingBanks || hasTail)
            pass.add (getBank (1 - active)[c], second);
    }
}

/** Ends a piece: puts together what the cascades have made of it. */
template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::finish (Sample* const* rows, int begin, int n) noexcept
{
    const auto [isFading, isChangingBanks, hasTail, isHurried] = moves;

    if (! isFading && ! isChangingBanks && ! hasTail)
        return;

    const auto* const on = onRow.data();
    const auto* const tailShare = tailRow.data();

    for (std::size_t c = 0; c < numChannels; ++c)
    {
        auto* const x = rows[c] + begin;
        const auto* const second = workRows[2 * c + 1].data();
        auto* const wet = isFading || isChangingBanks ? workRows[2 * c].data() : x;

        if (isChangingBanks)
            std::transform (wet, wet + n, second, isFading ? wet : x, std::plus<>());
        else if (hasTail)
            for (int i = 0; i < n; ++i)
                wet[i] += tailShare[i] * second[i];

        if (isFading && isChangingBanks)
            for (int i = 0; i < n; ++i)
                x[i] = (1 - on[i]) * x[i] + on[i] * wet[i];
        else if (isFading)
            for (int i = 0; i < n; ++i)
                x[i] = (1 - on[i]) * x[i] + wet[i];
    }

    if (isChangingBanks && bankRamp.isIdle())
        tail.begin (tailSteps);

    if (hasTail && (tail.isIdle() || (isHurried && hurry.isIdle())))
        endTail();

    noteCrossfading();
}

template class SmoothedIppIIR<float, MZTiCoefs<double, 2, 2>>;
template class SmoothedIppIIR<float, MZTiCoefs<double, 5, 5>>;
} // namespace tarvik
