// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/strip/PlainDynamics.h"
#include "tests/support/StripTestTools.h"

#include <array>

namespace tarvik::test
{
namespace
{
constexpr double rateHz = 48000.0, periodSeconds = 1.0 / 2000.0, quietSeconds = 0.2, loudSeconds = 1.0;
constexpr std::size_t period = 24;

std::size_t periodsOf (double seconds) { return static_cast<std::size_t> (std::lround (seconds / periodSeconds)); }

/** What the running strip does to a tone that is quiet, loud and quiet again: its gain in dB, period by period, over
    that of the first quiet passage.
*/
std::vector<double> gainsOf (int release, double secondsAfter)
{
    const auto strip = makeNoiselessStrip (1);
    setPlain (*strip, { { "equalizer", 0.0f },
                        { "compThreshold", -10.0f },
                        { "compRatio", 3.0f },
                        { "compAttack", 2.0f },
                        { "compRelease", static_cast<float> (release) } });
    strip->prepareToPlay (rateHz, 512);
    auto in = sine (1.0 / periodSeconds, 0.01, rateHz, quietSeconds + loudSeconds + secondsAfter);

    for (auto i = static_cast<std::size_t> (quietSeconds * rateHz), n = i + static_cast<std::size_t> (rateHz); i < n;
         ++i)
        in[i] *= 63.0f;

    const auto out = process (*strip, { in }, 512)[0];
    std::vector<double> gains;
    const auto amplitude = [] (const Signal& signal, std::size_t start)
    {
        const auto begin = signal.begin() + static_cast<std::ptrdiff_t> (start);
        return std::abs (spectrumAt (Signal (begin, begin + period), 2.0 * std::numbers::pi / period));
    };

    for (std::size_t start = 0, latency = 52; start + period + latency <= out.size(); start += period)
        gains.push_back (20.0 * std::log10 (amplitude (out, start + latency) / amplitude (in, start)));

    for (const auto rest = gains[periodsOf (quietSeconds) - 2]; auto& gain : gains)
        gain -= rest;

    return gains;
}

/** The two capacitors on their own, by small steps: C1 = 2.2 uF leaks through Rl, C2 = 10 uF is fed through R2 and was
    charged for `loudSeconds`. The network counts 44100 samples a second, whatever the rate. */
double secondsToHalf (double reductionDb, double rlOhms, double r2Ohms)
{
    const auto gainDb = [] (double volts) { return 20.0 * std::log10 (plain::Dynamics::curve (volts)); };
    constexpr double stretch = 2.0 * rateHz / 44100.0, dt = 2e-6;
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

TEST (DynamicsTimes, EveryReleaseIsTheDischargeOfItsTwoCapacitors)
{
    constexpr std::array rlOhms { 15e3, 33e3, 68e3, 120e3, 220e3, 560e3, 1e6, 2.2e6, 120e3 };

    for (int release = 0; release < 9; ++release)
    {
        const auto loud = gainsOf (release, 0.0);
        const auto expected = secondsToHalf (loud[loud.size() - 2], rlOhms[static_cast<std::size_t> (release)],
                                             release == 8 ? 33e3 : 153e3);
        const auto gains = gainsOf (release, 2.0 * expected + 0.05);
        const auto end = periodsOf (quietSeconds + loudSeconds);
        const auto half = 0.5 * gains[end - 2];
        auto i = end;

        while (i + 2 < gains.size() && gains[i + 1] < half)
            ++i;

        // On a line between two periods. The knee's trickle, which the capacitors on their own lack, and a tenth of a
        // period are allowed.
        const auto way = (half - gains[i]) / (gains[i + 1] - gains[i]);
        EXPECT_NEAR ((static_cast<double> (i - end) + 0.5 + way) * periodSeconds, expected,
                     0.1 * periodSeconds + 0.01 * expected)
            << release;
    }
}
} // namespace tarvik::test
