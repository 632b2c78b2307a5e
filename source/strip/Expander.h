// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/Decibels.h"

namespace tarvik
{

/** Turns the level of a key into a voltage for the gain element: nothing while the key is loud, up to the range when it
    is quiet. As an expander its key is the audio as it comes in; as a gate, a signal after the gain element.

    Per sample: key --> square and mean (RMS) --> dB --> soft knee --> hold --> inversion --> capacitor. The steps are in
    DynamicsSteps-inl.h. One object serves all channels, the state of each is kept outside. Audio thread.
*/
class Expander
{
public:
    enum class Mode
    {
        expander,
        off,
        gate
    };

    /** What the front panel sets. */
    struct Controls
    {
        float thresholdDb;
        float rangeDb; ///< -20 to 0
        int attack;    ///< 0 slow to 2 fast; others lie between slow and medium
        float releaseSeconds;
        int mode; ///< as in Mode; others count as off
        bool isHolding;
        bool isInverted;

        bool operator== (const Controls&) const = default;
    };

    /** The square of a key at the bottom of the scale, and where the detector starts. */
    static constexpr double floorSquare = 1e-5;

    /** Just above 10^(referenceDb / 20): the level at which the static curve gives 0 whatever the range. */
    static constexpr double openRms = 0.0775;

    static constexpr double referenceDb = -20.0 - 2.2184875;   ///< fitted, as is the curve's knee
    static constexpr double dbPerNeper = 8.685889638065036553; ///< 20 / ln 10

    /** Of one channel, or of several side by side. */
    template <typename Number>
    struct States
    {
        Number rms {};
        Number anchorDb {};  ///< of an earlier rms of the gate
        Number perAnchor {}; ///< one over that rms
        Number heldDb {};
        Number holdSeconds {}; ///< left of the current hold
        Number volts {};
        Number fallVolts {}; ///< per sample, once the mode is off
    };

    using State = States<double>;

    /** Of a channel that has heard nothing yet. */
    static State makeState() noexcept
    {
        return { .rms = floorSquare, .anchorDb = silenceDb, .perAnchor = 1.0 / floorSquare };
    }

    /** What rate and controls make of the circuit. */
    struct Coefficients
    {
        bool isHolding = false;
        bool isInverted = false;
        double keyScale = 0.0;
        double rangeDb = 0.0; ///< the depth as a positive number
        double stepSeconds = 0.0;
        double rmsShare = 0.0;    ///< q
        double rmsKeep = 1.0;     ///< 1 - q
        double chargeShare = 0.0; ///< per sample
        double leakShare = 0.0;   ///< per sample
    };

    /** The rate is in Hz, above 0. */
    void prepare (double rateHz) noexcept;

    void set (const Controls& controls) noexcept;

    Mode getMode() const noexcept { return mode; }

    const Coefficients& getCoefficients() const noexcept { return k; }

    /** Off, the capacitor is emptied in a straight line within 10 ms, so that nothing jumps: this takes note of the
        voltage that it falls from. */
    void beginFall (State& state) const noexcept { state.fallVolts = state.volts * (k.stepSeconds / fallSeconds); }

    /** The lamp's brightness for a capacitor voltage: 1 at the full range, and not limited to it. */
    double getActivity (double volts) const noexcept;

    /** Puts the detector where it ends without a key. The capacitor keeps its voltage. */
    static void clearDetector (State& state) noexcept;

    /** Takes a voltage to 0 at the floor. */
    static void settle (State& state) noexcept;

private:
    void updateShares() noexcept;

    static constexpr double fallSeconds = 0.01;

    Mode mode = Mode::off;
    double attackOhms = 0.0;
    double releaseSeconds = 0.0;
    Coefficients k;
};

} // namespace tarvik
