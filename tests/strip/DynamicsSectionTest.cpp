// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/DynamicsSection.h"

#include "PlainDynamics.h"
#include "dsp/InstructionSets.h"
#include "tests/support/StripTestTools.h"

#include <gtest/gtest.h>

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

    void update (const ParameterSnapshot& snapshot) { section.update (snapshot, false); }

    ParameterSnapshot readOuts() const
    {
        ParameterSnapshot snapshot;
        section.writeReadOuts (snapshot);
        return snapshot;
    }

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
        EXPECT_LT (compareWithPlain (settings, rateHz, in, isComplete), 1e-6) << "case " << i;
        numComplete += isComplete;
    }

    EXPECT_GT (numComplete, numCases * 2 / 3);
}

/** All at once: filters, limiter, gate and Smash, on a signal that moves everything. */
const auto busySettings = []
{
    ParameterSnapshot settings;
    settings.compThreshold = -15.0f;
    settings.compRatio = 3;
    settings.compHPF = 150.0f;
    settings.compNiveau = settings.compLimit = settings.compNuke = settings.expHold = true;
    settings.expMode = 2;
    settings.expThreshold = -20.0f;
    return settings;
}();

std::vector<Signal> busySignal() { return { bursts (1, 5.0, 48000.0, 0.5), bursts (2, 5.0, 48000.0, 0.5) }; }

TEST (DynamicsSection, SameBitsHoweverCutAndOnEveryInstructionSet)
{
    const auto in = busySignal();

    for (const auto mode : { 0, 1, 2 })
    {
        auto settings = busySettings;
        settings.expMode = mode;
        const auto expected = PreparedSection (settings).process (in);

        for (const auto& set : supportedInstructionSets())
        {
            const ScopedInstructionSet scope (set);
            EXPECT_EQ (PreparedSection (settings).process (in, { 1, 256, 7, 64 }), expected) << set.name << mode;
            EXPECT_EQ (PreparedSection (settings, 1).process ({ in[1] })[0], expected[1]) << set.name << mode;
        }
    }
}

TEST (DynamicsSection, SideChainGoesChannelToChannelOrItsMeanToAll)
{
    const Signal main (24000, 0.1f), quiet (24000, 1e-3f), loud (24000, 4.0f), louder (24000, 6.0f), mean (24000, 5.0f);

    for (const auto isGate : { false, true })
    {
        SCOPED_TRACE (isGate);
        const auto run = [&] (int numMain, const std::vector<Signal>& channels)
        {
            ParameterSnapshot settings;
            settings.compExtSideChain = ! isGate;
            settings.expExtSideChain = isGate;
            settings.compRatio = isGate ? 0 : 3;
            settings.compThreshold = -20.0f;
            settings.expMode = isGate ? 2 : 1;
            return PreparedSection (settings, numMain).process (channels);
        };

        const auto byQuiet = run (1, { main, quiet })[0], byLoud = run (1, { main, loud })[0];
        EXPECT_EQ (byLoud.back() > byQuiet.back(), isGate);
        EXPECT_EQ (run (2, { main, main, loud, quiet }), std::vector ({ byLoud, byQuiet }));
        EXPECT_EQ (run (2, { main, main, loud }), std::vector ({ byLoud, byLoud }));
        EXPECT_EQ (run (1, { main, loud, louder }), run (1, { main, mean }));
        EXPECT_EQ (run (2, { quiet, loud }), run (2, { quiet, loud, quiet, loud })) << "none";
    }
}

TEST (DynamicsSection, CompInFadesForATenthOfASecondAndOutIsUntouched)
{
    auto settings = busySettings;
    PreparedSection section (settings);
    auto in = busySignal();
    in[0].assign (in[1].size(), 1e-3f); // the read-outs are those of the side that is reduced more
    section.process (in);
    EXPECT_TRUE (section.readOuts().limiterActive.get());

    const auto expectNoReadOuts = [&section]
    {
        EXPECT_NEAR (section.readOuts().gainReductionDb, 0.0f, 1e-3f);
        EXPECT_FALSE (section.readOuts().limiterActive.get());
        EXPECT_EQ (section.readOuts().expanderAmount.get(), 0.0f);
    };

    settings.compIn = false;
    section.update (settings);
    const auto fading = section.process (in);
    EXPECT_NE (fading[0][100], in[0][100]);
    EXPECT_TRUE (std::equal (fading[0].begin() + 4800, fading[0].end(), in[0].begin() + 4800));
    EXPECT_EQ (section.process (in), in);
    expectNoReadOuts();

    // A ramp that moves takes the section along, unheard and unseen.
    settings.compInput = 4.0f;
    section.update (settings);
    EXPECT_EQ (section.process ({ Signal (4000, 9.0f), Signal (4000, 1.0f) })[1], Signal (4000, 1.0f));
    expectNoReadOuts();
    EXPECT_EQ (section.process (in), in);

    settings.compIn = true;
    settings.compMix = 0.0f;
    section.update (settings);
    EXPECT_EQ (section.process (in), in); // dry
    EXPECT_LT (section.readOuts().gainReductionDb, -3.0f);
}

TEST (DynamicsSection, DetectorFiltersFollowTheirControlAndForgetAtAReset)
{
    auto settings = busySettings;
    PreparedSection moved (settings);
    settings.compHPF = 60.0f;
    PreparedSection fresh (settings);
    moved.update (settings);
    moved.process (busySignal());
    moved.section.reset();
    EXPECT_EQ (moved.process (busySignal()), fresh.process (busySignal()));
}

// A detector that still held what was loud before would keep the gate open for 25 ms.
TEST (DynamicsSection, ExpanderBackFromOffStartsItsDetectorAnew)
{
    for (const auto mode : { 0, 2 })
        for (const auto between : { mode, 1 })
        {
            ParameterSnapshot settings;
            settings.compRatio = 0;
            settings.expAttack = 2;
            PreparedSection section (settings, 1);
            const auto play = [&] (int nextMode, const Signal& signal)
            {
                settings.expMode = nextMode;
                section.update (settings);
                section.process (std::vector<Signal> (1, signal));
            };

            play (mode, sine (1000.0, 8.0, 48000.0, 1.0));
            play (between, sine (1000.0, 8.0, 48000.0, 0.1));
            play (mode, Signal (240));
            EXPECT_EQ (section.readOuts().expanderAmount.get() > 0.5f, between == 1) << mode;
        }
}

TEST (DynamicsSection, SwitchedOffTheExpanderOpensWithin10MsWithoutAStep)
{
    for (const auto mode : { 0, 2 })
    {
        ParameterSnapshot settings;
        settings.compRatio = 0;
        settings.expMode = mode;
        PreparedSection section (settings, 1);
        const std::vector<Signal> quiet (1, Signal (48000, 0.01f));
        auto previous = section.process (quiet)[0].back();
        const auto closed = previous;
        settings.expMode = 1;
        section.update (settings);
        const auto opening = section.process (quiet)[0];
        const auto open = opening.back();
        EXPECT_GT (open, 4.0f * closed);
        EXPECT_NEAR (opening[481], open, 0.001f * open);

        for (const auto sample : opening)
        {
            ASSERT_LT (sample - previous, 0.01f * open);
            previous = sample;
        }
    }
}
} // namespace
} // namespace tarvik::test
