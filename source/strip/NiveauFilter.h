// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/BiquadCascade.h"
#include "dsp/Ramps.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace tarvik
{

/** Tilts what the detector hears, so that bass drives the compressor less and treble more: a low shelf of -18 dB at 125
    Hz and a high shelf of +18 dB at 8 kHz, both broad, with 0 dB near 1 kHz. The two go in with a fade of 0.1 s.
*/
class NiveauFilter
{
public:
    /** While no audio runs, allocates: rate in Hz, above 0. Afterwards the fade is at its end and the filter clear. */
    void prepare (double rateHz, int numChannels, int maxSamples);

    /** While no audio runs: ends the fade and clears the filter. */
    void reset() noexcept;

    /** Any thread: fades the filter in or out. */
    void setOn (bool shouldBeOn) noexcept { onRamp.request (shouldBeOn ? 1.0 : 0.0); }

    /** Audio thread: takes what was asked for, and says whether the filter is wholly on and rests, so that running
        getCascades() over the rows is all that process() would do. */
    bool beginSlice() noexcept;

    /** Audio thread, after beginSlice(): of the next n samples, how many come before a fade ends. */
    int getPieceLength (int n) const noexcept
    {
        const auto remaining = onRamp.get().remaining;
        return remaining > 0 ? static_cast<int> (std::min (static_cast<std::uint32_t> (n), remaining)) : n;
    }

    /** Audio thread: the filters, one per channel. */
    std::span<BiquadCascade* const> getCascades() const noexcept { return cascadePointers; }

    /** Audio thread: one row of n samples per channel, in place; n is at most maxSamples and no more than
        getPieceLength(). */
    void process (float* const* rows, int n) noexcept;

private:
    bool isOff() const noexcept { return onRamp.get().isIdle() && onRamp.get().current == 0.0; }

    std::vector<BiquadCascade> cascades;
    std::vector<BiquadCascade*> cascadePointers;
    SharedRamp<LinearRamp> onRamp { 0.0 };
    std::vector<float> wetShare, dryShare;
    std::vector<float> wet; ///< a row for each channel
    std::vector<float*> wetRows;
};

} // namespace tarvik
