// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/ComponentTable.h"
#include "dsp/EQControls.h"
#include "dsp/MZTiCoefs.h"
#include "dsp/SmoothedIppIIR.h"

namespace tarvik
{
/** The equaliser of one audio channel: a high pass, then the console's passive network, solved anew at every change
    of a control and brought in by a crossfade of 0.1 s.

    update() is the control side, the rest is the audio side, each under the rules of SmoothedIppIIR: update() may
    come from any thread while audio runs, the audio thread included, one call at a time; it allocates nothing and
    waits for nobody. */
class ConsoleEQ
{
public:
    /** What makes up for the network's loss with all sections neutral, 10^0.771 (15.42 dB). The equaliser doesn't apply
        it; the channel's chain does, behind it. */
    static constexpr double makeupGain = 5.902010801718443;

    /** Fills the component table. Allocates. */
    ConsoleEQ();

    /** Takes new positions: solves and designs what has changed since the last call, or everything with `force`,
        and lets it fade in. A change of the tolerance channel alone needs `force`. Before the first prepare() the
        designs wait for the sample rate. */
    void update (const EQControls& controls, bool force) noexcept;

    /** The channel whose components the equaliser has, 0 to 31. On the thread of update(). */
    int getToleranceChannel() const noexcept { return components.getActiveChannel(); }

    /** Allocates. `sampleRate` in Hz is the rate at which process() runs, and maxSamples counts samples at that rate.
        Ends with both filters at rest on the newest design. */
    void prepare (double sampleRate, int maxSamples);

    /** Brings in what waits, without a crossfade, and silences both filters. */
    void reset() noexcept;

    /** High pass, then network, in place. */
    void process (float* row, int n) noexcept;

    /** Both channels of a stereo strip in one pass where nothing moves in either, else in one pass for each filter; the
        same bits as one after the other. */
    static void processPair (ConsoleEQ& left, ConsoleEQ& right, float* leftRow, float* rightRow, int n) noexcept;

private:
    /** Whether both filters are prepared and neither moves in the coming samples. */
    bool beginSlice() noexcept;

    /** After that: of the next n samples, how many come before a move in either ends. */
    int getPieceLength (int n) const noexcept { return network.getPieceLength (highPass.getPieceLength (n)); }

    void updateHighPass (int position) noexcept;

    ComponentTable components;
    EQControls last; ///< control side
    SmoothedIppIIR<float, MZTiCoefs<double, 2, 2>> highPass;
    SmoothedIppIIR<float, MZTiCoefs<double, 5, 5>> network;
};
} // namespace tarvik
