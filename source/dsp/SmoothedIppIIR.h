// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/CascadeBanks.h"
#include "dsp/MZTiCoefs.h"
#include "dsp/TripleBuffer.h"

#include <juce_events/juce_events.h>

#include <atomic>
#include <concepts>

namespace tarvik
{
/** A filter that takes new coefficients from any thread and crossfades to them on the audio thread. A design equal to
    the current one changes nothing; of several that come during a crossfade only the newest is heard.

    Polynomials that come on the thread that runs the filter are designed when they can be heard, so at most once per
    slice, and not while a crossfade runs or the filter is out. On any other thread they are designed there, at once.

    There is a control side and an audio side; docs/smoothed-filters.md shows what passes between them.

    - Control side: setAnalogue(), bringInCoefficients(), setOn(). Any thread, the audio thread included; of the first
      two one call at a time. They allocate nothing and wait for nobody.
    - Audio side: process(), beginSlice() and what CascadeBanks offers, skip(), reset(), prepare(). One call at a time,
      and prepare() and reset() never during process().
    - The timer is a second chance on the message thread, which the audio side never needs. As with every juce::Timer,
      destroy the object on the message thread, or while that thread is not dispatching.

    While the filter is not processed, a published design waits for the next process(), reset() or prepare(). The latter
    two bring it into both banks, without a crossfade. */
template <typename Sample, typename Coefs>
class SmoothedIppIIR : public juce::Timer, public CascadeBanks
{
    static_assert (std::same_as<Sample, float>);

public:
    using Polynomial = typename Coefs::Polynomial;

    SmoothedIppIIR();
    ~SmoothedIppIIR() override;

    /** Control side: the new H(s), highest power first; not heard before bringInCoefficients(). */
    void setAnalogue (const Polynomial& numerator, const Polynomial& denominator) noexcept;

    /** Control side: lets the audio side crossfade to the newest design. Not needed before the first prepare(), which
        brings in what is newest. */
    void bringInCoefficients() noexcept;

    /** Any thread: as CascadeBanks. The filter comes back with a clear delay line. */
    void setOn (bool shouldBeOn) noexcept
    {
        CascadeBanks::setOn (shouldBeOn);
        isDisturbed = true;
    }

    /** Audio side, allocates. `sampleRate` in Hz; a rate other than the current one redesigns at once. Afterwards both
        banks have the newest design and the ramps are at their targets. May wait for a design in progress. */
    void prepare (double sampleRate, int channels, int maxSamples);

    /** Audio side: the ramps jump to their targets, what waits is brought in, and all delay lines are cleared. May wait
        for a design in progress. */
    void reset() noexcept;

    /** Audio side: filters n samples of as many rows as prepare() was told channels, in place. */
    void process (Sample* const* rows, int n) noexcept;

    /** Audio side, for a FilterSeries: takes what the control side has published, and returns isIdle(). */
    bool beginSlice() noexcept
    {
        // Every slice of every filter comes here, and nearly always nothing has happened since the last one.
        return (isUndisturbed && isOnProcessingThread() && ! isDisturbed.load (std::memory_order_acquire))
               || beginDisturbedSlice();
    }

    /** Audio side, instead of process() while nothing is heard of the filter: it comes back on its newest design with a
        clear delay line. */
    void skip() noexcept;

    /** Audio side: as CascadeBanks; and no design is in progress or waits. */
    bool isSettled (double& level) noexcept;

    /** Message thread: looks whether a design was left over. */
    void timerCallback() override;

private:
    struct Analogue
    {
        Polynomial numerator {};
        Polynomial denominator {};

        bool operator== (const Analogue&) const = default;
    };

    /** What a bank can be given. */
    struct Design
    {
        Analogue analogue;
        typename Coefs::Taps taps {};
    };

    bool isOnProcessingThread() const noexcept
    {
        return processingThread.load (std::memory_order_relaxed) == juce::Thread::getCurrentThreadId();
    }

    bool isRateKnown() const noexcept { return coefs.sampleRate != 0; }

    bool mayStartTimer() const noexcept;
    bool hasWork() const noexcept;
    bool tryToWork() noexcept;
    void work() noexcept;
    void doWorkLocked() noexcept;
    void takeAnalogueLocked() noexcept;
    void claimThread() noexcept;
    void setCrossfading (bool doesCrossfade) noexcept;
    void takeNewest() noexcept;
    void crossfadeToWaiting() noexcept;
    bool isAnotherComing() noexcept;
    bool beginDisturbedSlice() noexcept;

    // Under the design lock.
    Coefs coefs;
    Analogue newest { coefs.numerator, coefs.denominator };
    Analogue designed = newest; ///< what coefs.taps were made of
    bool isStale = true;        ///< coefs.taps are not what the newest polynomials give at the rate

    // From the control side to whoever designs, and on to the audio side.
    TripleBuffer<Analogue> analogue;
    std::atomic<bool> isBringInWanted { false };
    TripleBuffer<Design> published;
    std::atomic<bool> isDisturbed { true };                           ///< something in the three above or in onRamp
    std::atomic<bool> isCrossfading { false };                        ///< tail included; written by the audio side
    std::atomic<bool> isWaiting { false };                            ///< a design, and the audio side has it
    std::atomic<bool> isRetrying { false };                           ///< the timer runs
    std::atomic<juce::Thread::ThreadID> processingThread { nullptr }; ///< the last one in process()

    // Audio side.
    bool isUndisturbed = false;   ///< idle, and nothing was left over when the last slice began
    bool isSkipped = false;       ///< nothing is heard until the next slice
    bool areOthersComing = false; ///< the newest polynomials are not those of the current design
    Design current;               ///< of the bank that has the input or is getting it
};

extern template class SmoothedIppIIR<float, MZTiCoefs<double, 2, 2>>;
extern template class SmoothedIppIIR<float, MZTiCoefs<double, 5, 5>>;
} // namespace tarvik
