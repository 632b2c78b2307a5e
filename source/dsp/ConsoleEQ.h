// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/ComponentTable.h"
#include "dsp/EQControls.h"
#include "dsp/FilterSeries.h"
#include "dsp/MZTiCoefs.h"
#include "dsp/SmoothedIppIIR.h"

#include <memory>
#include <span>

namespace tarvik
{
/** The equaliser of one audio channel: a high pass, then the console's passive network, solved anew at every change
    of a control and brought in by a crossfade of 0.1 s.

    update() and getToleranceChannel() are the control side: any thread, the audio thread included, one call at a time;
    update() allocates nothing and waits for nobody. The rest is the audio side. */
class ConsoleEQ
{
public:
    /** What makes up for the network's loss with all sections neutral, outputShunt over outputShunt + midGainPot: 5.1 of
        30.1 kilohms, 15.42 dB, taken as 10^0.771. The channel's chain applies it after the equaliser. */
    static constexpr double makeupGain = 5.902010801718443;

    /** Fills the component table. Allocates. */
    ConsoleEQ();

    /** Takes new positions: solves what has changed since the last call, or everything with `force`, and lets it fade in;
        designed as SmoothedIppIIR says. A change of the tolerance channel alone needs `force`. Before the first prepare() the
        designs wait for the sample rate. */
    void update (const EQControls& controls, bool force) noexcept;

    /** The console channel whose components the equaliser has. */
    int getToleranceChannel() const noexcept { return components.getActiveChannel(); }

    /** Allocates. `sampleRate` in Hz is the rate at which process() runs, and maxSamples counts samples at that rate.
        Ends with the newest design in both filters, and no crossfade. */
    void prepare (double sampleRate, int maxSamples);

    /** Brings in what waits, without a crossfade, and clears both filters. */
    void reset() noexcept;

    /** Instead of process() while nothing is heard of the equaliser: it designs nothing, and comes back on the newest
        controls with clear filters. */
    void skip() noexcept { filters.skip(); }

    /** Whether nothing moves or waits, and silence is followed by nothing. */
    bool isSettled() noexcept { return filters.isSettled (0.0); }

    /** High pass, then network, in place. */
    void process (float* row, int n) noexcept { filters.process (&row, n); }

    /** The same for several channels, one row each, in shared passes; the same bits as one by one. */
    static void process (std::span<const std::unique_ptr<ConsoleEQ>> channels, float* const* rows, int n) noexcept;

private:
    using HighPass = SmoothedIppIIR<float, MZTiCoefs<double, 2, 2>>;
    using Network = SmoothedIppIIR<float, MZTiCoefs<double, 5, 5>>;

    void updateHighPass (int position) noexcept;

    ComponentTable components;
    EQControls last { .midFreq = 3 }; ///< control side; at first only something to compare with
    FilterSeries<HighPass, Network> filters;
};
} // namespace tarvik
