// SPDX-License-Identifier: GPL-3.0-or-later
// One sample of each circuit around the gain element, for one channel or for two side by side: a Number is a double or a
// Pair. Read once for each instruction set, hence the guard that toggles.
#if defined(TARVIK_DYNAMICS_STEPS) == defined(HWY_TARGET_TOGGLE)
#ifdef TARVIK_DYNAMICS_STEPS
#undef TARVIK_DYNAMICS_STEPS
#else
#define TARVIK_DYNAMICS_STEPS
#endif

#include "strip/ChannelPair-inl.h"
#include "strip/CompressorCircuit.h"
#include "strip/Expander.h"
#include "strip/Limiter.h"
#include "strip/OpeningTable.h"
#include "strip/VcaCurve.h"

#include <cmath>
#include <type_traits>

HWY_BEFORE_NAMESPACE();

namespace tarvik::dynamics::HWY_NAMESPACE
{
namespace
{
/** A control voltage, the smaller of the two. */
template <typename Number>
struct HeldVolts
{
    Number free;
    Number ceiling;
};

/** The compressor: the gain element's last gain, and the absolute value of the detector's input before it, both finite.
    Updates the state and returns the control voltage, the one on C1. */
template <typename Number>
HWY_INLINE HeldVolts<Number> step (const CompressorCircuit::Coefficients& k, CompressorCircuit::States<Number>& state,
                                   Number gain, Number level)
{
    // Products are ordered so that only one multiplication waits for the gain.
    const auto rectified = gain * (level * k.rectifierGain);
    const auto highestPeak = state.peak + k.peakRise;
    const auto lowestPeak = state.peak * k.peakFall;
    state.peak = max (min (rectified - k.peakThreshold, highestPeak), lowestPeak);

    // The amplifier takes each of the memory's three candidates and chooses afterwards, which leaves three operations
    // less between one gain and the next.
    const auto once = gain * (level * (k.rectifierGain * k.amplifierGain));
    const auto twice = gain * (level * (2.0 * k.rectifierGain * k.amplifierGain));
    const auto amplified = max (min (twice + (k.amplifierOffset - k.peakThreshold * k.amplifierGain),
                                     once + (highestPeak * k.amplifierGain + k.amplifierOffset)),
                                once + (lowestPeak * k.amplifierGain + k.amplifierOffset));

    // The exchange takes C1 from v to v - c1VoltsPerAmp (i + i'), so to v x networkKeep + received.
    const auto received = state.c2Volts * (1.0 - k.networkKeep) - state.r2Amps * k.c1VoltsPerAmp;

    // The target's first part is the diode's knee, here with both its sides halved; it comes last, so it is taken
    // through the network on its own.
    const auto knee = k.releaseShare * k.kneeVolts * k.networkKeep / (abs (amplified) + 0.5);
    const auto conducted = max (amplified, 0.0);
    const auto conductedTarget = conducted * k.divider;
    const auto target = knee * k.kneeVoltsPerShare + conductedTarget;
    const auto rest = conducted * (k.releaseShare * k.divider) + k.releaseKeep * state.c1Volts;
    auto charged = knee * k.perNetworkKeep + rest;
    auto passedOn = knee + (rest * k.networkKeep + received);

    // Upwards, the attack's resistor opens with the size of the error, which takes too long to follow always. Whether it
    // opens is hard to predict, so two channels first test the part of the target that is known before the division
    // ends: a jump that was predicted wrong is put right meanwhile. A channel that does not open keeps its release.
    constexpr auto isPair = ! std::is_same_v<Number, double>;
    const auto error = target - state.c1Volts;
    const auto isOpening = error > k.smallestOpening;

    if ((isPair && any (conductedTarget - state.c1Volts > k.smallestOpening)) || any (isOpening))
    {
        const auto opening = forEachChannel (max (error, k.smallestOpening), OpeningTable::at);
        const auto share = (1.0 - opening) * k.releaseShare + opening * k.attackShare;
        const auto pulled = (1.0 - share) * state.c1Volts + share * target;
        charged = select (isOpening, pulled, charged);
        passedOn = select (isOpening, pulled * k.networkKeep + received, passedOn);
    }

    // Held before the exchange, so that neither capacitor sees more than the voltage at which the gain is 0.
    const auto amps = (min (charged, k.ceilingVolts) - state.c2Volts) * k.r2Siemens;
    const HeldVolts<Number> volts { passedOn, k.ceilingVolts * k.networkKeep + received };
    state.c1Volts = min (volts.free, volts.ceiling);
    state.c2Volts = state.c2Volts + (amps + state.r2Amps) * k.c2VoltsPerAmp;
    state.r2Amps = amps;
    return volts;
}

/** The limiter: `level` is the absolute value of what the detector hears after the gain element; updates and returns the
    voltage, 0 or above. */
template <typename Number>
HWY_INLINE Number step (const Limiter::Coefficients& k, Number& volts, Number level)
{
    // Below the threshold the drive is negative, and the capacitor only leaks.
    const auto drive = (level - k.thresholdLevel) * k.amplification;
    volts = max (volts + (drive - volts) * k.chargeShare, volts) - volts * k.leakShare;
    return volts;
}

//==============================================================================
/** RMS without a square root: y = y + q (x^2 / y - y) stays where y^2 = x^2. */
template <typename Number>
HWY_INLINE Number followLevel (const Expander::Coefficients& k, Number& rms, Number key)
{
    const auto scaledKey = key * k.keyScale;
    const auto square = max (scaledKey * scaledKey, Expander::floorSquare);
    rms = k.rmsKeep * rms + square * (k.rmsShare / rms); // the division needn't wait for the key
    return rms;
}

/** The expander's static curve: attenuation in dB, 0 or above, for a level in dB. */
template <typename Number>
HWY_INLINE Number attenuationFor (const Expander::Coefficients& k, Number levelDb)
{
    constexpr double kneeWidthDb = 8.0;
    constexpr double kneeArea = 4.0 * kneeWidthDb; // 4 dB high: 4 / (|x| / 8 + 1)
    const auto belowDb = Expander::referenceDb - max (levelDb, silenceDb);
    const auto kneeDb = kneeArea / (abs (belowDb - k.rangeDb) + kneeWidthDb);
    return max (min (Number (k.rangeDb), belowDb) - kneeDb, 0.0);
}

/** A hold keeps the lowest attenuation for 10 ms, then looks again. */
template <typename Number>
HWY_INLINE Number hold (const Expander::Coefficients& k, Expander::States<Number>& state, Number attenuationDb)
{
    constexpr double holdTimeSeconds = 0.01;
    constexpr double openAgainDb = 20.0;
    const auto isLowest = state.heldDb >= attenuationDb;
    const auto isOver = state.holdSeconds <= Number (0.0);
    const auto heldDb = state.heldDb;
    state.heldDb = select (isLowest, attenuationDb, select (isOver, Number (openAgainDb), heldDb));
    state.holdSeconds = select (isLowest, Number (holdTimeSeconds),
                                select (isOver, state.holdSeconds, state.holdSeconds - k.stepSeconds));
    return select (either (isLowest, isOver), attenuationDb, heldDb);
}

template <typename Number>
HWY_INLINE Number holdAndInvert (const Expander::Coefficients& k, Expander::States<Number>& state, Number attenuationDb)
{
    if (k.isHolding)
        attenuationDb = hold (k, state, attenuationDb);

    return k.isInverted ? k.rangeDb - attenuationDb : attenuationDb;
}

/** ln (1 + x) within 2e-10 for x from -1/32 to 1/32. */
template <typename Number>
HWY_INLINE Number smallLog1p (Number x)
{
    const auto square = x * x;
    return (x + square * ((1.0 / 3.0) * x - 0.5)) + (square * square) * (0.2 * x - 0.25);
}

/** All steps up to the attenuation for one sample of the gate: the gain element's last gain, and the key before it.

    From gain to gain the loop waits for this. So the logarithm is taken of an RMS that lies a little back, the anchor,
    with a short series for the way from there; only where that grows long is a new anchor dropped. */
template <typename Number>
HWY_INLINE Number gateAttenuation (const Expander::Coefficients& k, Expander::States<Number>& state, Number gain,
                                   Number key)
{
    constexpr double gateKeyGain = 0.5;
    constexpr double largestGrowth = 1.0 / 32.0;
    const auto scaledKey = gain * (key * (gateKeyGain * k.keyScale));
    const auto square = max (scaledKey * scaledKey, Expander::floorSquare);
    const auto rmsPerSquare = k.rmsShare / state.rms;
    auto growth = square * (rmsPerSquare * state.perAnchor) + (k.rmsKeep * state.rms * state.perAnchor - 1.0);
    state.rms = k.rmsKeep * state.rms + square * rmsPerSquare;

    // An open gate needs neither logarithm nor division.
    const auto isOpen = state.rms > Number (Expander::openRms);

    if (all (isOpen))
        return holdAndInvert (k, state, Number (0.0));

    const auto isFar = both (abs (growth) > Number (largestGrowth), state.rms <= Number (Expander::openRms));

    if (any (isFar)) [[unlikely]]
    {
        const auto logarithm = forEachChannel (state.rms, [] (double rms) { return std::log (rms); });
        state.anchorDb = select (isFar, logarithm * Expander::dbPerNeper, state.anchorDb);
        state.perAnchor = select (isFar, 1.0 / state.rms, state.perAnchor);
        growth = select (isFar, Number (0.0), growth);
    }

    const auto attenuationDb = attenuationFor (k, state.anchorDb + Expander::dbPerNeper * smallLog1p (growth));
    return holdAndInvert (k, state, select (isOpen, Number (0.0), attenuationDb));
}

/** The expander's capacitor: charges through the attack's resistor, always leaks; returns the voltage on it. */
template <typename Number>
HWY_INLINE Number charge (const Expander::Coefficients& k, Number& volts, Number attenuationDb)
{
    const auto leaked = volts - volts * k.leakShare;
    volts = max (attenuationDb * k.chargeShare + (leaked - volts * k.chargeShare), leaked);
    return volts;
}

/** One sample of the fall that Expander::beginFall() prepares; returns the voltage. */
template <typename Number>
HWY_INLINE Number fall (Expander::States<Number>& state)
{
    state.volts = max (state.volts - state.fallVolts, 0.0);
    return state.volts;
}

//==============================================================================
/** What expander and limiter bring to the gain element, of their larger voltage times `scale`. */
template <typename Number>
HWY_INLINE Number controlVolts (Number scaledVolts, double scale)
{
    constexpr double offsetVolts = 1.288849; // the two are fitted
    constexpr double voltsPerVolt = 1.0 / 0.95376545;
    return (scaledVolts - scale * offsetVolts) * (voltsPerVolt / scale);
}

/** The gain for the larger of two control voltages, 0 or above, by the line of the curve that the last one fell on. The
    voltage seldom leaves it, so the next gain doesn't wait for the search. */
template <typename Number>
HWY_INLINE Number gainFor (VcaCurve::Lines<Number>& line, const HeldVolts<Number>& volts, Number otherVolts)
{
    auto largest = min (volts.free, volts.ceiling);

    // The same voltage wins for a while. A jump, unlike a choice of values, lets one channel go on with the likely one;
    // two seldom agree.
    if constexpr (std::is_same_v<Number, double>)
    {
        if (otherVolts > largest) [[unlikely]]
            largest = otherVolts;
    }
    else
    {
        largest = max (largest, otherVolts);
    }

    if (! all (both (largest >= line.lowestVolts, largest < line.highestVolts))) [[unlikely]]
    {
        const auto find = [largest] (double VcaCurve::Segment::*member) HWY_ATTR
        { return forEachChannel (largest, [member] (double v) { return VcaCurve::getSegment (v).*member; }); };

        line = { find (&VcaCurve::Segment::offset), find (&VcaCurve::Segment::slope),
                 find (&VcaCurve::Segment::lowestVolts), find (&VcaCurve::Segment::highestVolts) };
    }

    if constexpr (std::is_same_v<Number, double>)
        return max (line.offset + line.slope * largest, 0.0);

    // max (offset + slope x largest, 0) to the bit, since lines fall: the largest voltage has the smallest product. With
    // the choice among products, fewer operations follow the voltage that comes last.
    const auto lowest = 0.0 - line.offset;
    const auto held = max (line.slope * volts.ceiling, lowest);
    const auto other = max (line.slope * otherVolts, lowest);
    return line.offset + min (max (line.slope * volts.free, held), other);
}
} // namespace
} // namespace tarvik::dynamics::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
