// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/Ramps.h"
#include "dsp/TripleBuffer.h"
#include "strip/DetectorFilters.h"
#include "strip/DynamicsChannel.h"
#include "strip/DynamicsSettings.h"
#include "strip/NeedleFilter.h"
#include "strip/ParameterSnapshot.h"

#include <optional>
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

    `update` may come from any thread while audio runs, one call at a time. Ramps and filters take requests, everything
    else goes through a hand-over that `process` looks into once per slice. The other functions are the audio thread's,
    or are called while no audio runs.
*/
class DynamicsSection
{
public:
    DynamicsSection() noexcept;

    /** While no audio runs, allocates: for numChannels main channels and slices of at most maxSamples. The channels are
        new, and everything rests on the newest settings. The rate is in Hz and above 0. */
    void prepare (double rateHz, int numChannels, int maxSamples);

    /** While no audio runs: frees the work rows; prepare() must come before audio again. */
    void release();

    /** While no audio runs: ends all moves and makes the channels new. */
    void reset() noexcept;

    /** Any thread, one at a time: takes over what differs from the settings seen last, or all when forced. */
    void update (const ParameterSnapshot& snapshot, bool force) noexcept;

    /** Audio thread: main channels first, numSidechain side chain channels behind them, n samples each, at most
        maxSamples; the main channels are changed in place. As many side chain channels as main ones go channel to
        channel, else their mean goes to all. Samples that are not finite count as 0 while the section is in circuit.
    */
    void process (float* const* channels, int n, int numSidechain) noexcept;

    /** Audio thread: the section's read-outs go into their fields. */
    void writeReadOuts (ParameterSnapshot& snapshot) const noexcept;

private:
    using Row = std::vector<float>;

    /** One main channel: the loop's memory, its meter and its work rows. */
    struct Channel
    {
        DynamicsChannel loop;
        NeedleFilter needle;
        float meteredGain = 0.0f; ///< where the needle stands, in units of the gain element's gain
        Row detector;
        Row key;
        Row gains;
        std::vector<double> attenuationsDb;
    };

    /** What the curves are filled with while no ramp moves. */
    struct RestingCurves
    {
        double input, mix, output;
        float sensitivity;

        bool operator== (const RestingCurves&) const = default;
    };

    void takeSettings() noexcept;
    void applySettings (const DynamicsSettings& settings) noexcept;
    bool isResting() const noexcept;
    int countInCircuit (int n) const noexcept;
    void fillCurves (int n) noexcept;
    const float* const* chooseSidechain (const float* const* channels, int n, int numSidechain) noexcept;
    void makeDetectorRows (const float* const* channels, const float* const* sidechain, int n) noexcept;
    void makeKeys (const float* const* channels, const float* const* sidechain, int n) noexcept;
    void runLoops (int n) noexcept;
    void feedNeedles (int n) noexcept;
    void applyGains (float* const* channels, int n) noexcept;

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
    std::vector<Channel> channels;
    std::vector<float*> detectorRows;
    std::vector<const float*> sidechainRows;
    std::optional<RestingCurves> restingCurves; ///< none while a ramp moves
    Row inputCurve;                             ///< input
    Row detectorCurve;                          ///< input x sensitivity
    Row wetCurve;                               ///< input x mix x output
    Row dryCurve;                               ///< 1 - mix
    Row scratch;
};

} // namespace tarvik
