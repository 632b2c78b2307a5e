// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/CompressorCircuit.h"

#include "dsp/StateFloor.h"
#include "strip/VcaCurve.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

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

//==============================================================================
bool CompressorCircuit::isSettled (const State& state) const noexcept
{
    // The attack's share opens by exp (-1 / error), 2e-9, for as long as an empty capacitor takes to leave this behind.
    constexpr double largestError = 0.05;

    // So that skipSilence() may take a piece of the knee for a parabola: reached after some 0.4 s.
    constexpr double mostOfDistance = 0.3;
    const auto ofPeak = state.peak * k.amplifierGain;
    const auto distance = 0.5 - k.amplifierOffset - ofPeak; // from the knee
    const auto target = k.kneeVolts / distance;

    // The target only falls, and neither capacitor falls below the lowest of the three.
    return ofPeak < mostOfDistance * distance && target - std::min (state.c1Volts, state.c2Volts) < largestError;
}

/** Without a signal a sample makes M v + g x of the voltages and the current v, where x, what the amplifier's knee adds,
    is K / (h - A p) for a memory p that falls by f in each sample. Around the middle of its way a parabola in p stands
    for that, so that x is a sum of w f^(jk), j from 0 to 2, with the sample's number k:

        v after n samples = M^n v + sum over j of w[j] G[j],  G[j] = sum over k of M^(n-1-k) g f^(jk)

    From n samples to 2 n it goes by squaring: G[j] becomes M^n G[j] + f^(jn) G[j]. */
void CompressorCircuit::skipSilence (State& state, int n) const noexcept
{
    using Vector = std::array<double, 3>; // c1Volts, r2Amps, c2Volts

    struct Matrix
    {
        std::array<Vector, 3> rows;

        Vector operator* (const Vector& v) const noexcept
        {
            Vector product {};

            for (std::size_t i = 0; i < rows.size(); ++i)
                product[i] = rows[i][0] * v[0] + rows[i][1] * v[1] + rows[i][2] * v[2];

            return product;
        }

        Matrix squared() const noexcept
        {
            Matrix square {};

            for (std::size_t i = 0; i < rows.size(); ++i)
                for (std::size_t j = 0; j < rows.size(); ++j)
                    square.rows[i][j] = rows[i][0] * rows[0][j] + rows[i][1] * rows[1][j] + rows[i][2] * rows[2][j];

            return square;
        }
    };

    const auto add = [] (Vector& sum, const Vector& v, double factor)
    {
        for (std::size_t i = 0; i < sum.size(); ++i)
            sum[i] += v[i] * factor;
    };

    // The first row is passedOn in DynamicsSteps-inl.h, the second amps.
    const auto fed = k.releaseKeep * k.r2Siemens;
    Matrix power { { { { k.releaseKeep * k.networkKeep, -k.c1VoltsPerAmp, 1.0 - k.networkKeep },
                       { fed, 0.0, -k.r2Siemens },
                       { fed * k.c2VoltsPerAmp, k.c2VoltsPerAmp, 1.0 - k.r2Siemens * k.c2VoltsPerAmp } } } };
    const auto ampsPerKnee = k.perNetworkKeep * k.r2Siemens;
    const Vector perKnee { 1.0, ampsPerKnee, ampsPerKnee * k.c2VoltsPerAmp };
    std::array<Vector, 3> responses { perKnee, perKnee, perKnee };

    const auto first = state.peak * k.peakFall, last = state.peak * std::pow (k.peakFall, n);
    const auto middle = 0.5 * (first + last);
    const auto distance = 0.5 - k.amplifierOffset - k.amplifierGain * middle; // of the knee from its place, in volts
    const auto knee = k.releaseShare * k.kneeVolts * k.networkKeep / distance;
    const auto steepness = k.amplifierGain / distance, bend = steepness * middle;
    std::array weights { knee * (1.0 - bend + bend * bend), knee * steepness * (1.0 - 2.0 * bend) * first,
                         knee * steepness * steepness * first * first };
    std::array falls { 1.0, k.peakFall, k.peakFall * k.peakFall };
    Vector v { state.c1Volts, state.r2Amps, state.c2Volts };

    for (auto left = n; left > 0; left /= 2)
    {
        const auto isPart = left % 2 != 0;

        if (isPart)
            v = power * v;

        for (std::size_t j = 0; j < responses.size(); ++j)
        {
            if (isPart)
                add (v, responses[j], std::exchange (weights[j], weights[j] * falls[j]));

            const auto once = responses[j];
            responses[j] = power * once;
            add (responses[j], once, falls[j]);
            falls[j] *= falls[j];
        }

        power = power.squared();
    }

    state = { .c1Volts = v[0], .c2Volts = v[2], .r2Amps = v[1], .peak = last };
}

void CompressorCircuit::settle (State& state) noexcept
{
    if (std::abs (state.peak) < stateFloor)
        state.peak = 0.0;
}

} // namespace tarvik
