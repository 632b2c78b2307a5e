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

    There is a control side and an audio side; docs/smoothed-filters.md shows what passes between them.

    - Control side: setAnalogue(), bringInCoefficients(), setOn(). Any thread, the audio thread included; of the first
      two one call at a time. They allocate nothing and wait for nobody.
    - Audio side: process(), beginSlice() and what CascadeBanks offers, reset(), prepare(). One call at a time, and
      prepare() and reset() never during process().
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

    /** Control side: the new H(s), highest power first. Designs it if the sample rate is known; it is not heard before
        bringInCoefficients(). */
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
        const auto isSameThread =
            processingThread.load (std::memory_order_relaxed) == juce::Thread::getCurrentThreadId();
        return (isUndisturbed && isSameThread && ! isDisturbed.load (std::memory_order_acquire))
               || beginDisturbedSlice();
    }

    /** Audio side: as CascadeBanks; and no design is in progress or waits. */
    bool isSettled (double& level) noexcept;

    /** Message thread: looks whether a design was left over. */
    void timerCallback() override;

private:
    struct Analogue
    {
        Polynomial numerator {};
        Polynomial denominator {};
    };

    bool mayStartTimer() const noexcept;
    bool hasWork() const noexcept;
    bool tryToWork() noexcept;
    void work() noexcept;
    void doWorkLocked() noexcept;
    void takeNewest() noexcept;
    bool beginDisturbedSlice() noexcept;

    Coefs coefs; ///< under its design lock

    // From the control side to whoever designs, and on to the audio side.
    TripleBuffer<Analogue> analogue;
    std::atomic<bool> isBringInWanted { false };
    TripleBuffer<typename Coefs::Taps> published;
    std::atomic<bool> isDisturbed { true };                           ///< something in the three above or in onRamp
    std::atomic<bool> isCrossfading { false };                        ///< tail included; written by the audio side
    std::atomic<bool> isWaiting { false };                            ///< a design, and the audio side has it
    std::atomic<bool> isRetrying { false };                           ///< the timer runs
    std::atomic<juce::Thread::ThreadID> processingThread { nullptr }; ///< the last one in process()

    // Audio side.
    bool isUndisturbed = false;          ///< idle, and nothing was left over when the last slice began
    typename Coefs::Taps currentTaps {}; ///< of the bank that has the input or is getting it
};

extern template class SmoothedIppIIR<float, MZTiCoefs<double, 2, 2>>;
extern template class SmoothedIppIIR<float, MZTiCoefs<double, 5, 5>>;
} // namespace tarvik
