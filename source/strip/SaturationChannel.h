// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/ComponentTable.h"
#include "dsp/FilterSeries.h"
#include "dsp/MZTiCoefs.h"
#include "dsp/SmoothedIppIIR.h"
#include "strip/SaturationShaper.h"

#include <span>

namespace tarvik
{
/** The saturation of one audio channel: the harmonics, and the two filters at the stage's output, whose corners, Qs and
    gain are those of one of the console's channels.

    setVariant() is the control side: any thread while audio runs, the audio thread included, one call at a time; it
    allocates nothing and waits for nobody. The rest is the audio side, under the rules of SmoothedIppIIR. */
class SaturationChannel
{
public:
    /** Fills the component table. Allocates. */
    SaturationChannel();

    /** The console channel, from 0; numbers that don't exist become the nearest. Designs the filters anew, unless the
        number is the current one. */
    void setVariant (int variant) noexcept;

    /** Allocates. Everything is idle afterwards, the filters on the current variant. */
    void prepare (double rateHz, int maxSamples);

    /** Ends all moves and clears what the channel remembers. */
    void reset() noexcept;

    /** Audio side: whether the envelope has gone, and nothing moves or waits or follows from the filters, with `level` as
        their input from now on. */
    bool isSettled (double level) noexcept { return shaper.isSettled() && filters.isSettled (level); }

    /** The harmonics of one or two channels together, each with its row of n samples, in place, turned down by n factors
        of 0 to 1; the same bits as one by one. */
    static void shape (std::span<SaturationChannel* const> channels, float* const* rows, const float* scale,
                       int n) noexcept;

    /** Their output filters, in the same way. */
    static void filter (std::span<SaturationChannel* const> channels, float* const* rows, int n) noexcept;

private:
    using Filter = SmoothedIppIIR<float, MZTiCoefs<double, 2, 2>>;

    void designFilters() noexcept;

    ComponentTable components;
    SaturationShaper shaper;
    FilterSeries<Filter, Filter> filters; ///< high pass, low pass
};
} // namespace tarvik
