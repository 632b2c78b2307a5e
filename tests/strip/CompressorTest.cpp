// SPDX-License-Identifier: GPL-3.0-or-later
#include "DynamicsTestTools.h"
#include "strip/CompressorCircuit.h"
#include "strip/OpeningTable.h"
#include "strip/VcaCurve.h"

#include <gtest/gtest.h>

#include <array>

namespace tarvik::test
{
namespace
{
using Controls = CompressorCircuit::Controls;

// The network's clock: one sample at any rate.
constexpr double stepSeconds = 1.0 / 44100.0;

CompressorCircuit makeCircuit (const Controls& controls, double rateHz = 44100.0)
{
    CompressorCircuit circuit;
    circuit.prepare (rateHz);
    circuit.set (controls);
    return circuit;
}

// Samples that C1 needs from `state` to pass `volts` at a constant level.
int samplesUntil (const CompressorCircuit& circuit, CompressorCircuit::State& state, double level, double volts)
{
    const auto isRising = state.c1Volts < volts;
    int samples = 0;

    while ((state.c1Volts < volts) == isRising && samples < 44100 * 60)
    {
        circuit.step (state, 1.0, level);
        ++samples;
    }

    return samples;
}

TEST (Compressor, OpeningOfTheAttackFollowsTheExponential)
{
    for (auto volts = OpeningTable::lowestVolts; volts < 1e9; volts *= 1.001) // past the cells' end, too
        ASSERT_NEAR (OpeningTable::at (volts), std::exp (-1.0 / volts), 1e-10) << volts;
}

TEST (Compressor, AttackGetsFasterWithEveryStepAndWithTheSizeOfTheError)
{
    std::array<int, 3> samples {};

    for (int attack = 0; attack < 3; ++attack)
    {
        CompressorCircuit::State state;
        samples[static_cast<std::size_t> (attack)] =
            samplesUntil (makeCircuit ({ -10.0f, 3, attack, 3 }), state, 20.0, 5.0);
    }

    EXPECT_GT (samples[0], 5 * samples[1]);
    EXPECT_GT (samples[1], 2 * samples[2]);

    // Through the attack's resistor alone: c1 = target (1 - exp (-t / (Ra C1))) up to a small part of a large target.
    CompressorCircuit::State state;
    const auto circuit = makeCircuit ({ -10.0f, 3, 0, 3 });
    circuit.step (state, 1.0, 1000.0);
    const auto r = 1000.0 * 0.095745 * 11.8, gain = 1.0 / (22e3 / 142e3 + 1.0 / 115.0);
    const auto target = ((230.0 / 44100.0 + r + 0.2 / gain - 1.5) * gain - 0.6) * 120.0 / 130.0;
    EXPECT_NEAR (state.c1Volts, target * (1.0 - std::exp (-stepSeconds / (10e3 * 2.2e-6))), 0.01 * state.c1Volts);
}

TEST (Compressor, NetworkCountsSamplesNotSeconds)
{
    std::array<CompressorCircuit::State, 2> states;
    std::array<int, 2> samples {};

    for (std::size_t i = 0; i < 2; ++i)
    {
        states[i].c1Volts = 10.0;
        samples[i] = samplesUntil (makeCircuit ({ -10.0f, 0, 1, 2 }, i == 0 ? 48000.0 : 96000.0), states[i], 0.0, 3.0);
    }

    EXPECT_EQ (samples[0], samples[1]); // so half as long in seconds
    EXPECT_EQ (states[0].c1Volts, states[1].c1Volts);
}

TEST (Compressor, NoLevelTakesTheCapacitorsBeyondTheCurvesEnd)
{
    const auto ceiling = VcaCurve::getZeroGainVolts();

    for (int release = 0; release < 9; ++release)
        for (const auto level : { 1e3, 1e9, 1e30 })
        {
            const auto circuit = makeCircuit ({ -20.0f, 5, 2, release });
            CompressorCircuit::State state;

            for (int i = 0; i < 44100; ++i)
            {
                circuit.step (state, 30.0, level);
                ASSERT_LE (state.c1Volts, ceiling + 0.01);
                ASSERT_GE (state.c1Volts, 0.0);
                ASSERT_LE (state.c2Volts, ceiling + 0.01);
            }
        }
}

// The loop closed around the gain element, on a steady tone: a higher ratio lets less of a rise in level through.
TEST (Compressor, RatiosRankAndLowLevelsPassUntouched)
{
    constexpr double rateHz = 48000.0;
    ParameterSnapshot settings;
    settings.compThreshold = -10.0f;
    settings.compRelease = 4;
    settings.compInput = settings.compOutput = 5.0f;
    auto lastSlope = 0.7; // 2:1 is 0.54

    const auto steadyDb = [&] (double levelDb)
    {
        PreparedSection section (settings, rateHz, 1);
        const auto out = section.process ({ sine (997.0, std::pow (10.0, levelDb / 20.0), rateHz, 2.0) })[0];
        return 20.0 * std::log10 (rmsOfEnd (out, 4800) * std::numbers::sqrt2);
    };

    for (int ratio = 1; ratio < 6; ++ratio)
    {
        settings.compRatio = ratio;
        const auto slope = (steadyDb (0.0) - steadyDb (-10.0)) / 10.0;
        EXPECT_LT (slope, lastSlope - 0.01) << ratio;
        EXPECT_NEAR (steadyDb (-60.0) - steadyDb (-80.0), 20.0, 0.05) << ratio;
        lastSlope = slope;
    }

    settings.compRatio = 0;
    EXPECT_NEAR (steadyDb (10.0) - steadyDb (-80.0), 90.0, 0.01);
}
} // namespace
} // namespace tarvik::test
