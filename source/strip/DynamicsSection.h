// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/Ramps.h"
#include "dsp/TripleBuffer.h"
#include "strip/DetectorFilters.h"
#include "strip/DynamicsChannel.h"
#include "strip/DynamicsSettings.h"
#include "strip/NeedleFilter.h"
#include "strip/ParameterSnapshot.h"

#include <array>
#include <vector>

namespace tarvik
{

/** Compressor, limiter and expander around one gain element per channel.

        main --+------------------------------------------ x gain --> main
               |                                              |
               +--> input --> sensitivity --> filters --> x gain --> compressor, limiter --+
               |                                                                           +--> curve --> gain
               +--> x gain if a gate --> expander or gate ---------------------------------+

    The detector hears what the gain element left of the last sample: feedback, so the loop goes sample by sample. A
    side chain may stand in for the main signal on the way to the detector and to the gate.

    Ramps and filters take requests from update(); everything else goes through a hand-over that process() looks into
    once per slice.
*/
class DynamicsSection
{
public:
    DynamicsSection() noexcept;

    // A ControlledStage.
    void prepare (double rateHz, int numChannels, int maxSamples);
    void reset() noexcept;
    void release();
    void update (const ParameterSnapshot& snapshot, bool force) noexcept;

    /** The main channels come first, then numSidechain side chain channels, which are only read. As many of these as
        main ones go channel to channel, else their mean goes to all. Samples that are not finite count as 0 while the
        section is in circuit.
    */
    void process (float* const* main, int n, int numSidechain = 0) noexcept;

    /** Audio thread: whether nothing moves or waits, and without a signal only capacitors and needles will go on. */
    bool isSettled() noexcept;

    /** Audio thread: as much silence as skipSilence() takes, for a settled section. */
    void skip (int n) noexcept;

    /** Audio thread: the section's read-outs go into their fields. */
    void writeReadOuts (ParameterSnapshot& snapshot) const noexcept;

private:
    using Row = std::vector<float>;

    std::array<SharedRamp<LinearRamp>*, 3> getRamps() noexcept { return { &mixRamp, &inputRamp, &outputRamp }; }

    std::array<Row*, 5> getCurves() noexcept { return { &inputCurve, &detectorCurve, &wetCurve, &dryCurve, &scratch }; }

    void takeSettings() noexcept;
    void applySettings (const DynamicsSettings& newest) noexcept;
    bool isIdle() const noexcept;
    int countInCircuit (int n) const noexcept;
    void fillCurves (int n) noexcept;
    const float* const* chooseSidechain (const float* const* main, int n, int numSidechain) noexcept;
    void makeDetectorRows (const float* const* main, const float* const* sidechain, int n) noexcept;
    void makeKeys (const float* const* main, const float* const* sidechain, int n) noexcept;
    void feedNeedles (int n) noexcept;

    // Control side.
    DynamicsSettings lastSettings;
    TripleBuffer<DynamicsSettings> published;

    // Audio side.
    DynamicsSettings settings;
    bool isHeard = false; ///< the gain element, as of the last slice: in, or fading in or out
    SharedRamp<LinearRamp> mixRamp;
    SharedRamp<LinearRamp> inputRamp;
    SharedRamp<LinearRamp> outputRamp;
    DetectorFilters detectorFilters;
    DynamicsCircuits circuits;
    std::vector<DynamicsChannel> loops; ///< of every main channel, with what stands in its rows
    std::vector<DynamicsRows> loopRows;
    std::vector<Row> workRows;
    std::vector<double> keyLevels;
    std::vector<float*> detectorRows;
    std::vector<const float*> sidechainRows;
    std::vector<NeedleFilter> needles; ///< they read the gain element's gain
    bool areCurvesKept = false;        ///< whether the curves hold what idle ramps make of them
    Row inputCurve;                    ///< input
    Row detectorCurve;                 ///< input x sensitivity
    Row wetCurve;                      ///< input x mix x output
    Row dryCurve;                      ///< 1 - mix
    Row scratch;
};

} // namespace tarvik
