// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/BiquadCascade.h"
#include "dsp/CascadePass.h"
#include "dsp/CosineFade.h"
#include "dsp/MZTiCoefs.h"
#include "dsp/Ramps.h"
#include "dsp/TripleBuffer.h"

#include <juce_events/juce_events.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <span>
#include <vector>

namespace tarvik
{
/** A filter that takes new coefficients by a crossfade. It keeps two banks of filter states; a new design goes into
    the idle bank with a clear delay line, and the input moves over to it within 0.1 s. It is the inputs of the two
    filters that are scaled, not their outputs: the new one sees its input rise from nothing, the old one rings out.
    What a low resonance or a corner far below the music still holds when the inputs have changed places, the tail, is
    faded out as half a cosine: over 0.1 s, or within 10 ms once another design waits. A shorter or straighter
    fade would be heard as a click under a bass note.

    Crossfades and tails end at their sample, and there the next design is taken: process() cuts its rows at these
    places, so that what is heard depends on when a change came and not on how the host cuts its blocks. A design equal
    to the current one changes nothing.

    Who owns what. There is a control side and an audio side, and between them only hand-overs.

    - Control side: setAnalogue(), bringInCoefficients(), setOn(). Any thread, the audio thread included; of the
      first two one call at a time. They allocate nothing and wait for nobody: the polynomials are left in a
      hand-over, and whoever gets the design lock, by trying, designs them. If another thread has the lock, it looks
      again when it gives it back. Should even that miss, the next process() designs what is left.
    - Audio side: process(), beginSlice(), getActiveCascades(), reset(), prepare(). One call at a time, and prepare()
      and reset() never during process(). Banks and ramps belong to this side alone. bringInCoefficients() only
      publishes the finished taps; the audio side takes them when a slice begins, and begins a crossfade at the first
      sample at which none runs, nor a tail. So there are never two crossfades at once, and of the designs published
      during one only the newest is ever heard. That needs no message loop, however fast the audio runs.
    - The timer is a second chance: while a change waits behind a crossfade, every 10 ms the message thread looks
      whether a design was left over, and stops the timer when nothing waits any more. Starting it takes a lock, so
      only changes on the message thread do, and not where that thread runs process() itself. As with every
      juce::Timer, destroy the object on the message thread, or while that thread is not dispatching.

    While the filter is not processed, a published design waits for the next process(), reset() or prepare(). The
    latter two bring it into both banks at rest, without a crossfade. */
template <typename Sample, typename Coefs>
class SmoothedIppIIR : public juce::Timer
{
public:
    using Polynomial = typename Coefs::Polynomial;

    SmoothedIppIIR();
    ~SmoothedIppIIR() override;

    SmoothedIppIIR (const SmoothedIppIIR&) = delete;
    SmoothedIppIIR& operator= (const SmoothedIppIIR&) = delete;

    /** Control side: the new H(s), highest power first. Designs it if the sample rate is known; it is not heard before
        bringInCoefficients(). */
    void setAnalogue (const Polynomial& numerator, const Polynomial& denominator) noexcept;

    /** Control side: lets the audio side crossfade to the newest design. Before the first prepare() this leaves nothing
        behind, since prepare() brings in what is newest. */
    void bringInCoefficients() noexcept;

    /** Any thread: fades the whole filter in (true) or out (false) within 0.1 s. Faded out it costs nothing, hands its
        input through, and comes back from a clear delay line. */
    void setOn (bool shouldBeOn) noexcept
    {
        onRamp.request (shouldBeOn ? 1.0 : 0.0);
        isDisturbed = true;
    }

    /** Audio side, allocates. `sampleRate` in Hz; a rate other than the present one redesigns at once. Afterwards both
        banks are at rest on the newest design and the ramps at their targets; a ramp takes trunc (0.1 sampleRate)
        samples. Longer calls of process() than maxSamples are cut. May wait for a design in progress. */
    void prepare (double sampleRate, int channels, int maxSamples);

    /** Audio side: the ramps jump to their targets, what waits is brought in, and all delay lines are cleared. */
    void reset() noexcept;

    /** Audio side: filters n samples of as many rows as prepare() was told channels, in place. */
    void process (Sample* const* rows, int n) noexcept;

