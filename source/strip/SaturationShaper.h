// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/QuadraturePair.h"

#include <span>

namespace tarvik
{
/** The harmonic generator of one channel: follows the envelope, looks up the harmonics that the console has at that
    level, and bends the waveform by the polynomial that makes just those out of a sine.

    With c the sample held within +-1.54 units and E its envelope, from a quadrature pair:

        position between the rows = (-2 dB - level of E) / 4 dB, E held within the table
        out = c + c0 + c1 u + c2 v^2 + ... + c7 v^7,  u = c / A,  v = u scale,

    A and the coefficients taken at the position. `scale` turns the harmonics down and leaves the level alone; the
    constant that remains then is left to the filters that follow. The unit of level is 8.70143 throughout, whatever
    the calibration.

    One thread at a time; nothing allocates, locks or throws. Any sample is taken: NaN counts as silence, infinity is
    clipped like everything above the limit. Nothing becomes subnormal, however long silence lasts, because a tone of
    -300 dB at half the rate is added, far below the last digit of any signal.

    32-bit arithmetic: what is computed is the small difference between output and input. Within 1e-6 of an exact
    computation at level 1 and 5e-6 up to the clip level; instruction sets differ by as much. */
class SaturationShaper
{
public:
    /** The sample value that is amplitude 1 in the table. */
    static constexpr double unit = 8.70143;

    /** Where samples are clipped, in units. */
    static constexpr double clipLevel = 1.54;

    void reset() noexcept;

    /** Row c of n samples goes through *shapers[c] (one or two), in place. `scale` has n factors, 0 to 1. */
    static void process (std::span<SaturationShaper* const> shapers, float* const* rows, const float* scale,
                         int n) noexcept;

    /** Whether what is left of the envelope may stand still until there is a signal again: where the harmonics are
        strongest it moves them by 150 dB less than the signal. */
    bool isSettled() const noexcept { return quadraturePair.isBelow (1e-4f); }

    QuadraturePair& getQuadraturePair() noexcept { return quadraturePair; }

    /** The tone's sign at the next sample. Asks for n samples. */
    float takeToneSign (int n) noexcept;

private:
    QuadraturePair quadraturePair;
    bool isOddSample = false;
};
} // namespace tarvik
