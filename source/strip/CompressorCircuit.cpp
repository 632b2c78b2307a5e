// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/CompressorCircuit.h"

#include "dsp/StateFloor.h"
#include "strip/VcaCurve.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace tarvik
{

namespace
{
/** Time step of the resistor and capacitor network, at every sample rate. */
constexpr double networkStepSeconds = 1.0 / 44100.0;

constexpr double c1Farads = 2.2e-6;
constexpr double c2Farads = 10e-6;

constexpr double ratioShuntOhms = 22e3;
constexpr int autoRelease = 8;
constexpr double autoR2Ohms = 33e3;
constexpr double fixedR2Ohms = 153e3;

/** Ra of "Slow", "Medium" and "Fast": 10 k alone, beside 1 k, and beside 220. */
constexpr std::array attackOhms { 10e3, 909.0909, 215.26419 };

/** Rl of "25 ms" to "3.2 s", then of "AUTO". */
constexpr std::array releaseOhms { 15e3, 33e3, 68e3, 120e3, 220e3, 560e3, 1e6, 2.2e6, 120e3 };

/** The side chain amplifier at one position of the ratio switch. */
struct Ratio
{
    double ratioOhms; ///< Rr
    double openGain;
    double bias;
};

constexpr std::array<Ratio, 6> ratios { {
    { 0.0, 1000.0, 0.38 },  // 1:1
    { 0.0, 1000.0, 0.38 },  // 2:1
    { 56e3, 120.0, 0.3 },   // 3:1
    { 120e3, 115.0, 0.2 },  // 5:1
    { 1e6, 104.0, -0.6 },   // 10:1
    { 2.2e6, 100.0, -1.1 }, // 20:1
} };

/** What reaches the rectifier at thresholds of -20, -18, ... 0 dB; fitted, as are the amplifier's values above and
    the peak memory's below. */
constexpr std::array thresholdScales { 0.599057, 0.373849, 0.257642, 0.166667, 0.125964, 0.095745,
                                       0.07483,  0.052925, 0.043601, 0.032442, 0.022989 };

constexpr double lowestThresholdDb = -20.0;
constexpr double thresholdStepDb = 2.0;

template <typename T, std::size_t size>
const T& choose (const std::array<T, size>& list, int index) noexcept
{
    return list[static_cast<std::size_t> (std::clamp (index, 0, static_cast<int> (size) - 1))];
}

double thresholdScale (double thresholdDb) noexcept
{
    constexpr auto last = static_cast<double> (thresholdScales.size() - 1);
    const auto position = (thresholdDb - lowestThresholdDb) / thresholdStepDb;
    const auto held = position > 0.0 ? std::min (position, last) : 0.0; // NaN counts as the lowest
    const auto index = static_cast<std::size_t> (std::min (held, last - 1.0));
    const auto share = held - static_cast<double> (index);
    return thresholdScales[index] + share * (thresholdScales[index + 1] - thresholdScales[index]);
}

/** How much of the way to a steady voltage a capacitor makes in one time step. */
double chargeShare (double ohms, double farads) noexcept { return -std::expm1 (-networkStepSeconds / (ohms * farads)); }
} // namespace

void CompressorCircuit::prepare (double rateHz) noexcept
{
    constexpr double peakRisePerSecond = 230.0;
    constexpr double peakFallSeconds = 0.264;
    k.peakRise = peakRisePerSecond / rateHz;
    k.peakFall = std::exp (-1.0 / (rateHz * peakFallSeconds));
}

void CompressorCircuit::set (const Controls& controls) noexcept
{
    // At "1:1" the rectifier gets nothing; the rest of the circuit stays alive.
    constexpr double rectifierAmplification = 11.8;
    const auto isRatioOff = controls.ratio <= 0;
    k.rectifierGain =
        isRatioOff ? 0.0 : thresholdScale (static_cast<double> (controls.thresholdDb)) * rectifierAmplification;

    // s = (peak + rectified + bias / gain - 1.5) gain - 0.6
    constexpr double biasVolts = 1.5;
    constexpr double diodeVolts = 0.6;
    const auto& ratio = choose (ratios, controls.ratio);
    k.amplifierGain = 1.0 / (ratioShuntOhms / (ratio.ratioOhms + ratioShuntOhms) + 1.0 / ratio.openGain);
    k.amplifierOffset = ratio.bias - biasVolts * k.amplifierGain - diodeVolts;

    constexpr double halfKneeVolts = 0.125;
    const auto raOhms = choose (attackOhms, controls.attack);
    const auto rlOhms = choose (releaseOhms, controls.release);
    k.divider = rlOhms / (rlOhms + raOhms);
    k.kneeVolts = halfKneeVolts * k.divider;
    k.attackShare = chargeShare (raOhms, c1Farads);
    k.releaseShare = chargeShare (rlOhms, c1Farads);
    k.releaseKeep = 1.0 - k.releaseShare;

    // The network is solved by the trapezoidal rule: half a step of the last current, half a step of the new one.
    k.r2Siemens = 1.0 / (controls.release >= autoRelease ? autoR2Ohms : fixedR2Ohms);
    k.c1VoltsPerAmp = networkStepSeconds / (2.0 * c1Farads);
    k.c2VoltsPerAmp = networkStepSeconds / (2.0 * c2Farads);
    k.networkKeep = 1.0 - k.c1VoltsPerAmp * k.r2Siemens;
    k.perNetworkKeep = 1.0 / k.networkKeep;
    k.kneeVoltsPerShare = 1.0 / (k.networkKeep * k.releaseShare);
    k.ceilingVolts = VcaCurve::getZeroGainVolts();
}

void CompressorCircuit::settle (State& state) noexcept
{
    if (std::abs (state.peak) < stateFloor)
        state.peak = 0.0;
}

} // namespace tarvik
