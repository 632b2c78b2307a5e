// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/DynamicsSection.h"

#include "PlainDynamics.h"
#include "dsp/InstructionSets.h"
#include "tests/support/StripTestTools.h"

#include <gtest/gtest.h>

#include <limits>

namespace tarvik::test
{
namespace
{
/** Noise whose level jumps every 20 ms, up to `loudest` and down to 60 dB below. */
Signal bursts (unsigned seed, double loudest, double rateHz, double seconds)
{
    auto signal = noise (static_cast<int> (seconds * rateHz), seed);

    for (std::size_t i = 0; i < signal.size(); ++i)
    {
        const auto passage = std::floor (static_cast<double> (i) / rateHz / 0.02);
        signal[i] *= static_cast<float> (loudest * std::pow (10.0, -1.5 - 1.5 * std::cos (2.4 * passage + seed)));
    }

    return signal;
}

/** A section that is idle on its settings. */
struct PreparedSection
{
    explicit PreparedSection (const ParameterSnapshot& snapshot, int numMain = 2, double rateHz = 48000.0)
        : main (numMain)
    {
        section.prepare (rateHz, numMain, 256);
        section.update (snapshot, true);
        section.reset();
    }

    /** Whole channels, main ones first, in slices of the given lengths, over and over; the main ones come back changed. */
    std::vector<Signal> process (std::vector<Signal> channels, const std::vector<int>& slices = { 256 })
    {
        inPieces (channels.front().size(), slices,
                  [&] (std::size_t begin, int n)
                  {
                      std::vector<float*> rows;

                      for (auto& channel : channels)
                          rows.push_back (channel.data() + begin);

                      section.process (rows.data(), n, static_cast<int> (channels.size()) - main);
                  });
        channels.resize (static_cast<std::size_t> (main));
        return channels;
    }

    ParameterSnapshot readOuts() const
    {
        ParameterSnapshot snapshot;
        section.writeReadOuts (snapshot);
        return snapshot;
    }

    float reductionDb() const { return readOuts().gainReductionDb; }

    int main;
    DynamicsSection section;
};

/** Every parameter by chance, except those of the detector's filters, which stay out. */
ParameterSnapshot randomSettings (std::mt19937& random)
{
    Tarvik41Processor processor;
    setRandomly (processor, random);
    auto settings = processor.currentSnapshot();
    settings.compIn = true;
    settings.compHPF = 20.0f;
    settings.compNiveau = false;
    settings.limiterSensitivity = static_cast<int> (random() % 3);
    return settings;
}

/** Largest difference of the fast form's outputs from the plain ones, as a part of these. Beyond any level that a
    console carries the feedback becomes chaotic: every rounding grows until nothing is left in common. So a twin of the
    plain form is nudged by 1e-10 per sample, and the comparison ends where the twins part. */
double compareWithPlain (const ParameterSnapshot& settings, double rateHz, const std::vector<Signal>& in,
                         bool& isComplete)
{
    const auto out = PreparedSection (settings, 2, rateHz).process (in);
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

            // A float's smallest steps are not a measure of a gain.
            if (std::abs (expected) > 1e-20)
                worst = std::max (worst, std::abs (static_cast<double> (out[c][i]) / expected - 1.0));
        }
    }

    return worst;
}

