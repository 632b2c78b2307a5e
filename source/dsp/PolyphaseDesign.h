// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

namespace tarvik
{
/** Delay of up- and downsampling together, in samples of the base rate; also the taps of each phase. */
inline constexpr int polyphaseLatencySamples = 52;

/** The low-pass filter of a rate conversion by `factor`, at the high rate: polyphaseLatencySamples * factor + 1 taps,
    symmetric. Both ways use it.

    A windowed sinc: its stop band begins at the base rate's Nyquist frequency and lies about 54 dB down. The taps are
    not normalised, but scaled by their own sum, so the gain at 0 Hz is that sum squared, close to 1. Kaiser's formulas
    for width and shape are in J. F. Kaiser, "Nonrecursive digital filter design using the I0-sinh window function",
    1974.

    `factor` is 1 or more. Allocates; not for the audio thread. */
std::vector<float> designPolyphaseFilter (int factor);
} // namespace tarvik
