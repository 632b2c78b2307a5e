// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/Limiter.h"

#include "DynamicsTestTools.h"

#include <gtest/gtest.h>

namespace tarvik::test
{
namespace
{
constexpr double thresholdLevel = 3.37;

Limiter makeLimiter (double rateHz, bool isOn = true)
{
    Limiter limiter;
    limiter.prepare (rateHz);
    limiter.setOn (isOn);
    return limiter;
}

double run (const Limiter& limiter, double volts, double level, double rateHz, double seconds)
{
    for (int i = 0; i < static_cast<int> (seconds * rateHz); ++i)
        limiter.step (volts, level);

    return volts;
}

TEST (Limiter, ChargesAboveItsThresholdInFourMillisecondsWhateverTheRate)
{
    // Charge of 4 ms against leak of 50 ms: 1/tau = 1/4 + 1/50 per ms, and the rest stands at tau/4 ms of the drive.
    const auto tau = 1.0 / (1.0 / 0.004 + 1.0 / 0.05), rest = 50.0 * 1.0 * tau / 0.004;

    for (const auto rateHz : { 44100.0, 96000.0, 705600.0 })
    {
        const auto limiter = makeLimiter (rateHz);
        EXPECT_EQ (run (limiter, 0.0, thresholdLevel, rateHz, 0.1), 0.0);
        EXPECT_NEAR (run (limiter, 0.0, thresholdLevel + 1.0, rateHz, 1.0), rest, 0.002 * rest) << rateHz;
        EXPECT_NEAR (run (limiter, 0.0, thresholdLevel + 1.0, rateHz, tau), rest * (1.0 - std::exp (-1.0)), 0.01 * rest)
            << rateHz;
    }
}

TEST (Limiter, LeaksInFiftyMillisecondsAndNeverChargesWhileOff)
{
    for (const auto rateHz : { 44100.0, 96000.0, 705600.0 })
        for (const auto isOn : { true, false })
            EXPECT_NEAR (run (makeLimiter (rateHz, isOn), 10.0, isOn ? 0.0 : 100.0, rateHz, 0.05),
                         10.0 * std::exp (-1.0), 0.01)
                << rateHz << ", on " << isOn;
}

TEST (Limiter, HoldsTheOutputAtARatioWhereTheCompressorIsSilent)
{
    constexpr double rateHz = 48000.0;
    ParameterSnapshot settings;
    settings.compRatio = 0;
    settings.compInput = 5.0f;
    settings.compOutput = 5.0f;
    settings.limiterSensitivity = 0;

    const auto steadyPeak = [&] (bool isOn, double level)
    {
        settings.compLimit = isOn;
        PreparedSection section (settings, rateHz, 1);
        const auto out = section.process ({ sine (1000.0, level, rateHz, 1.0) })[0];
        EXPECT_EQ (section.readOuts().limiterActive.get(), isOn && level > 0.1);
        return static_cast<double> (*std::max_element (out.end() - 4800, out.end()));
    };

    EXPECT_NEAR (20.0 * std::log10 (steadyPeak (false, 2.0) / steadyPeak (false, 0.05)), 32.04, 0.1);
    EXPECT_LT (20.0 * std::log10 (steadyPeak (true, 2.0) / steadyPeak (true, 0.2)), 5.0);
    EXPECT_EQ (steadyPeak (true, 0.05), steadyPeak (false, 0.05)); // below the threshold it does nothing at all
}
} // namespace
} // namespace tarvik::test
