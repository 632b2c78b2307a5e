// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/SmoothedIppIIR.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <mutex>

namespace tarvik
{
namespace
{
constexpr auto rampSeconds = 0.1;
constexpr auto retryMilliseconds = 10;

// Within the time for which a waiting change would wait for the timer anyway.
constexpr auto tailSeconds = 0.01;

std::uint32_t getRampLength (double seconds, double sampleRate) noexcept
{
    constexpr auto longest = 1e9; // samples; keeps a rate that makes no sense within the integer's range
    const auto samples = std::trunc (seconds * sampleRate);
    return samples >= 1.0 ? static_cast<std::uint32_t> (std::min (samples, longest)) : 1;
}
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
    work();
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::bringInCoefficients() noexcept
{
    isBringInWanted = true;
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

    if (! hasWork() && ! (isCrossfading.load() && published.hasNews()))
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
    }
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::prepare (double sampleRate, int channels, int maxSamples)
{
    stopTimer();
    isRetrying = false;

    const auto numChannels = static_cast<std::size_t> (std::max (channels, 0));
    const auto rowLength = static_cast<std::size_t> (std::max (maxSamples, 1));
    filters.resize (2 * numChannels);
    filterPointers.resize (filters.size());
    std::transform (filters.begin(), filters.end(), filterPointers.begin(), [] (auto& filter) { return &filter; });
    rowPointers.resize (numChannels);

    for (auto* const row : { &bankRow, &onRow, &tailRow, &firstRow, &secondRow })
        row->resize (rowLength);

    const auto steps = getRampLength (rampSeconds, sampleRate);
    onRamp.prepare (steps);
    bankRamp.steps = steps;
    tailRamp.steps = getRampLength (tailSeconds, sampleRate);

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
    tailRamp.snap();
    isCrossfading = false;

    const auto isNew = published.takeNewest();

    for (auto& filter : filters)
    {
        if (isNew)
            filter.setTaps (published.getReadSlot());
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
bool SmoothedIppIIR<Sample, Coefs>::beginSlice() noexcept
{
    processingThread = juce::Thread::getCurrentThreadId();
    tryToWork(); // once: a slice lends a hand, it doesn't take over

    const auto wasOff = isOff();
    onRamp.takeRequest();

    if (isOff() ? published.hasNews() : wasOff) // nothing is heard of it: no crossfade is needed
        settle();

    if (! isChanging() && published.takeNewest())
    {
        const auto idleBank = 1 - static_cast<int> (bankRamp.target);

        for (auto* const filter : getBank (static_cast<std::size_t> (idleBank)))
            filter->setTaps (published.getReadSlot());

        bankRamp.set (idleBank);
    }

    isCrossfading = isChanging();
    return ! isChanging() && onRamp.get().isIdle() && ! isOff();
}

template <typename Sample, typename Coefs>
std::span<BiquadCascade* const> SmoothedIppIIR<Sample, Coefs>::getBank (std::size_t bank) const noexcept
{
    const auto channels = rowPointers.size();
    return std::span (filterPointers).subspan (bank * channels, channels);
}

template <typename Sample, typename Coefs>
std::span<BiquadCascade* const> SmoothedIppIIR<Sample, Coefs>::getActiveCascades() const noexcept
{
    return getBank (static_cast<std::size_t> (bankRamp.target));
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::process (Sample* const* rows, int n) noexcept
{
    const auto longest = static_cast<int> (bankRow.size());

    for (int done = 0; done < n; done += longest)
    {
        for (std::size_t c = 0; c < rowPointers.size(); ++c)
            rowPointers[c] = rows[c] + done;

        if (rowPointers.empty())
            return;

        processSlice (std::min (n - done, longest));
    }
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::processSlice (int n) noexcept
{
    if (beginSlice())
        return processSideBySide (getActiveCascades(), rowPointers.data(), n);

    if (isOff())
        return;

    // A ramp that ends within these samples rests at its target for the others, and both filters finish the slice.
    const auto isFading = ! onRamp.get().isIdle();
    const auto isChangingBanks = ! bankRamp.isIdle();
    const auto hasTail = ! tailRamp.isIdle();

    if (isFading)
        onRamp.fill (onRow.data(), n);

    if (isChangingBanks)
        bankRamp.fill (bankRow.data(), n);

    if (hasTail)
        tailRamp.fill (tailRow.data(), n);

    if (hasTail && isFading)
        std::transform (tailRow.data(), tailRow.data() + n, onRow.data(), tailRow.data(), std::multiplies<>());

    for (std::size_t c = 0; c < rowPointers.size(); ++c)
    {
        auto* const x = rowPointers[c];
        auto* const wet = firstRow.data();

        if (isFading && ! isChangingBanks)
            std::transform (x, x + n, onRow.data(), wet, std::multiplies<>());
        else
            std::copy_n (x, n, wet);

        if (isChangingBanks)
            runBothBanks (c, n);
        else if (hasTail)
            runWithTail (c, n);
        else
            getActiveCascades()[c]->process (wet, n);

        if (! isFading)
            std::copy_n (wet, n, x);
        else if (isChangingBanks)
            for (int i = 0; i < n; ++i)
                x[i] = (1 - onRow[static_cast<std::size_t> (i)]) * x[i] + onRow[static_cast<std::size_t> (i)] * wet[i];
        else
            for (int i = 0; i < n; ++i)
                x[i] = (1 - onRow[static_cast<std::size_t> (i)]) * x[i] + wet[i];
    }

    if (isChangingBanks && bankRamp.isIdle())
    {
        tailRamp.current = tailRamp.target = 1.0;
        tailRamp.set (0.0);
    }

    isCrossfading = isChanging();
}

/** firstRow = bank 0 of (1 - bankRow) times firstRow, plus bank 1 of bankRow times it. */
template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::runBothBanks (std::size_t channel, int n) noexcept
{
    const auto* const share = bankRow.data();
    auto* const first = firstRow.data();
    auto* const second = secondRow.data();

    for (int i = 0; i < n; ++i)
    {
        const auto x = first[i];
        first[i] = (1 - share[i]) * x;
        second[i] = share[i] * x;
    }

    const std::array<BiquadCascade*, 2> banks { getBank (0)[channel], getBank (1)[channel] };
    const std::array<Sample*, 2> rows { first, second };
    processSideBySide (banks, rows.data(), n);
    std::transform (first, first + n, second, first, std::plus<>());
}

/** firstRow = the active bank of it, plus tailRow times what the other bank still holds. */
template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::runWithTail (std::size_t channel, int n) noexcept
{
    auto* const first = firstRow.data();
    auto* const second = secondRow.data();
    std::fill_n (second, n, Sample());

    const auto active = static_cast<std::size_t> (bankRamp.target);
    const std::array<BiquadCascade*, 2> banks { getBank (active)[channel], getBank (1 - active)[channel] };
    const std::array<Sample*, 2> rows { first, second };
    processSideBySide (banks, rows.data(), n);

    for (int i = 0; i < n; ++i)
        first[i] += tailRow[static_cast<std::size_t> (i)] * second[i];
}

template class SmoothedIppIIR<float, MZTiCoefs<double, 2, 2>>;
template class SmoothedIppIIR<float, MZTiCoefs<double, 5, 5>>;
} // namespace tarvik
