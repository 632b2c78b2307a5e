// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/CascadeBanks.h"

namespace tarvik
{

/** Tilts what the detector hears, so that bass drives the compressor less and treble more: a low shelf of -18 dB at 125
    Hz and a high shelf of +18 dB at 8 kHz, both broad, with 0 dB near 1 kHz. The two fade in and out as one filter
    within 0.1 s; at first they are out.
*/
class NiveauFilter : public CascadeBanks
{
public:
    NiveauFilter() noexcept : CascadeBanks (false) {}

    /** While no audio runs, allocates: rate in Hz, above 0. Afterwards the fade is at its end and the filter clear. */
    void prepare (double rateHz, int channels, int maxSamples);

    /** While no audio runs: ends the fade and clears the filter. */
    void reset() noexcept;

    /** Audio thread: takes what was asked for, and returns isIdle(). */
    bool beginSlice() noexcept;
};

} // namespace tarvik
