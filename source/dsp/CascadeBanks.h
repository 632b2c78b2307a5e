// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/BiquadCascade.h"
#include "dsp/CosineFade.h"
#include "dsp/Ramps.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tarvik
{
/** The audio side of filters that change their coefficients, or come and go as a whole, without a click; the same
    coefficients on each of the channels in parallel.

    There are two banks of filter states. A new design goes into the idle one with a clear delay line, and the input
    moves over to it within 0.1 s. It is the inputs of the two filters that are scaled, not their outputs: the new one
    sees its input rise from nothing, the old one rings out. What the old bank still holds afterwards, the tail, is
    faded out as half a cosine: over 0.1 s, or within 10 ms once another design waits. A shorter or straighter fade
    would be heard as a click under a bass note. Crossfades and tails end at their sample, so what is heard depends on
    when a change came and not on how the host cuts its blocks.

    One thread at a time, but for setOn(); only prepare() allocates. docs/smoothed-filters.md has the whole picture. */
class CascadeBanks
{
public:
    explicit CascadeBanks (bool beginsOn = true) noexcept : onRamp (beginsOn ? 1.0 : 0.0) {}

    CascadeBanks (const CascadeBanks&) = delete;
    CascadeBanks& operator= (const CascadeBanks&) = delete;

    /** `sampleRate` in Hz; pieces of fades are at most maxSamples long. The cascades have no coefficients before the
        next settle(). */
    void prepare (double sampleRate, int channels, int maxSamples);

    /** Any thread: fades the filters in (true) or out (false) within 0.1 s. Faded out they cost nothing and leave their
        input alone. */
    void setOn (bool shouldBeOn) noexcept { onRamp.request (shouldBeOn ? 1.0 : 0.0); }

    /** Faded out wholly. */
    bool isOut() const noexcept
    {
        const auto& ramp = onRamp.get();
        return ramp.isIdle() && static_cast<float> (ramp.target) != 1.0f;
    }

    /** Whether all of the input goes through one bank, so that getActiveCascades() on the rows does exactly what feed()
        and finish() would do. */
    bool isIdle() const noexcept { return ! isChanging() && onRamp.get().isIdle() && ! isOut(); }

    /** Whether nothing moves, and every channel stays within 1e-8 of where it ends if `level` is its input from now on.
        `level` becomes that end. */
    bool isSettled (double& level) const noexcept;

    /** Of the next n samples, how many come before a fade ends, at most maxSamples. */
    int getPieceLength (int n) const noexcept;

    /** The cascades of the current bank, one per channel. */
    std::span<BiquadCascade* const> getActiveCascades() const noexcept
    {
        return getBank (static_cast<std::size_t> (bankRamp.target));
    }

    /** Begins a piece of batch.n samples, at most getPieceLength(), at sample `begin` of the rows, one per channel:
        gives the batch what the cascades have to filter. Between this and finish() the batch is run. */
    void feed (float* const* rows, int begin, CascadeBatch& batch) noexcept;

    /** Ends the piece: puts together, in place, what the cascades have made of it. */
    void finish (float* const* rows, int begin, int n) noexcept;

protected:
    /** A crossfade runs, or its tail. */
    bool isChanging() const noexcept { return ! (bankRamp.isIdle() && tail.isIdle()); }

    /** Ends crossfade and tail and clears both banks, which get these taps if there are any. */
    void settle (std::span<const double> taps = {}) noexcept;

    /** While nothing is changing. */
    void beginCrossfade (std::span<const double> taps) noexcept;

    /** A tail ends within 10 ms from now on. */
    void hurryTail() noexcept;

    SharedRamp<LinearRamp> onRamp;

private:
    using Row = std::vector<float>;

    /** What the current piece goes through; finish() has to know. */
    struct Moves
    {
        bool isFading = false;
        bool isChangingBanks = false;
        bool hasTail = false;
    };

    /** What is heard of the tail in the next n samples. */
    void fillTailShare (int n) noexcept;

    std::span<BiquadCascade* const> getBank (std::size_t bank) const noexcept
    {
        return std::span (filterPointers).subspan (bank * numChannels, numChannels);
    }

    std::vector<BiquadCascade> filters;         ///< bank 0 of every channel, then bank 1 of every channel
    std::vector<BiquadCascade*> filterPointers; ///< to each of `filters`
    LinearRamp bankRamp { 0.0 };                ///< how much of the input goes to bank 1
    CosineFade tail;                            ///< of the bank that gets no input any more
    CosineFade hurry;                           ///< a second factor of the tail while a design waits
    std::uint32_t tailSteps = 1, hurrySteps = 1;
    std::size_t numChannels = 0;
    Row onRow, offRow, bankRow, tailRow; ///< shares of the current piece
    std::vector<Row> workRows;           ///< two for each channel: what a bank gets and makes of it
    Moves moves;
};
} // namespace tarvik
