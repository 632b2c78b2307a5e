// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/Expander.h"

#include "DynamicsTestTools.h"

#include <gtest/gtest.h>

#include <array>

namespace tarvik::test
{
namespace
{
using Mode = Expander::Mode;

constexpr double rateHz = 48000.0;

Expander makeExpander (Mode mode, const std::function<void (Expander::Controls&)>& change = {}, double rate = rateHz)
{
    Expander::Controls controls;
    controls.mode = static_cast<int> (mode);
    controls.thresholdDb = -20.0f;

    if (change)
        change (controls);

    Expander expander;
    expander.set (controls);
    expander.prepare (rate);
    return expander;
}

// The expander's attenuations for a key.
std::vector<double> attenuations (const Expander& expander, const Signal& key, Expander::State& state)
{
    std::vector<double> attenuationsDb (key.size());
    auto* const states = &state;
    const auto* const keys = key.data();
    auto* const rows = attenuationsDb.data();
    expander.makeAttenuations (&states, &keys, &rows, 1, static_cast<int> (key.size()));
    return attenuationsDb;
}

TEST (Expander, DetectorReadsTheRootMeanSquareOfATone)
{
    for (const auto rate : { 44100.0, 192000.0 })
    {
        const auto expander = makeExpander (Mode::expander, {}, rate);
        Expander::State state;
        auto sum = 0.0;

        for (const auto x : sine (1000.0, 0.5, rate, 0.3))
            expander.followLevel (state, static_cast<double> (x));

        for (const auto x : sine (1000.0, 0.5, rate, 0.1))
            sum += expander.followLevel (state, static_cast<double> (x));

        EXPECT_NEAR (sum / (0.1 * rate), 0.5 / std::sqrt (2.0), 1e-3) << rate;
    }
}

// Closed form: threshold -20 dB scales a key by -20 dB; 22.2184875 dB below 0 after that is where attenuation begins.
TEST (Expander, StaticCurveIsARampWithASoftKneeUpToTheRange)
{
    const auto expander = makeExpander (Mode::expander);
    EXPECT_EQ (expander.attenuationFor (-20.0), 0.0);
    EXPECT_NEAR (expander.attenuationFor (-22.2184875 - 12.0), 12.0 - 4.0 / (8.0 * 0.125 + 1.0), 1e-12);
    EXPECT_NEAR (expander.attenuationFor (-22.2184875 - 20.0), 20.0 - 4.0, 1e-12);
    EXPECT_NEAR (expander.attenuationFor (-22.2184875 - 60.0), 20.0 - 4.0 / (40.0 * 0.125 + 1.0), 1e-12);
    EXPECT_EQ (expander.attenuationFor (-500.0), expander.attenuationFor (-100.0));

    const auto none = makeExpander (Mode::expander, [] (auto& c) { c.rangeDb = 0.0f; });
    EXPECT_EQ (none.attenuationFor (-100.0), 0.0);
    EXPECT_EQ (none.getActivity (5.0), 0.0);
    EXPECT_EQ (makeExpander (Mode::off).getActivity (5.0), 0.0);
    EXPECT_DOUBLE_EQ (expander.getActivity (5.0), 0.25);
}

// Three ways to the same attenuation: a row at a time, sample by sample, and the gate's series around an anchor.
TEST (Expander, GateBehindAGainHearsWhatTheExpanderHearsBare)
{
    const auto key = bursts (5, 3.0, rateHz, 2.0);
    const auto expander = makeExpander (Mode::expander), gate = makeExpander (Mode::gate);
    Expander::State rowState, gateState;
    const auto expected = attenuations (expander, key, rowState);
    auto deepest = 0.0, shallowest = 20.0;

    for (std::size_t i = 0; i < key.size(); ++i)
    {
        // Half of four times half the key.
        const auto attenuationDb = gate.gateAttenuation (gateState, 4.0, 0.5 * static_cast<double> (key[i]));
        ASSERT_NEAR (attenuationDb, expected[i], 1e-7) << i;
        deepest = std::max (deepest, attenuationDb);
        shallowest = std::min (shallowest, attenuationDb);
    }

    EXPECT_GT (deepest, 15.0);
    EXPECT_EQ (shallowest, 0.0);
}

TEST (Expander, HoldKeepsTheLowestAttenuationForTenMillisecondsAtATime)
{
    const auto expander = makeExpander (Mode::expander, [] (auto& c) { c.isHolding = true; });
    Expander::State state;
    std::vector<double> held;

    for (int i = 0; i < 960; ++i)
        held.push_back (expander.holdAndInvert (state, 0.01 * i)); // rising: the key dies away

    const auto steps = std::count_if (held.begin() + 1, held.end(), [&] (const auto& x) { return x != *(&x - 1); });
    EXPECT_EQ (held[400], held[2]);
    EXPECT_NEAR (held[700], 0.01 * 482, 0.05);
    EXPECT_LE (steps, 6);
    EXPECT_EQ (expander.holdAndInvert (state, 0.25), 0.25); // a louder key counts at once
}

TEST (Expander, OnlyTheGateListensToTheSideChain)
{
    ParameterSnapshot settings;
    settings.compRatio = 0;
    settings.compInput = settings.compOutput = 5.0f;
    settings.expExtSideChain = true;
    const auto quiet = sine (1000.0, 0.001, rateHz, 0.5), loud = sine (300.0, 1.0, rateHz, 0.5);

    for (const auto mode : { Mode::expander, Mode::gate })
    {
        settings.expMode = static_cast<int> (mode);
        PreparedSection section (settings, rateHz, 1);
        section.process ({ quiet, loud });
        EXPECT_EQ (section.readOuts().expanderAmount.get() > 0.5f, mode == Mode::expander);
    }
}
} // namespace
} // namespace tarvik::test