TEST (DynamicsSection, FastFormGivesThePlainFormsGain)
{
    constexpr std::array ratesHz { 44100.0, 48000.0, 96000.0, 192000.0, 705600.0 };
    constexpr auto numCases = 120;
    std::mt19937 random (41);
    auto numComplete = 0;

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

/** All at once: filters, limiter, gate and Smash, on a signal that moves everything. */
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

std::vector<Signal> busySignal (double seconds = 0.5)
{
    return { bursts (1, 5.0, 48000.0, seconds), bursts (2, 5.0, 48000.0, seconds) };
}

TEST (DynamicsSection, SameBitsHoweverCutAndOnEveryInstructionSet)
{
    const auto in = busySignal();
    const auto expected = PreparedSection (busySettings()).process (in);

    for (const auto& set : supportedInstructionSets())
    {
        const ScopedInstructionSet scope (set);
        EXPECT_EQ (PreparedSection (busySettings()).process (in, { 1, 256, 7, 64 }), expected) << set.name;
        EXPECT_EQ (PreparedSection (busySettings(), 1).process ({ in[1] })[0], expected[1]) << set.name;
    }
}

TEST (DynamicsSection, SideChainGoesChannelToChannelOrItsMeanToAll)
{
    const Signal quiet (24000, 1e-3f), loud (24000, 4.0f), opposite (24000, -4.0f);

    const auto run = [] (bool isGate, const std::vector<Signal>& channels, std::size_t numMain)
    {
        ParameterSnapshot settings;
        settings.compExtSideChain = ! isGate;
        settings.expExtSideChain = isGate;
        settings.compRatio = isGate ? 0 : 3;
        settings.compThreshold = -20.0f;
        settings.expMode = isGate ? 2 : 1;
        return PreparedSection (settings, static_cast<int> (numMain)).process (channels);
    };

    // Which main channels are turned down; for the gate, which ones it opens for.
    const auto isHeard = [&] (bool isGate, const std::vector<Signal>& channels, std::size_t numMain)
    {
        const auto out = run (isGate, channels, numMain);
        std::vector<bool> heard;

        for (std::size_t c = 0; c < numMain; ++c)
            heard.push_back ((std::abs (out[c].back() / channels[c].back()) > 0.5f) == isGate);

        return heard;
    };

    using Heard = std::vector<bool>;

    for (const auto isGate : { false, true })
    {
        EXPECT_EQ (isHeard (isGate, { quiet, quiet, loud, quiet }, 2), Heard ({ true, false })) << isGate;
        EXPECT_EQ (isHeard (isGate, { loud, loud, quiet, loud }, 2), Heard ({ false, true })) << isGate;
        EXPECT_EQ (isHeard (isGate, { quiet, quiet, loud }, 2), Heard ({ true, true })) << isGate;
        EXPECT_EQ (isHeard (isGate, { quiet, loud, quiet }, 1), Heard ({ true })) << isGate;
        EXPECT_EQ (isHeard (isGate, { quiet, quiet, loud }, 1), Heard ({ true })) << isGate;
        EXPECT_EQ (isHeard (isGate, { loud, loud, opposite }, 1), Heard ({ false })) << isGate;
        EXPECT_EQ (run (isGate, { quiet, loud, loud }, 1), run (isGate, { quiet, loud }, 1)) << "a mean, not a sum";
        EXPECT_EQ (isHeard (isGate, { quiet, loud }, 2), Heard ({ false, true })) << "none: the main channels stand in";
    }
}

TEST (DynamicsSection, CompInFadesForATenthOfASecondAndOutIsUntouched)
{
    auto settings = busySettings();
    PreparedSection section (settings);
    const auto in = busySignal (1.0);
    section.process (in);
    EXPECT_TRUE (section.readOuts().limiterActive.get());

    settings.compIn = false;
    section.section.update (settings, false);
    const auto fading = section.process (in);
    EXPECT_NE (fading[0][100], in[0][100]);
    EXPECT_TRUE (std::equal (fading[0].begin() + 4800, fading[0].end(), in[0].begin() + 4800));
    EXPECT_EQ (section.process (in), in);
    EXPECT_NEAR (section.reductionDb(), 0.0f, 1e-3f);
    EXPECT_FALSE (section.readOuts().limiterActive.get());
    EXPECT_EQ (section.readOuts().expanderAmount.get(), 0.0f);

    // A ramp that moves takes the section along, unheard and unseen.
    settings.compInput = 4.0f;
    section.section.update (settings, false);
    EXPECT_EQ (section.process ({ Signal (4000, 9.0f), Signal (4000, 1.0f) })[1], Signal (4000, 1.0f));
    EXPECT_NEAR (section.reductionDb(), 0.0f, 1e-3f);
    EXPECT_EQ (section.process (in), in);

    settings.compIn = true;
    settings.compMix = 0.0f;
    section.section.update (settings, false);
    EXPECT_EQ (section.process (in), in); // dry
    EXPECT_LT (section.reductionDb(), -3.0f);
}

TEST (DynamicsSection, SettingsThatHaveNoRampAreTakenAtOnce)
{
    auto settings = busySettings();
    settings.limiterSensitivity = 0;
    PreparedSection fresh (settings);
    settings.limiterSensitivity = 2;
    PreparedSection changed (settings);
    const std::vector silence (2, Signal (480));
    fresh.process (silence);
    changed.process (silence);
    settings.limiterSensitivity = 0;
    changed.section.update (settings, false);
    EXPECT_EQ (changed.process (busySignal()), fresh.process (busySignal()));
}

// A detector that still held what was loud before would keep the gate open for 25 ms.
TEST (DynamicsSection, ExpanderBackFromOffStartsItsDetectorAnew)
{
    for (const auto mode : { 0, 2 })
    {
        ParameterSnapshot settings;
        settings.compRatio = 0;
        settings.expAttack = 2;
        PreparedSection section (settings, 1);

        const auto turnTo = [&] (int next)
        {
            settings.expMode = next;
            section.section.update (settings, false);
        };

        turnTo (mode);
        section.process ({ sine (1000.0, 8.0, 48000.0, 1.0) });
        section.process ({ Signal (240) });
        EXPECT_LT (section.readOuts().expanderAmount.get(), 0.5f) << mode << ": still open";

        section.process ({ sine (1000.0, 8.0, 48000.0, 1.0) });
        turnTo (1);
        section.process ({ sine (1000.0, 8.0, 48000.0, 0.1) });
        turnTo (mode);
        section.process ({ Signal (240) });
        EXPECT_GT (section.readOuts().expanderAmount.get(), 0.5f) << mode;
    }
}

TEST (DynamicsSection, SwitchedOffTheExpanderOpensWithin10MsWithoutAStep)
{
    for (const auto mode : { 0, 2 })
    {
        ParameterSnapshot settings;
        settings.compRatio = 0;
        settings.expMode = mode;
        PreparedSection section (settings);
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
    for (const auto mode : { 0, 1, 2 })
        for (const auto sample : { std::nanf (""), std::numeric_limits<float>::max() })
        {
            auto dirty = busySignal (1.5);
            const auto expected = PreparedSection (busySettings (mode)).process (dirty);
            dirty[0][1000] = sample;
            const auto out = PreparedSection (busySettings (mode)).process (dirty);
            EXPECT_TRUE (allFinite (out[0]));
            EXPECT_EQ (out[1], expected[1]);

            for (std::size_t i = 49000; i < out[0].size(); ++i)
                ASSERT_NEAR (out[0][i], expected[0][i], 0.1f * std::abs (expected[0][i]) + 1e-3f) << mode << sample;
        }
}
} // namespace
} // namespace tarvik::test
