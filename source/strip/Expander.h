// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/Decibels.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace tarvik
{

/** Turns the level of a key into a voltage for the gain element: nothing while the key is loud, up to the range when it
    is quiet. As an expander its key is the audio as it comes in; as a gate, a signal after the gain element.

    Per sample: key --> square and mean (RMS) --> dB --> soft knee --> hold --> inversion --> capacitor. All but the
    last step make the attenuation in dB; `charge` follows it. One object serves all channels, the state of each is kept
    outside. Audio thread.
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

    struct State
    {
        double rms = floorSquare;
        double anchorDb = silenceDb;        ///< of an earlier rms of the gate
        double perAnchor = 1 / floorSquare; ///< one over that rms
        double heldDb = 0.0;
        double holdSeconds = 0.0; ///< left of the current hold
        double volts = 0.0;
        double fallVolts = 0.0; ///< per sample, once the mode is off
    };

    /** The rate is in Hz, above 0. */
    void prepare (double rateHz) noexcept;

    void set (const Controls& controls) noexcept;

    Mode getMode() const noexcept { return mode; }

    /** RMS without a square root: y = y + q (x^2 / y - y) stays where y^2 = x^2. */
    double followLevel (State& state, double key) const noexcept
    {
        const auto scaledKey = key * keyScale;
        const auto square = std::max (scaledKey * scaledKey, floorSquare);
        state.rms = rmsKeep * state.rms + square * (rmsShare / state.rms); // the division needn't wait for the key
        return state.rms;
    }

    /** The static curve: attenuation in dB, 0 or above, for a level in dB. */
    double attenuationFor (double levelDb) const noexcept
    {
        const auto belowDb = referenceDb - std::max (levelDb, silenceDb);
        const auto kneeDb = kneeArea / (std::abs (belowDb - rangeDb) + kneeWidthDb);
        return std::max (std::min (rangeDb, belowDb) - kneeDb, 0.0);
    }

    /** All steps up to the attenuation for one sample of the gate: the gain element's last gain, and the key before it.

        From gain to gain the loop waits for this. So the logarithm is taken of an RMS that lies a little back, the
        anchor, with a short series for the way from there; only where that grows long is a new anchor dropped. */
    double gateAttenuation (State& state, double gain, double key) const noexcept
    {
        const auto scaledKey = gain * (key * (gateKeyGain * keyScale));
        const auto square = std::max (scaledKey * scaledKey, floorSquare);
        const auto rmsPerSquare = rmsShare / state.rms;
        auto growth = square * (rmsPerSquare * state.perAnchor) + (rmsKeep * state.rms * state.perAnchor - 1.0);
        state.rms = rmsKeep * state.rms + square * rmsPerSquare;

        // An open gate needs neither logarithm nor division.
        if (state.rms > openRms)
            return holdAndInvert (state, 0.0);

        if (std::abs (growth) > largestGrowth)
        {
            state.anchorDb = std::log (state.rms) * dbPerNeper;
            state.perAnchor = 1.0 / state.rms;
            growth = 0.0;
        }

        return holdAndInvert (state, attenuationFor (state.anchorDb + dbPerNeper * smallLog1p (growth)));
    }

    /** A channel's row of keys, and where its attenuations in dB go. */
    struct Rows
    {
        State* state = nullptr;
        const float* keys = nullptr;
        double* attenuationsDb = nullptr;
    };

    /** The same for one or two channels of the expander, n samples each: with the logarithm taken a row at a time. */
    void makeAttenuations (std::span<const Rows> channels, int n) const noexcept;

    /** The capacitor: charges through the attack's resistor, always leaks; returns the voltage on it. */
    double charge (State& state, double attenuationDb) const noexcept
    {
        const auto leaked = state.volts - state.volts * leakShare;
        state.volts = std::max (attenuationDb * chargeShare + (leaked - state.volts * chargeShare), leaked);
        return state.volts;
    }

    /** Off, the capacitor is emptied in a straight line within 10 ms, so that nothing jumps: this takes note of the
        voltage that it falls from. */
    void beginFall (State& state) const noexcept { state.fallVolts = state.volts * (stepSeconds / fallSeconds); }

    /** One sample of that; returns the voltage. */
    static double fall (State& state) noexcept
    {
        state.volts = std::max (state.volts - state.fallVolts, 0.0);
        return state.volts;
    }

    /** The lamp's brightness for a capacitor voltage: 1 at the full range, and not limited to it. */
    double getActivity (double volts) const noexcept;

    /** Puts the detector where it ends without a key. The capacitor keeps its voltage. */
    static void clearDetector (State& state) noexcept;

    /** Takes a voltage to 0 at the floor. */
    static void settle (State& state) noexcept;

private:
    /** ln (1 + x) within 2e-10 for x from -1/32 to 1/32. */
    static double smallLog1p (double x) noexcept
    {
        const auto square = x * x;
        return (x + square * ((1.0 / 3.0) * x - 0.5)) + (square * square) * (0.2 * x - 0.25);
    }

    /** A hold keeps the lowest attenuation for 10 ms, then looks again. */
    double holdAndInvert (State& state, double attenuationDb) const noexcept
    {
        if (isHolding)
            attenuationDb = hold (state, attenuationDb);

        return isInverted ? rangeDb - attenuationDb : attenuationDb;
    }

    double hold (State& state, double attenuationDb) const noexcept
    {
        constexpr double holdTimeSeconds = 0.01;
        constexpr double openAgainDb = 20.0;

        if (state.heldDb >= attenuationDb)
        {
            state.heldDb = attenuationDb;
            state.holdSeconds = holdTimeSeconds;
            return attenuationDb;
        }

        if (state.holdSeconds <= 0.0)
        {
            state.heldDb = openAgainDb;
            return attenuationDb;
        }

        state.holdSeconds -= stepSeconds;
        return state.heldDb;
    }

    void updateShares() noexcept;

    static constexpr double fallSeconds = 0.01;
    static constexpr double gateKeyGain = 0.5;
    static constexpr double referenceDb = -20.0 - 2.2184875; ///< fitted, as is the knee
    static constexpr double kneeWidthDb = 8.0;
    static constexpr double kneeArea = 4.0 * kneeWidthDb; ///< 4 dB high: 4 / (|x| / 8 + 1)
    static constexpr double largestGrowth = 1.0 / 32.0;
    static constexpr double dbPerNeper = 8.685889638065036553; ///< 20 / ln 10

    /** Just above 10^(referenceDb / 20): the level at which attenuationFor() gives 0 whatever the range. */
    static constexpr double openRms = 0.0775;

    Mode mode = Mode::off;
    bool isHolding = false;
    bool isInverted = false;
    double keyScale = 0.0;
    double rangeDb = 0.0; ///< the depth as a positive number
    double stepSeconds = 0.0;
    double rmsShare = 0.0; ///< q
    double rmsKeep = 1.0;  ///< 1 - q
    double attackOhms = 0.0;
    double releaseSeconds = 0.0;
    double chargeShare = 0.0; ///< per sample
    double leakShare = 0.0;   ///< per sample
};

} // namespace tarvik
