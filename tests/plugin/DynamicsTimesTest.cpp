// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/strip/PlainDynamics.h"
#include "tests/support/StripTestTools.h"

#include <array>

namespace tarvik::test
{
namespace
{
constexpr double rateHz = 48000.0, quietSeconds = 0.2, loudSeconds = 1.0;
constexpr std::size_t step = 12; ///< In samples, from peak to peak of the tone.

/** The running strip's gain in dB at each peak of a tone that was quiet and loud and is quiet again, over that of the
    first quiet passage.
*/
std::vector<double> gainsAfterLoud (int release, double seconds)
{
    const auto strip = makeNoiselessStrip (1, 1);
    setPlain (*strip, { { "equalizer", 0.0f },
                        { "compThreshold", -10.0f },
                        { "compRatio", 3.0f },
                        { "compAttack", 2.0f },
                        { "compRelease", static_cast<float> (release) } });
    strip->prepareToPlay (rateHz, 512);
    const auto gainsOf = [&] (double level, double length)
    {
        const auto in = sine (2000.0, level, rateHz, length), out = process (*strip, { in }, 512)[0];
        std::vector<double> gains;

        for (auto i = step / 2; i < in.size(); i += step)
            gains.push_back (20.0 * std::log10 (static_cast<double> (out[i] / in[i])));

        return gains;
    };
    const auto rest = gainsOf (0.01, quietSeconds).back();
    gainsOf (0.63, loudSeconds);
    auto gains = gainsOf (0.01, seconds);

    for (auto& gain : gains)
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
        const auto loudDb = gainsAfterLoud (release, 0.01).front();
        const auto expected =
            secondsToHalf (loudDb, rlOhms[static_cast<std::size_t> (release)], release == 8 ? 33e3 : 153e3);
        const auto gains = gainsAfterLoud (release, 2.0 * expected + 0.05);
        std::size_t i = 0;

        while (i + 2 < gains.size() && gains[i + 1] < 0.5 * loudDb)
            ++i;

        // On a line between two peaks. The knee's trickle, which the capacitors on their own lack, and a tenth of a
        // period are allowed.
        const auto way = (0.5 * loudDb - gains[i]) / (gains[i + 1] - gains[i]);
        EXPECT_NEAR ((static_cast<double> (i) + way) * step / rateHz, expected, 0.05e-3 + 0.01 * expected) << release;
    }
}
} // namespace tarvik::test
