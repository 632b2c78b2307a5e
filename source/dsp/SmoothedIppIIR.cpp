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

    if (! isOnProcessingThread())
        work();
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::bringInCoefficients() noexcept
{
    constexpr auto retryMilliseconds = 10;

    isBringInWanted = true;
    isDisturbed = true;

    if (! isOnProcessingThread())
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
    return messages != nullptr && messages->getCurrentMessageThread() == juce::Thread::getCurrentThreadId()
           && ! isOnProcessingThread();
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
    takeAnalogueLocked();

    if (isStale && isRateKnown())
    {
        coefs.numerator = newest.numerator;
        coefs.denominator = newest.denominator;
        coefs.design();
        designed = newest;
        isStale = false;
    }

    if (bringIn)
    {
        published.getWriteSlot() = { designed, coefs.taps };
        published.publish();
        isDisturbed = true; // again: a slice may have looked while this was designed
    }
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::takeAnalogueLocked() noexcept
{
    if (analogue.takeNewest())
    {
        newest = analogue.getReadSlot();
        isStale = ! isRateKnown() || ! (newest == designed);
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

        takeAnalogueLocked();
        isStale = isStale || ! (sampleRate == coefs.sampleRate); // NaN differs from everything
        coefs.sampleRate = sampleRate;
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
    isSkipped = false;

    if (published.takeNewest() || isWaiting.load())
    {
        isWaiting = false;
        current = published.getReadSlot();
        settle (current.taps);
    }
    else
    {
        settle();
    }
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::skip() noexcept
{
    claimThread();
    isSkipped = true;
    isUndisturbed = false;
    setCrossfading (false);
}

/** Storing for other threads to see takes as long as filtering several samples, so it is done only where something
    changes. */
template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::claimThread() noexcept
{
    if (! isOnProcessingThread())
        processingThread = juce::Thread::getCurrentThreadId();
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::setCrossfading (bool doesCrossfade) noexcept
{
    if (isCrossfading.load (std::memory_order_relaxed) != doesCrossfade)
        isCrossfading = doesCrossfade;
}

/** During a crossfade: whether another design comes after it. Of polynomials that are not designed yet, this looks only
    whether they are those of the current design. */
template <typename Sample, typename Coefs>
bool SmoothedIppIIR<Sample, Coefs>::isAnotherComing() noexcept
{
    if (hasWork() && coefs.designLock.try_lock())
    {
        takeAnalogueLocked();
        areOthersComing = ! (newest == current.analogue);
        coefs.designLock.unlock();
    }

    return hasWork() ? areOthersComing : isWaiting.load();
}

template <typename Sample, typename Coefs>
bool SmoothedIppIIR<Sample, Coefs>::beginDisturbedSlice() noexcept
{
    isDisturbed.exchange (false); // first: what comes from now on disturbs the next slice
    claimThread();

    const auto wasOut = isOut() || isSkipped;
    onRamp.takeRequest();

    if (isOut()) // nothing is heard, so nothing is designed
    {
        setCrossfading (false);
        return false;
    }

    if (wasOut || ! isChanging())
        tryToWork(); // once: a slice lends a hand, it doesn't take over

    if (wasOut)
    {
        takeNewest();
    }
    else
    {
        if (published.takeNewest())
            isWaiting = published.getReadSlot().taps != current.taps; // else it replaces one that waited

        if (! isChanging())
            crossfadeToWaiting();
        else if (isAnotherComing())
            hurryTail();
    }

    setCrossfading (isChanging());
    isUndisturbed = isIdle() && ! hasWork(); // else the lock was taken, and the next slice looks again
    return isIdle();
}

/** What has been taken up for a design is seen by the lock alone. */
template <typename Sample, typename Coefs>
bool SmoothedIppIIR<Sample, Coefs>::isSettled (double& level) noexcept
{
    if (! onRamp.isIdle())
        return false;

    if (isOut() || isSkipped) // what waits is looked at when it comes back
        return true;

    if (! CascadeBanks::isSettled (level) || ! coefs.designLock.try_lock())
        return false;

    const auto isAnyLeft = hasWork() || published.hasNewValue() || isWaiting.load();
    coefs.designLock.unlock();
    return ! isAnyLeft;
}

template <typename Sample, typename Coefs>
void SmoothedIppIIR<Sample, Coefs>::crossfadeToWaiting() noexcept
{
    if (! isWaiting.load())
        return;

    current = published.getReadSlot();
    isWaiting = false;
    areOthersComing = false;
    beginCrossfade (current.taps);
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
