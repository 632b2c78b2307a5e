// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/strip/PlainDynamics.h"
#include "tests/support/StripTestTools.h"

#include <array>
#include <numbers>

namespace tarvik::test
{
namespace
{
constexpr double rateHz = 48000.0, loopRateHz = 2.0 * rateHz, networkRateHz = 44100.0;
constexpr double quietDb = -40.0, loudDb = -4.0, quietSeconds = 0.2;
constexpr double toneHz = 2000.0, periodSeconds = 1.0 / toneHz;
constexpr float thresholdDb = -10.0f;
constexpr int ratio = 3; // 5:1

std::size_t periodsOf (double seconds) { return static_cast<std::size_t> (std::lround (seconds / periodSeconds)); }

/** A tone, quiet, then loud, and quiet again. */
Signal tone (double rate, double loudSeconds, double quietBehind)
{
    Signal signal (static_cast<std::size_t> ((quietSeconds + loudSeconds + quietBehind) * rate));

    for (std::size_t i = 0; i < signal.size(); ++i)
    {
        const auto seconds = static_cast<double> (i) / rate - quietSeconds;
        const auto isLoud = seconds >= 0.0 && seconds < loudSeconds;
        signal[i] = static_cast<float> (std::pow (10.0, (isLoud ? loudDb : quietDb) / 20.0)
                                        * std::sin (2.0 * std::numbers::pi * toneHz * seconds));
    }

    return signal;
}

/** Gain of the tone in dB, period by period; what the strip's high pass makes of a jump doesn't count. */
std::vector<double> gainsOver (const Signal& in, const Signal& out, double rate, std::size_t latency = 0)
{
    const auto period = static_cast<std::size_t> (rate * periodSeconds);
    std::vector<double> gains;

    const auto amplitude = [&] (const Signal& signal, std::size_t start)
    {
        const Signal cycle (signal.begin() + static_cast<std::ptrdiff_t> (start),
                            signal.begin() + static_cast<std::ptrdiff_t> (start + period));
        return std::abs (spectrumAt (cycle, 2.0 * std::numbers::pi / static_cast<double> (period)));
    };

    for (std::size_t start = 0; start + period + latency <= out.size(); start += period)
        gains.push_back (20.0 * std::log10 (amplitude (out, start + latency) / amplitude (in, start)));

    return gains;
}

/** What the running strip does to the tone, at factor 2, in dB over what it does to it at rest. */
std::vector<double> measure (int attack, int release, double loudSeconds, double quietBehind)
{
    const auto strip = makeNoiselessStrip (1);

    setPlain (*strip, { { "equalizer", 0.0f },
                        { "compThreshold", thresholdDb },
                        { "compRatio", static_cast<float> (ratio) },
                        { "compAttack", static_cast<float> (attack) },
                        { "compRelease", static_cast<float> (release) } });
    strip->prepareToPlay (rateHz, 512);
    const auto in = tone (rateHz, loudSeconds, quietBehind);
    auto gains =
        gainsOver (in, process (*strip, { in }, 512)[0], rateHz, static_cast<std::size_t> (strip->getLatencySamples()));
    const auto rest = gains[periodsOf (quietSeconds) - 2];

    for (auto& gain : gains)
        gain -= rest;

    return gains;
}

/** Seconds after `from` until the gain is for good closer to `end` than `distance`, on a line between two periods. */
double secondsUntilNear (const std::vector<double>& gains, double from, double to, double end, double distance)
{
    const auto first = periodsOf (from);
    auto i = periodsOf (to) - 1;

    const auto excess = [&] (std::size_t k) { return std::abs (gains[k] - end) - distance; };

    while (i > first && excess (i) < 0.0)
        --i;

    const auto way = excess (i) / (excess (i) - excess (i + 1));
    return (static_cast<double> (i - first) + 0.5 + way) * periodSeconds;
}

/** Seconds until `share` of the reduction at the loud passage's end is left. */
double secondsOfRelease (int release, double loudSeconds, double share, double longest)
{
    const auto gains = measure (2, release, loudSeconds, longest);
    const auto end = quietSeconds + loudSeconds;
    const auto deepest = gains[periodsOf (end) - 2];
    return secondsUntilNear (gains, end, end + longest - 0.01, 0.0, -deepest * share);
}

/** The two capacitors on their own, by small steps: C1 = 2.2 uF leaks through Rl, C2 = 10 uF sits behind R2 and was
    charged for `loudSeconds`. The network counts 44100 samples a second, whatever the rate. */
double secondsToHalf (double reductionDb, double rlOhms, double r2Ohms, double loudSeconds)
{
    const auto gainDb = [] (double volts) { return 20.0 * std::log10 (plain::Dynamics::curve (volts)); };
    constexpr double stretch = loopRateHz / networkRateHz, dt = 2e-6;
    auto c1 = 0.0, seconds = 0.0;

    while (gainDb (c1) > gainDb (0.0) + reductionDb)
        c1 += 1e-3;

    auto c2 = c1 * -std::expm1 (-loudSeconds * stretch / (r2Ohms * 10e-6));

    for (; gainDb (c1) < gainDb (0.0) + 0.5 * reductionDb; seconds += dt)
    {
        const auto amps = (c1 - c2) / r2Ohms;
        c1 -= dt * (c1 / rlOhms + amps) / 2.2e-6;
        c2 += dt * amps / 10e-6;
    }

    return seconds / stretch;
}
} // namespace

// A square wave has one magnitude, so the loop comes to rest; the compressor comes first here, so that it hears one.
TEST (DynamicsTransfer, EveryRatioHoldsASteadyLevelWhereItsCircuitRests)
{
    const auto strip = makeNoiselessStrip (1, 1);
    setPlain (*strip, { { "equalizer", 0.0f }, { "eqPost", 1.0f }, { "compAttack", 1.0f } });
    setPlain (*strip, "compRelease", 8.0f); // fills the second capacitor soonest
    auto deepestDb = 0.0;

    for (int position = 0; position < 6; ++position)
        for (const auto threshold : { -20.0f, -9.0f })
        {
            setPlain (*strip, "compRatio", static_cast<float> (position));
            setPlain (*strip, "compThreshold", threshold);

            for (const auto levelDb : { -40.0, -20.0, -6.0, 0.0 })
            {
                strip->prepareToPlay (rateHz, 512);
                Signal in (static_cast<std::size_t> (8.0 * rateHz));

                for (std::size_t i = 0; i < in.size(); ++i)
                    in[i] = static_cast<float> (std::pow (10.0, levelDb / 20.0) * (i / 12 % 2 == 0 ? 1.0 : -1.0));

                const auto& settings = strip->currentSnapshot();
                const auto steady =
                    plain::Dynamics (settings, rateHz).steadyGain (static_cast<double> (in[0]) * settings.calibration);
                const auto out = process (*strip, { in }, 512)[0];
                SCOPED_TRACE (juce::String (position) + ", " + juce::String (threshold) + ", "
                              + juce::String (levelDb));

                // Both potentiometers stand in the middle: 17 dB less each, 4 more at the output. The saturation behind
                // moves the tone a little, but not the needle.
                const auto expectedDb = 20.0 * std::log10 (steady) - 30.0;
                EXPECT_NEAR (gainsOver (in, out, rateHz).back(), expectedDb, 0.05);
                EXPECT_NEAR (settings.gainReductionDb.get(), std::min (expectedDb, 0.0), 0.003);
                deepestDb = std::min (deepestDb, expectedDb);
            }
        }

    EXPECT_LT (deepestDb, -20.0);
}

TEST (DynamicsTimes, EveryReleaseIsTheDischargeOfItsTwoCapacitors)
{
    constexpr std::array rlOhms { 15e3, 33e3, 68e3, 120e3, 220e3, 560e3, 1e6, 2.2e6, 120e3 };

    for (int release = 0; release < 9; ++release)
    {
        const auto gains = measure (2, release, 1.0, 0.0);
        const auto expected = secondsToHalf (gains[gains.size() - 2], rlOhms[static_cast<std::size_t> (release)],
                                             release == 8 ? 33e3 : 153e3, 1.0);
        const auto seconds = secondsOfRelease (release, 1.0, 0.5, 2.0 * expected + 0.05);

        // The knee's trickle, which the capacitors on their own lack, and a tenth of a period.
        EXPECT_NEAR (seconds, expected, 0.1 * periodSeconds + 0.01 * expected) << release;
    }
}

// The plain form of the loop, alone at the rate at which it runs inside the strip.
TEST (DynamicsTimes, EveryAttackIsTheLoopsOwnAndFasterThanTheOneBefore)
{
    constexpr double loudSeconds = 1.0;
    auto last = loudSeconds;

    for (int attack = 0; attack < 3; ++attack)
    {
        ParameterSnapshot settings;
        settings.compThreshold = thresholdDb;
        settings.compRatio = ratio;
        settings.compAttack = attack;
        settings.compRelease = 4;
        plain::Dynamics loop (settings, loopRateHz);
        const auto in = tone (loopRateHz, loudSeconds, 0.0);
        auto out = in;

        for (auto& sample : out)
        {
            sample *= static_cast<float> (ParameterSnapshot::defaultCalibration);
            sample = static_cast<float> (loop.process ({ sample, sample, sample }));
        }

        const auto seconds = [] (const std::vector<double>& gains, double share)
        {
            const auto start = gains[periodsOf (quietSeconds) - 2], end = gains[gains.size() - 2];
            return secondsUntilNear (gains, quietSeconds, quietSeconds + loudSeconds - 0.01, end,
                                     share * (start - end));
        };

        const auto alone = gainsOver (in, out, loopRateHz), running = measure (attack, 4, loudSeconds, 0.0);

        // The strip's saturation and filters move the gain by 0.02 dB.
        for (const auto share : { 0.5, 0.1 })
        {
            EXPECT_NEAR (seconds (running, share), seconds (alone, share), 0.1 * periodSeconds) << attack;
        }

        EXPECT_LT (seconds (running, 0.5), 0.75 * last) << attack;
        last = seconds (running, 0.5);
    }
}

// Behind its smaller resistor the second capacitor is soon as full as it gets; behind the other it takes seconds.
TEST (DynamicsTimes, AutoRecoversFasterFromShortPeaksThanFromLongOnes)
{
    const auto stretch = [] (int release)
    { return secondsOfRelease (release, 0.5, 0.1, 3.0) / secondsOfRelease (release, 0.005, 0.1, 3.0); };

    constexpr int twoHundredMs = 3, automatic = 8; // with the same discharging resistor
    EXPECT_GT (stretch (automatic), 9.0);
    EXPECT_LT (stretch (twoHundredMs), 0.6 * stretch (automatic));
}
} // namespace tarvik::test
