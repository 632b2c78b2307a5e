// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/BareStrip.h"
#include "tests/support/ProbeStrip.h"
#include "tests/support/StripTestTools.h"

#include <limits>
#include <string>

namespace tarvik
{

using namespace test;

namespace
{
using Log = std::vector<std::string>;

constexpr double sampleRate = 48000.0;
} // namespace

TEST (BlockLoop, CutsBlocksIntoSlicesAndSlicesIntoChunksInOrder)
{
    ProbeStrip strip;
    strip.oversamplingSetting().setValue (4);
    strip.prepareToPlay (sampleRate, 1000);
    EXPECT_EQ (strip.log, (Log { "prepare 48000 4 2 256", "update all", "reset" }));

    strip.log.clear();
    process (strip, std::vector<Signal> (4, Signal (1000)), 1000);

    Log expected;
    for (const auto n : { "256", "256", "256", "232" })
    {
        expected.push_back ("pre " + std::string (n));
        for (int left = 4 * std::stoi (n); left > 0; left -= 256)
            expected.push_back ("chunk " + std::to_string (std::min (256, left)));
        expected.push_back ("post " + std::string (n));
    }

    EXPECT_EQ (strip.log, expected);

    strip.log.clear();
    strip.oversamplingSetting().setValue (1);
    strip.log.clear();
    process (strip, std::vector<Signal> (4, Signal (300)), 300);
    EXPECT_EQ (strip.log, (Log { "pre 256", "chunk 256", "post 256", "pre 44", "chunk 44", "post 44" }));
}

TEST (BlockLoop, SidechainReachesTheStripOnlyWhileSomethingListensAndNeverTheHost)
{
    ProbeStrip strip;
    strip.oversamplingSetting().setValue (1);
    strip.prepareToPlay (sampleRate, 256);

    const std::vector<Signal> input { Signal (100, 0.1f), Signal (100, 0.2f), Signal (100, 0.3f), Signal (100, 0.4f) };
    strip.log.clear();
    auto output = process (strip, input, 100);
    EXPECT_EQ (strip.log[1], "chunk 100");
    EXPECT_FLOAT_EQ (output[0][50], 0.1f);
    EXPECT_EQ (output[2], Signal (100)) << "the side chain must be cleared also when nobody listens";

    strip.isListening = true;
    strip.log.clear();
    output = process (strip, input, 100);
    EXPECT_EQ (strip.log[1], "chunk 100 side 2");
    EXPECT_EQ (output[3], Signal (100));

    // It passes the calibration and the input gain like the main channels do, and is guarded like them.
    EXPECT_FLOAT_EQ (strip.sidechainSeen, 0.3f * 8.70143032f);

    strip.requestInputGain (0.5);
    auto bad = std::vector<Signal> (4, Signal (6000, 0.3f));
    bad[2].back() = std::numeric_limits<float>::quiet_NaN();
    bad[3].back() = 1e20f;
    process (strip, bad, 5999);
    EXPECT_EQ (strip.sidechainSeen, 0.0f);
    process (strip, std::vector<Signal> (4, Signal (10, 0.3f)), 10);
    EXPECT_FLOAT_EQ (strip.sidechainSeen, 0.15f * 8.70143032f);
}

TEST (BlockLoop, SubnormalsAreFlushedInsideTheRunningEntryAndNotBehindIt)
{
    ProbeStrip strip;
    strip.prepareToPlay (sampleRate, 64);
    process (strip, std::vector<Signal> (4, Signal (64)), 64);
    EXPECT_TRUE (strip.flushesToZero);

    volatile float subnormal = 1e-39f;
    EXPECT_NE (subnormal * 2.0f, 0.0f) << "the host's own setting comes back";
}

TEST (BlockLoop, SurvivesBlocksOtherThanAnnouncedAndChannelsThatAreMissing)
{
    ProbeStrip strip;
    strip.isListening = true;
    strip.oversamplingSetting().setValue (2);
    strip.prepareToPlay (sampleRate, 16);
    process (strip, std::vector<Signal> (4, noise (4096, 1)), 4096);

    for (int channels = 1; channels <= 4; ++channels)
        process (strip, std::vector<Signal> (static_cast<std::size_t> (channels), noise (600, 2)), 300);

    juce::AudioBuffer<float> none (0, 64);
    juce::MidiBuffer midi;
    strip.processBlock (none, midi);
    strip.processBlockBypassed (none, midi);

    strip.releaseResources();
    const auto output = process (strip, { noise (64, 3), noise (64, 4) }, 64);
    EXPECT_EQ (output[0], Signal (64)) << "an unprepared strip is silent";
}

TEST (BlockLoop, LatencyFollowsTheFactorAndIsKnownBeforeTheFirstBlock)
{
    ProbeStrip strip;
    EXPECT_EQ (strip.getLatencySamples(), 52);

    struct Host : juce::AudioProcessorListener
    {
        void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override {}

        void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails& details) override
        {
            latencyChanges += details.latencyChanged ? 1 : 0;
        }

        int latencyChanges = 0;
    } host;

    strip.addListener (&host);

    strip.oversamplingSetting().setValue (1);
    EXPECT_EQ (strip.getLatencySamples(), 0);
    EXPECT_EQ (strip.log, Log()) << "without preparing there is nothing to rebuild";
    EXPECT_EQ (host.latencyChanges, 1);

    strip.prepareToPlay (sampleRate, 512);
    strip.log.clear();
    strip.oversamplingSetting().setValue (16);
    EXPECT_EQ (strip.getLatencySamples(), 52);
    EXPECT_EQ (strip.log[0], "prepare 48000 16 2 256") << "at the rate that was prepared";
    EXPECT_TRUE (strip.wasSuspendedWhilePreparing);
    EXPECT_EQ (host.latencyChanges, 3) << "one for the latency, one for the whole";
    EXPECT_FALSE (strip.isSuspended());