    /** Audio side: the same for several filters in one pass, the rows of the first one first. Two channels, and both
        banks of a crossfade, cost little more than one. Same bits as process() filter by filter. */
    static void processTogether (std::span<SmoothedIppIIR* const> filters, Sample* const* rows, int n) noexcept;

    /** Audio side, for callers that run several filters in one pass: takes what the control side has published, and
        says whether nothing moves, so that getActiveCascades() on the rows does exactly what process() would do. Where
        something moves, such a caller goes no further than getPieceLength() before it asks again. */
    bool beginSlice() noexcept
    {
        // Every slice of every filter comes here, and nearly always nothing has happened since the last one.
        const auto isSameThread =
            processingThread.load (std::memory_order_relaxed) == juce::Thread::getCurrentThreadId();
        return (isAtRest && isSameThread && ! isDisturbed.load (std::memory_order_acquire)) || beginDisturbedSlice();
    }

    /** Audio side, after beginSlice(): of the next n samples, how many come before a move ends. */
    int getPieceLength (int n) const noexcept;

    /** Audio side: the cascades of the current bank, one per channel. */
    std::span<BiquadCascade* const> getActiveCascades() const noexcept
    {
        return getBank (static_cast<std::size_t> (bankRamp.target));
    }

    /** Message thread. Never needed by the audio side. */
    void timerCallback() override;

private:
    struct Analogue
    {
        Polynomial numerator {};
        Polynomial denominator {};
    };

    using Row = std::vector<Sample>;

    bool mayStartTimer() const noexcept;
    bool hasWork() const noexcept;
    bool tryToWork() noexcept;
    void work() noexcept;
    void doWorkLocked() noexcept;
    bool isOff() const noexcept;
    void settle() noexcept;
    bool beginDisturbedSlice() noexcept;
    void takePublished() noexcept;
    void beginCrossfade() noexcept;
    void noteCrossfading() noexcept;
    void feed (Sample* const* rows, int begin, CascadePass& pass) noexcept;
    void finish (Sample* const* rows, int begin, int n) noexcept;

    bool isChanging() const noexcept { return ! (bankRamp.isIdle() && tail.isIdle()); }

    void endTail() noexcept
    {
        tail.end();
        hurry.end();
    }

    std::span<BiquadCascade* const> getBank (std::size_t bank) const noexcept
    {
        return std::span (filterPointers).subspan (bank * numChannels, numChannels);
    }

    Coefs coefs; ///< under its design lock

    // From control side to whoever designs, and on to the audio side.
    TripleBuffer<Analogue> analogue;
    std::atomic<bool> isBringInWanted { false };
    TripleBuffer<typename Coefs::Taps> published;
    std::atomic<bool> isDisturbed { true };                           ///< one of the above, or onRamp, has news
    std::atomic<bool> isCrossfading { false };                        ///< tail included; written by the audio side
    std::atomic<bool> isWaiting { false };                            ///< a design, and the audio side has it
    std::atomic<bool> isRetrying { false };                           ///< the timer runs
    std::atomic<juce::Thread::ThreadID> processingThread { nullptr }; ///< the last one in process()

    // Audio side.
    bool isAtRest = false;                      ///< unless disturbed
    std::vector<BiquadCascade> filters;         ///< bank 0 of every channel, then bank 1 of every channel
    std::vector<BiquadCascade*> filterPointers; ///< to each of `filters`
    SharedRamp<LinearRamp> onRamp { 1.0 };
    LinearRamp bankRamp { 0.0 };         ///< how much of the input goes to bank 1
    typename Coefs::Taps currentTaps {}; ///< of the bank that bankRamp goes to
    CosineFade tail;                     ///< after a crossfade: what is heard of the bank that gets no input any more
    CosineFade hurry;                    ///< a second factor of it while a design waits
    std::uint32_t tailSteps = 1, hurrySteps = 1;
    std::size_t numChannels = 0;
    Row bankRow, onRow, tailRow;
    std::vector<Row> workRows; ///< two for each channel: what a bank gets and makes of it

    /** What the piece under way does; finish() has to know it. */
    struct Moves
    {
        bool isFading = false;
        bool isChangingBanks = false;
        bool hasTail = false;
        bool isHurried = false;
    };

    Moves moves;
};

extern template class SmoothedIppIIR<float, MZTiCoefs<double, 2, 2>>;
extern template class SmoothedIppIIR<float, MZTiCoefs<double, 5, 5>>;
} // namespace tarvik
