// SPDX-License-Identifier: GPL-3.0-or-later
#include "DynamicsTestTools.h"
#include "dsp/InstructionSets.h"
#include "tests/support/RealTimeTrap.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <limits>
#include <thread>

namespace tarvik::test
{
namespace
{
constexpr std::array ratesHz { 44100.0, 48000.0, 96000.0, 192000.0, 705600.0 };

// Largest difference of the fast form's outputs from the plain ones, as a part of these.
// Beyond any level that a console carries the feedback becomes chaotic: every rounding grows until nothing is left in
// common. So a twin of the plain form is nudged by 1e-10 per sample, and the comparison ends where the twins part.
double compareWithPlain (const ParameterSnapshot& settings, double rateHz, const std::vector<Signal>& in,
                         bool& isComplete)
{
    PreparedSection fast (settings, rateHz, 2);
    const auto out = fast.process (in);
    auto worst = 0.0;

    for (std::size_t c = 0; c < 2; ++c)
    {
        plain::Dynamics plain (settings, rateHz), twin (settings, rateHz);
        const auto& side = in[c + 2];

        for (std::size_t i = 0; i < out[c].size(); ++i)
        {
            const auto detector = settings.compExtSideChain ? side[i] : in[c][i];
            const auto key = settings.expExtSideChain ? side[i] : in[c][i];
            const auto expected = plain.process ({ in[c][i], detector, key });
            twin.process ({ in[c][i], detector, key });
            twin.gain *= 1.0 + 1e-10;

            if (std::abs (twin.gain - plain.gain) > 1e-7 * plain.gain)
            {
                isComplete = false;
                break;
            }

            // A float's smallest steps are no measure of a gain.
            if (std::abs (expected) > 1e-20)
                worst = std::max (worst, std::abs (static_cast<double> (out[c][i]) / expected - 1.0));
        }
    }

    return worst;
}

TEST (DynamicsSection, FastFormGivesThePlainFormsGain)
{
    std::mt19937 random (41);
    auto numComplete = 0;
    constexpr auto numCases = 120;

    for (int i = 0; i < numCases; ++i)
    {
        const auto settings = randomSettings (random);
        const auto rateHz = ratesHz[static_cast<std::size_t> (i) % ratesHz.size()];
        const auto loudest = std::pow (10.0, std::uniform_real_distribution<double> (-1.0, 2.5) (random));
        std::vector<Signal> in;

        for (unsigned c = 0; c < 4; ++c)
            in.push_back (bursts (static_cast<unsigned> (random()), loudest, rateHz, 0.15));

        auto isComplete = true;
        EXPECT_LT (compareWithPlain (settings, rateHz, in, isComplete), 1e-6)
            << "case " << i << ": rate " << rateHz << ", level " << loudest << ", ratio " << settings.compRatio
            << ", mode " << settings.expMode << ", limit " << settings.compLimit;
        numComplete += isComplete;
    }

    EXPECT_GT (numComplete, numCases * 2 / 3);
}

// All at once: filters, limiter, gate and Smash, on a signal that moves everything.
ParameterSnapshot busySettings (int expMode = 2)
{
    ParameterSnapshot settings;
    settings.compThreshold = -15.0f;
    settings.compRatio = 3;
    settings.compHPF = 150.0f;
    settings.compNiveau = true;
    settings.compLimit = true;
    settings.compNuke = true;
    settings.expMode = expMode;
    settings.expHold = true;
    settings.expThreshold = -20.0f;
    return settings;
}

std::vector<Signal> busySignal (double rateHz, double seconds = 0.5)
{
    return { bursts (1, 5.0, rateHz, seconds), bursts (2, 5.0, rateHz, seconds) };
}

TEST (DynamicsSection, StreamCutAnywhereIsTheSameStream)
{
    for (const auto mode : { 0, 1, 2 })
    {
        const auto in = busySignal (48000.0);
        PreparedSection whole (busySettings (mode), 48000.0, 2), cut (busySettings (mode), 48000.0, 2);
        EXPECT_EQ (whole.process (in), cut.process (in, { 1, 256, 7, 33, 2, 250, 64, 191, 5 })) << mode;
        EXPECT_NEAR (whole.readOuts().gainReductionDb.get(), cut.readOuts().gainReductionDb.get(), 1e-4f);
    }
}

TEST (DynamicsSection, EveryInstructionSetGivesTheSameBitsAndMonoIsOneSideOfStereo)
{
    const auto in = busySignal (96000.0);
    const auto expected = PreparedSection (busySettings(), 96000.0, 2).process (in);

    for (const auto& set : supportedInstructionSets())
    {
        const ScopedInstructionSet scope (set);
        EXPECT_EQ (PreparedSection (busySettings(), 96000.0, 2).process (in), expected) << set.name;
        EXPECT_EQ (PreparedSection (busySettings(), 96000.0, 1).process ({ in[1] })[0], expected[1]) << set.name;
    }
}

TEST (DynamicsSection, SideChainGoesChannelToChannelOrItsMeanToAll)
{
    auto settings = busySettings();
    settings.compExtSideChain = true;
    settings.expExtSideChain = true;
    const auto main = busySignal (48000.0, 0.2);
    const auto a = bursts (7, 5.0, 48000.0, 0.2), b = bursts (8, 5.0, 48000.0, 0.2);
    Signal mean (a.size());
    std::transform (a.begin(), a.end(), b.begin(), mean.begin(), [] (float x, float y) { return 0.5f * x + 0.5f * y; });

    const auto run = [&] (std::vector<Signal> channels, int numMain)
    { return PreparedSection (settings, 48000.0, numMain).process (std::move (channels)); };

    const auto pair = run ({ main[0], main[1], a, b }, 2);
    EXPECT_EQ (pair[0], run ({ main[0], a }, 1)[0]);
    EXPECT_EQ (pair[1], run ({ main[1], b }, 1)[0]);
    EXPECT_EQ (run ({ main[0], main[1], a }, 2)[1], run ({ main[1], a }, 1)[0]);
    EXPECT_EQ (run ({ main[0], a, b }, 1)[0], run ({ main[0], mean }, 1)[0]);
    EXPECT_EQ (run (main, 2), run ({ main[0], main[1], main[0], main[1] }, 2)); // none: the main channels stand in
}

TEST (DynamicsSection, CompInFadesWithinATenthOfASecondAndOutOfCircuitNothingIsTouched)
{
    constexpr double rateHz = 48000.0;
    auto settings = busySettings();
    PreparedSection section (settings, rateHz, 2);
    const auto in = busySignal (rateHz, 1.0);
    section.process (in);
    EXPECT_TRUE (section.readOuts().limiterActive.get());

    settings.compIn = false;
    section.section.update (settings, false);
    const auto fading = section.process (in);
    const auto resting = section.process (in);

    EXPECT_NE (fading[0][100], in[0][100]);
    EXPECT_TRUE (std::equal (fading[0].begin() + 4800, fading[0].end(), in[0].begin() + 4800));
    EXPECT_EQ (resting, in);
    EXPECT_NEAR (section.readOuts().gainReductionDb.get(), 0.0f, 1e-3f);
    EXPECT_FALSE (section.readOuts().limiterActive.get());
    EXPECT_EQ (section.readOuts().expanderAmount.get(), 0.0f);

    // A ramp that moves takes the section along, unheard and unseen.
    settings.compInput = 4.0f;
    section.section.update (settings, false);
    EXPECT_EQ (section.process ({ Signal (in[0].begin(), in[0].begin() + 4000), Signal (4000, 1.0f) })[1],
               Signal (4000, 1.0f));
    EXPECT_NEAR (section.readOuts().gainReductionDb.get(), 0.0f, 1e-3f);
    EXPECT_EQ (section.process (in), in);
    EXPECT_NEAR (section.readOuts().gainReductionDb.get(), 0.0f, 1e-3f);

    settings.compIn = true;
    settings.compMix = 0.0f;
    section.section.update (settings, false);
    EXPECT_EQ (section.process (in), in); // dry
    EXPECT_LT (section.readOuts().gainReductionDb.get(), -3.0f);
}

TEST (DynamicsSection, NeedleShowsTheGainOfASteadyTone)
{
    ParameterSnapshot settings;
    settings.compThreshold = -15.0f;
    settings.compRatio = 3;
    settings.compInput = settings.compOutput = 5.0f; // gains of 1 and 10^0.2

    for (const auto rateHz : { 48000.0, 705600.0 })
        for (const auto level : { 0.01, 1.0, 4.0 })
        {
            PreparedSection section (settings, rateHz, 1);
            const auto in = sine (4000.0, level, rateHz, 2.0);
            const auto out = section.process ({ in })[0];
            const auto change = rmsOfEnd (out, in.size() / 20) / rmsOfEnd (in, in.size() / 20);
            EXPECT_NEAR (section.readOuts().gainReductionDb.get(),
                         std::min (20.0 * std::log10 (change) - 4.0 - 30.0, 0.0), 0.05)
                << rateHz << ", " << level;
        }
}

TEST (DynamicsSection, SettingsThatHaveNoRampAreTakenAtOnce)
{
    auto settings = busySettings();
    settings.limiterSensitivity = 0;
    PreparedSection fresh (settings, 48000.0, 2);
    settings.limiterSensitivity = 2;
    PreparedSection changed (settings, 48000.0, 2);
    changed.process ({ Signal (4800, 0.0f), Signal (4800, 0.0f) });
    settings.limiterSensitivity = 0;
    changed.section.update (settings, false);
    changed.section.reset();
    EXPECT_EQ (changed.process (busySignal (48000.0)), fresh.process (busySignal (48000.0)));
}

// A detector that still held what was loud before would keep the gate open for 25 ms.
TEST (DynamicsSection, ExpanderThatComesBackFromOffStartsItsDetectorFromRest)
{
    for (const auto mode : { 0, 2 })
        for (const auto goesThroughOff : { true, false })
        {
            ParameterSnapshot settings;
            settings.compRatio = 0;
            settings.expMode = mode;
            settings.expAttack = 2;
            PreparedSection section (settings, 48000.0, 1);
            section.process ({ sine (1000.0, 8.0, 48000.0, 3.0) });

            if (goesThroughOff)
            {
                settings.expMode = 1;
                section.section.update (settings, false);
                section.process ({ sine (1000.0, 8.0, 48000.0, 0.1) });
                settings.expMode = mode;
                section.section.update (settings, false);
            }

            section.process ({ Signal (240) });
            EXPECT_EQ (section.readOuts().expanderAmount.get() > 0.5f, goesThroughOff) << mode;
        }
}

TEST (DynamicsSection, SwitchedOffTheExpanderOpensWithinTenMillisecondsAndWithoutAJump)
{
    for (const auto mode : { 0, 2 })
    {
        ParameterSnapshot settings;
        settings.compRatio = 0;
        settings.expMode = mode;
        PreparedSection section (settings, 48000.0, 2);
        const std::vector quiet { Signal (48000, 0.01f), Signal (48000) }; // silence closes it, too
        const auto closed = section.process (quiet)[0].back();
        settings.expMode = 1;
        section.section.update (settings, false);
        const auto opening = section.process (quiet)[0];
        EXPECT_GT (opening.back(), 4.0f * closed);
        EXPECT_NEAR (opening[481], opening.back(), 0.001f * opening.back());

        for (std::size_t i = 0; i < 480; ++i)
            ASSERT_LT (opening[i] - (i == 0 ? closed : opening[i - 1]), 0.01f * opening.back()) << i;

        // What is empty needs the attack's time to fill.
        settings.expMode = mode;
        section.section.update (settings, false);
        EXPECT_NEAR (section.process (quiet)[0].front(), opening.back(), 0.01f * opening.back());
    }
}

TEST (DynamicsSection, OneBadSampleIsForgottenWithinASecond)
{
    constexpr double rateHz = 48000.0;
    const auto bad = { std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                       std::numeric_limits<float>::max() };

    for (const auto mode : { 0, 1, 2 })
        for (const auto sample : bad)
        {
            auto clean = busySignal (rateHz, 1.5), dirty = clean;
            dirty[0][1000] = sample;
            const auto expected = PreparedSection (busySettings (mode), rateHz, 2).process (clean);
            const auto out = PreparedSection (busySettings (mode), rateHz, 2).process (dirty);
            EXPECT_TRUE (allFinite (out[0]));
            EXPECT_EQ (out[1], expected[1]);

            for (std::size_t i = 49000; i < out[0].size(); ++i)
                ASSERT_NEAR (out[0][i], expected[0][i], 0.1f * std::abs (expected[0][i]) + 1e-3f)
                    << mode << ", " << sample << ", " << i;
        }
}

TEST (DynamicsSection, InSilenceNoStateCreepsThroughSubnormalNumbers)
{
    constexpr int n = 256;
    std::vector<float> silence (n, 0.0f), loud (n, 3.0f);
    std::vector<double> attenuations (n);
    std::vector<float> gains (n);

    DynamicsCircuits circuits;
    circuits.compressor.prepare (44100.0);
    circuits.limiter.prepare (44100.0);
    circuits.limiter.setOn (true);
    circuits.compressor.set ({ -10.0f, 3, 1, 1 });
    circuits.expander.set ({ -30.0f, 0.0f, 1, 0.3f, static_cast<int> (Expander::Mode::expander), false, false });
    circuits.expander.prepare (44100.0);

    DynamicsChannel channel;
    channel.expander.volts = 10.0;
    constexpr int numBlocks = 300 * 44100 / n; // five minutes

    for (int block = 0; block < numBlocks; ++block)
    {
        const DynamicsRows rows { block < 10 ? loud.data() : silence.data(), silence.data(), attenuations.data(),
                                  gains.data() };
        processDynamics (circuits, std::span (&channel, 1), std::span (&rows, 1), n);
    }

    EXPECT_EQ (channel.compressor.peak, 0.0);
    EXPECT_EQ (channel.limiterVolts, 0.0);
    EXPECT_EQ (channel.expander.volts, 0.0);
    EXPECT_TRUE (std::isnormal (channel.compressor.c1Volts) && std::isnormal (channel.compressor.c2Volts));
}

TEST (DynamicsSection, AudioNeverAllocatesAndSettingsMayChangeUnderIt)
{
    constexpr double rateHz = 48000.0;
    PreparedSection section (busySettings(), rateHz, 2);
    std::atomic<bool> isDone { false };
    std::atomic<int> allocations { 0 };

    std::thread control (
        [&]
        {
            std::mt19937 random (9);

            while (! isDone)
            {
                auto settings = randomSettings (random);
                settings.compHPF = 20.0f + static_cast<float> (random() % 380);
                settings.compNiveau = random() % 2 == 0;
                settings.compIn = random() % 8 != 0;
                const RealTimeTrap trap;
                section.section.update (settings, false);
                allocations += trap.allocations();
            }
        });

    std::array signals { bursts (1, 9.0, rateHz, 2.0), bursts (2, 9.0, rateHz, 2.0) };

    for (int position = 0; position + 256 <= 96000; position += 256)
    {
        const std::array rows { signals[0].data() + position, signals[1].data() + position };
        const RealTimeTrap trap;
        section.section.process (rows.data(), 256, 0);
        allocations += trap.allocations() + trap.locks();
    }

    isDone = true;
    control.join();

    EXPECT_TRUE (allFinite (signals[0]) && allFinite (signals[1]));
    EXPECT_EQ (allocations, 0);
}
} // namespace
} // namespace tarvik::test