    strip.oversamplingSetting().setValue (8);
    EXPECT_EQ (strip.getLatencySamples(), 52) << "it does not grow with the factor";

    strip.releaseResources();
    strip.log.clear();
    strip.oversamplingSetting().setValue (1);
    EXPECT_EQ (strip.getLatencySamples(), 0);
    EXPECT_EQ (strip.log, Log());
    strip.removeListener (&host);
}

TEST (BlockLoop, GainOnlyStripMultipliesAndNothingElse)
{
    constexpr unsigned seed = 20261121;
    std::mt19937 random (seed);
    constexpr float toleranceAtLevel1 = 1e-6f;

    for (const auto rate : { 44100.0, 48000.0, 88200.0, 96000.0, 176400.0, 192000.0 })
        for (const auto width : { 1, 2 })
        {
            const auto strip = makeBareStrip (width);
            setPlain (*strip, "gain", 3.5f);
            setPlain (*strip, "level", -7.0f);
            setPlain (*strip, "inLevel", -4.0f);
            setPlain (*strip, "outLevel", 2.0f);
            setPlain (*strip, "phase", 1.0f);
            strip->prepareToPlay (rate, 4096);
            const auto gain = -std::pow (10.0f, (3.5f - 7.0f - 4.0f + 2.0f) / 20.0f);

            std::vector<Signal> input;
            for (int c = 0; c < width; ++c)
                input.push_back (noise (20000, seed + static_cast<unsigned> (c)));

            const auto output = process (*strip, input, [&] { return static_cast<int> (random() % 4097); });

            for (std::size_t c = 0; c < input.size(); ++c)
                for (std::size_t i = 0; i < input[c].size(); ++i)
                    ASSERT_NEAR (output[c][i], input[c][i] * gain, toleranceAtLevel1)
                        << "rate " << rate << ", channel " << c << " of " << width << ", sample " << i << ", seed "
                        << seed;
        }
}

TEST (BlockLoop, AStreamCutAnywhereSoundsTheSame)
{
    constexpr unsigned seed = 4;
    std::mt19937 random (seed);

    for (const auto factor : { 1, 2, 4 })
    {
        const auto whole = makeStrip();
        const auto cut = makeStrip();

        for (auto* const strip : { whole.get(), cut.get() })
        {
            strip->oversamplingSetting().setValue (factor);
            strip->analogSetting().setValue (false);

            // Everything that the strip has, at work.
            for (const auto& [id, value] : std::vector<std::pair<const char*, float>> {
                     { "thd", 10.0f },      { "gain", 6.0f },           { "pad", 1.0f },
                     { "unity", 1.0f },     { "highGain", 8.0f },       { "midGain", 0.7f },
                     { "lowFreq", 2.0f },   { "lowGain", 0.6f },        { "highPass", 1.0f },
                     { "compHPF", 120.0f }, { "compLimit", 1.0f },      { "compNiveau", 1.0f },
                     { "compNuke", 1.0f },  { "compThreshold", -9.0f }, { "expMode", 2.0f },
                     { "expHold", 1.0f },   { "expThreshold", 0.0f },   { "compMix", 0.8f },
                     { "phase", 1.0f },     { "level", -3.0f } })
                setPlain (*strip, id, value);

            strip->prepareToPlay (sampleRate, 512);
        }

        const std::vector<Signal> input { noise (9000, 5), noise (9000, 6) };
        const auto expected = process (*whole, input, 9000);
        const auto actual = process (*cut, input, [&] { return static_cast<int> (random() % 700); });
        EXPECT_EQ (actual, expected) << "factor " << factor << ", seed " << seed;
    }
}

TEST (BlockLoop, BadAudioIsHeldAtTheEntryAndForgotten)
{
    const auto strip = makeBareStrip();
    strip->prepareToPlay (sampleRate, 512);

    std::vector<Signal> input { Signal (512, 0.5f), Signal (512, 0.5f) };
    input[0][10] = std::numeric_limits<float>::quiet_NaN();
    input[0][11] = std::numeric_limits<float>::infinity();
    input[0][12] = -1e30f;
    input[0][13] = 999.0f;

    const auto output = process (*strip, input, 512)[0];
    EXPECT_EQ (output[10], 0.0f);
    EXPECT_EQ (output[11], 0.0f);
    EXPECT_FLOAT_EQ (output[12], -1000.0f);
    EXPECT_FLOAT_EQ (output[13], 999.0f);
    EXPECT_FLOAT_EQ (output[14], 0.5f);

    const auto after = process (*strip, { Signal (512, 0.5f), Signal (512, 0.5f) }, 512)[0];
    EXPECT_FLOAT_EQ (after[0], 0.5f);
}

TEST (BlockLoop, ImpulseComesOutAtTheReportedLatencyAtEveryFactor)
{
    for (const auto factor : { 1, 2, 4, 8, 16, 3, 0, 1000000000 })
    {
        const auto strip = makeBareStrip (2, factor);
        strip->prepareToPlay (sampleRate, 256);

        Signal impulse (300);
        impulse[0] = 0.5f;
        const auto output = process (*strip, { impulse, impulse }, 77)[0];
        const auto peak = std::max_element (output.begin(), output.end());
        EXPECT_EQ (peak - output.begin(), strip->getLatencySamples()) << "factor " << factor;
        EXPECT_EQ (strip->getLatencySamples(), factor <= 1 ? 0 : 52);
    }
}

} // namespace tarvik
