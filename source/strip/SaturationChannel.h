// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/ComponentTable.h"
#include "dsp/FilterSeries.h"
#include "dsp/MZTiCoefs.h"
#include "dsp/Ramps.h"
#include "dsp/SmoothedIppIIR.h"
#include "strip/SaturationShaper.h"

#include <span>
#include <vector>

namespace tarvik
{
/** The saturation of one audio channel: the harmonics, overdrive where "THD" is above 0 dB, and the two filters at the
    stage's output, whose corners, Qs and gain are those of one of the console's channels.

    setThd() and setVariant() are the control side: any thread while audio runs, the audio thread included, one call at
    a time; they allocate nothing and wait for nobody. The rest is the audio side, under the rules of SmoothedIppIIR. */
class SaturationChannel
{
public:
    /** Fills the component table. Allocates. */
    SaturationChannel();

    /** "THD" in dB; at or below -100 the harmonics are off. What follows from it moves in straight lines within 0.1 s,
        for a jump of the overdrive would be a jump of the output, even in silence. */
    void setThd (double thdDb) noexcept;

    /** The console channel, from 0; numbers that don't exist become the nearest. Designs the filters anew, unless the
        number as it comes is the current one. */
    void setVariant (int variant) noexcept;

    int getVariant() const noexcept { return components.getActiveChannel(); }

    /** Allocates. Everything at rest for rateHz and calls of at most maxSamples samples, filters of the present
        variant. */
    void prepare (double rateHz, int maxSamples);

    /** Ends all moves and clears what the channel remembers. */
    void reset() noexcept;

    /** One or two channels in one pass, each with its row of n samples, in place; the same bits as one by one. Takes
        any finite or other sample; what leaves is finite. */
    static void process (std::span<SaturationChannel* const> channels, float* const* rows, int n) noexcept;

private:
    using Filter = SmoothedIppIIR<float, MZTiCoefs<double, 2, 2>>;

    /** A ramp and its present row, which is written once and kept while the ramp rests. */
    class RampRow
    {
    public:
        explicit RampRow (double initial) : ramp (initial) {}

        void request (double value) noexcept { ramp.request (value); }

        void prepare (double rateHz, int maxSamples);

        void snap() noexcept
        {
            ramp.snap();
            isConstant = false;
        }

        /** The next n values. */
        const float* advance (int n) noexcept { return isConstant && ramp.isIdle() ? row.data() : write (n); }

        /** Whether the last row was 0 throughout. */
        bool restsAtZero() const noexcept { return isConstant && row.front() == 0.0f; }

    private:
        const float* write (int n) noexcept;

        SharedRamp<LinearRamp> ramp;
        std::vector<float> row;
        bool isConstant = false;
    };

    void designFilters() noexcept;
    void overdrive (float* row, int n) noexcept;

    ComponentTable components;
    SaturationShaper shaper;
    RampRow harmonicScale { 1.0 };
    RampRow overdriveMix { 0.0 };
    std::vector<float> bent;              ///< work row of the overdrive
    FilterSeries<Filter, Filter> filters; ///< high pass, low pass
};
} // namespace tarvik
