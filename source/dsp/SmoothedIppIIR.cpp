// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/SmoothedIppIIR.h"

#include <mutex>

namespace tarvik
{
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
    constexpr auto retryMilliseconds = 10;

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

    if (! hasWork() && ! (isCrossfading.load() && (published.hasNewValue() || isWaiting.load())))
    {
        stopTimer();
        isRetrying = false;
    }
}

template <typename Sample, typename Coefs>
bool SmoothedIppIIR<Sample, Coefs>::hasWork() const noexcept
{
    return analogue.hasNewValue() || isBringInWanted.load();
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
        isDisturbed = true; // again: a slice may have looked while this was designed
    }
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::prepare (double sampleRate, int channels, int maxSamples)
{
    stopTimer();
    isRetrying = false;
    CascadeBanks::prepare (sampleRate, channels, maxSamples);

    {
        const std::lock_guard lock (coefs.designLock);

        const auto isNewRate = ! (sampleRate == coefs.sampleRate); // NaN differs from everything
        coefs.sampleRate = sampleRate;

        if (isNewRate && ! analogue.hasNewValue())
            coefs.design();

        isBringInWanted = true;
        doWorkLocked();
    }

    takeNewest();
    work(); // what came on another thread while the lock was held
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::reset() noexcept
{
    {
        const std::lock_guard lock (coefs.designLock);
        doWorkLocked();
    }

    onRamp.snap();
    takeNewest();
    work(); // what came on another thread while the lock was held
}

/** Without a crossfade. */
template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::takeNewest() noexcept
{
    isCrossfading = false;
    isUndisturbed = false;

    if (published.takeNewest() || isWaiting.load())
    {
        isWaiting = false;
        currentTaps = published.getReadSlot();
        settle (currentTaps);
    }
    else
    {
        settle();
    }
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

    const auto wasOut = isOut();
    onRamp.takeRequest();

    if (published.takeNewest())
        isWaiting = published.getReadSlot() != currentTaps; // else it replaces one that waited, and nothing is left

    if (isOut() ? isWaiting.load() : wasOut) // nothing is heard of it: no crossfade is needed
    {
        takeNewest();
    }
    else if (isWaiting.load())
    {
        if (isChanging())
        {
            hurryTail();
        }
        else
        {
            currentTaps = published.getReadSlot();
            isWaiting = false;
            beginCrossfade (currentTaps);
        }
    }

    if (isCrossfading.load (std::memory_order_relaxed) != isChanging())
        isCrossfading = isChanging();

    isUndisturbed = isIdle() && ! hasWork(); // else the lock was taken, and the next slice looks again
    return isIdle();
}

/** What has been taken up for a design is seen by the lock alone. */
template <typename Sample, typename Coefs>
bool SmoothedIppIIR<Sample, Coefs>::isSettled (double& level) noexcept
{
    if (! CascadeBanks::isSettled (level) || ! coefs.designLock.try_lock())
        return false;

    const auto isAnyLeft = hasWork() || published.hasNewValue() || isWaiting.load();
    coefs.designLock.unlock();
    return ! isAnyLeft;
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::process (Sample* const* rows, int n) noexcept
{
    for (int done = 0, length = 0; done < n; done += length)
    {
        length = beginSlice() ? n - done : getPieceLength (n - done);

        CascadeBatch batch (length);
        feed (rows, done, batch);
        batch.run();
        finish (rows, done, length);
    }
}

template class SmoothedIppIIR<float, MZTiCoefs<double, 2, 2>>;
template class SmoothedIppIIR<float, MZTiCoefs<double, 5, 5>>;
} // namespace tarvik
