// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/FilterSeries.h"
#include "dsp/MZTiCoefs.h"
#include "dsp/SmoothedIppIIR.h"
#include "strip/NiveauFilter.h"

namespace tarvik
{

/** What a signal passes on its way to the compressor's and limiter's detector: a high pass, then the Niveau tilt. Each
    fades in and out, and costs nothing while out.
*/
class DetectorFilters
{
public:
    /** At and below this frequency the high pass is taken out. */
    static constexpr float lowestHighPassHz = 20.0f;
    static constexpr float highestHighPassHz = 400.0f;

    // As a Stage.
    void prepare (double rateHz, int numChannels, int maxSamples) { filters.prepare (rateHz, numChannels, maxSamples); }

    void reset() noexcept { filters.reset(); }

    /** Any thread, one at a time: held within the limits above, a NaN counts as the lowest. */
    void setHighPass (float cutoffHz) noexcept;

    /** Any thread. */
    void setNiveau (bool isOn) noexcept { filters.second.setOn (isOn); }

    /** Audio thread: whether nothing moves or waits, and silence is followed by nothing. */
    bool isSettled() noexcept { return filters.isSettled (0.0); }

    /** The samples must be finite. */
    void process (float* const* rows, int n) noexcept;

private:
    FilterSeries<SmoothedIppIIR<float, MZTiCoefs<double, 2, 2>>, NiveauFilter> filters;
};

} // namespace tarvik
