// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/BareStrip.h"

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
    BareStrip strip;
    strip.oversamplingSetting().setValue (4);
    strip.prepareToPlay (sampleRate, 1000);
    EXPECT_EQ (strip.takeLog(), (Log { "prepare 48000 4 2 256", "update all", "reset" }));

    process (strip, std::vector<Signal> (4, Signal (344)), 344);
    EXPECT_EQ (strip.takeLog(), (Log { "pre 256", "chunk 256", "chunk 256", "chunk 256", "chunk 256", "post 256",
                                       "pre 88", "chunk 256", "chunk 96", "post 88" }));
    EXPECT_TRUE (strip.flushesToZero);
    volatile float subnormal = 1e-39f;
    EXPECT_NE (subnormal * 2.0f, 0.0f) << "the host's own setting comes back";
}

TEST (BlockLoop, SideChainReachesAStripThatListensAndNeverTheHost)
{
    BareStrip strip;
    strip.oversamplingSetting().setValue (1);
    strip.prepareToPlay (sampleRate, 256);
    const std::vector<Signal> input { Signal (100, 0.1f), Signal (100, 0.2f), Signal (100, 0.3f), Signal (100, 0.4f) };

    // Either switch alone.
    for (const auto& [compressor, gate] : { std::pair (0.0f, 0.0f), { 0.0f, 1.0f }, { 1.0f, 0.0f } })
    {
        setPlain (strip, { { "compExtSideChain", compressor }, { "expExtSideChain", gate } });
        strip.takeLog();
        const auto output = process (strip, input, 100);
        EXPECT_EQ (strip.takeLog().end()[-2], compressor + gate > 0.0f ? "chunk 100 side 2" : "chunk 100");
        EXPECT_FLOAT_EQ (output[0][50], 0.1f);
        EXPECT_EQ (output[2], Signal (100)) << "cleared also when nobody listens";
        EXPECT_EQ (output[3], Signal (100));
    }

    // It passes the calibration and the input gain like the main channels do, and is guarded like them.
    setPlain (strip, "inLevel", -6.0f);
    auto bad = std::vector<Signal> (4, Signal (6000, 0.3f));
    bad[2].back() = std::numeric_limits<float>::quiet_NaN();
    process (strip, bad, 5999);
    EXPECT_EQ (strip.sidechainSeen, 0.0f);
    process (strip, std::vector<Signal> (4, Signal (10, 0.3f)), 10);
    EXPECT_FLOAT_EQ (strip.sidechainSeen, 0.3f * 0.50118723f * 8.70143032f);

    // Switched on again, it begins with what comes in and not with what its sampler heard last.
    strip.oversamplingSetting().setValue (2);
    process (strip, std::vector<Signal> (4, Signal (100, 0.3f)), 100);

    for (const auto isListening : { false, true })
    {
        setPlain (strip, "compExtSideChain", isListening ? 1.0f : 0.0f);
        process (strip, std::vector<Signal> (4, Signal (20)), 20);
    }

    EXPECT_EQ (strip.sidechainSeen, 0.0f);
}

TEST (BlockLoop, LatencyIsTheFactorsAtOnceAndTheHostHearsOfIt)
{
    for (const auto factor : { 1, 2, 4, 8, 16, 3, 0, 1000000000 })
    {
        const auto strip = makeBareStrip (2, factor);
        strip->prepareToPlay (sampleRate, 256);
        const auto latency = factor <= 1 ? 0 : 52;
        EXPECT_EQ (delayOfImpulse (*strip, 77), latency) << "factor " << factor;
        EXPECT_EQ (strip->getLatencySamples(), latency);
    }

    BareStrip strip;
    HostEars host (strip);
    EXPECT_EQ (strip.getLatencySamples(), 52);
    strip.oversamplingSetting().setValue (1);
    EXPECT_EQ (strip.getLatencySamples(), 0);
    EXPECT_EQ (strip.takeLog(), Log()) << "without preparing there is nothing to rebuild";
    strip.prepareToPlay (sampleRate, 512);
    strip.takeLog();
    strip.oversamplingSetting().setValue (16);
    EXPECT_EQ (strip.getLatencySamples(), 52);
    EXPECT_EQ (strip.takeLog()[0], "prepare 48000 16 2 256") << "at the rate that was prepared";
    EXPECT_TRUE (strip.wasSuspendedWhilePreparing);
    EXPECT_EQ (host.heard(), "latency latency all ");
    EXPECT_FALSE (strip.isSuspended());

    strip.releaseResources();
    strip.oversamplingSetting().setValue (1);
    EXPECT_EQ (strip.takeLog(), Log());
}

TEST (BlockLoop, GainsMultiplyAndLevelPotsTakeATenthOfASecond)
{
    for (const auto& [rate, width] : { std::pair (44100.0, 1u), { 192000.0, 2u } })
    {
        const auto strip = makeBareStrip (static_cast<int> (width));
        setPlain (*strip,
                  { { "gain", 3.5f }, { "level", -7.0f }, { "inLevel", -4.0f }, { "outLevel", 2.0f }, { "phase", 1 } });
        strip->prepareToPlay (rate, 4096);
        const auto gain = -std::pow (10.0f, (3.5f - 7.0f - 4.0f + 2.0f) / 20.0f);
        std::vector<Signal> input { noise (9000, 1), noise (9000, 2) };
        input.resize (width);
        const auto output = process (*strip, input, 4097);

        for (std::size_t c = 0; c < width; ++c)
            for (std::size_t i = 0; i < input[c].size(); ++i)
                ASSERT_NEAR (output[c][i], input[c][i] * gain, 1e-6f) << rate << ", channel " << c << ", " << i;

        // Equal decibels in equal times, from the change on.
        for (const auto* const id : { "inLevel", "outLevel" })
        {
            setPlain (*strip, id, plainOf (*strip, id) + 6.0f);
            const auto n = static_cast<std::size_t> (rate / 10.0);
            const auto moved = firstOf (process (*strip, std::vector<Signal> (width, Signal (n + 100, 1.0f)), 512));

            for (const auto i : { n / 4, n - 2, n + 50 })
                EXPECT_NEAR (20.0f * std::log10 (moved[i] / moved[0]),
                             6.0f * std::min (1.0f, static_cast<float> (i) / static_cast<float> (n)), 2e-3f)
                    << id << " after " << i << " of " << n;
        }
    }
}

TEST (BlockLoop, BadAudioMissingChannelsAndLongBlocksAreHeldAtTheEntry)
{
    const auto strip = makeBareStrip();
    strip->prepareToPlay (sampleRate, 16);
    const Signal good (512, 0.5f);
    auto bad = good;
    bad[10] = std::numeric_limits<float>::quiet_NaN();
    bad[11] = std::numeric_limits<float>::infinity();
    bad[12] = -1e30f;
    bad[13] = 999.0f;

    const auto output = process (*strip, { bad, good }, 512)[0];
    EXPECT_EQ (output[10], 0.0f);
    EXPECT_EQ (output[11], 0.0f);
    EXPECT_FLOAT_EQ (output[12], -1000.0f);
    EXPECT_FLOAT_EQ (output[13], 999.0f);
    setPlain (*strip, "compExtSideChain", 1.0f);

    for (std::size_t channels = 1; channels <= 4; ++channels)
        process (*strip, std::vector<Signal> (channels, noise (600, 2)), 300);

    // What stands for a channel that is missing is silent: nothing comes round in it.
    const auto driven = makeNoiselessStrip (2, 1);
    setPlain (*driven, "gain", 48.0f);
    driven->prepareToPlay (sampleRate, 256);
    process (*driven, { Signal (48000) }, 256);
    EXPECT_LT (driven->currentSnapshot().outputMeter, 0.1f);

    juce::AudioBuffer<float> none (0, 64);
    juce::MidiBuffer midi;
    strip->processBlock (none, midi);
    strip->processBlockBypassed (none, midi);
    strip->releaseResources();
    EXPECT_EQ (process (*strip, { good, good }, 64)[0], Signal (512)) << "unprepared it is silent";
}

TEST (BlockLoop, ChangesOnTheAudioThreadMakeOneUpdateBeforeTheirBlock)
{
    BareStrip strip;
    strip.prepareToPlay (sampleRate, 512);
    process (strip, std::vector<Signal> (4, Signal (64)), 64);
    strip.takeLog();

    for (auto* const changed : strip.getParameters())
        changed->setValueNotifyingHost (0.4f);

    EXPECT_EQ (strip.takeLog(), Log());
    process (strip, std::vector<Signal> (4, Signal (512)), 512);
    const auto log = strip.takeLog();
    EXPECT_EQ (log.front(), "update");
    EXPECT_EQ (std::count (log.begin(), log.end(), "update"), 1);
    std::jthread ([&] { parameter (strip, "gain").setValueNotifyingHost (0.6f); }).join();
    EXPECT_EQ (strip.takeLog(), Log { "update" }) << "any other thread works at once";
}

TEST (BlockLoop, AChangeDuringAnUpdateIsHeardInTheNextBlock)
{
    const auto strip = makeBareStrip();
    strip->prepareToPlay (sampleRate, 512);

    // As from another thread: the update under way has read its fields.
    strip->afterUpdate = [&] { setPlain (*strip, { { "level", -6.0f }, { "outLevel", -3.0f } }); };
    setPlain (*strip, "gain", 3.0f);
    EXPECT_NEAR (process (*strip, { Signal (9600, 0.5f), Signal (9600, 0.5f) }, 64)[0].back(),
                 0.5f * std::pow (10.0f, -6.0f / 20.0f), 1e-6f);
}

/** What is changed while it runs ends where a strip begins that is prepared with it, on both sides. */
TEST (BlockLoop, ChangesUnderWayEndWhereAPreparedStripBegins)
{
    std::mt19937 random (8);

    for (int run = 0; run < 12; ++run)
    {
        const auto moved = makeNoiselessStrip (2, 1), prepared = makeNoiselessStrip (2, 1);
        const auto& wanted = prepared->currentSnapshot();
        setRandomly (*prepared, random);
        setPlain (*prepared, { { "mute", 0.0f }, { "level", 0.0f }, { "TolLink", run % 2 == 0 ? 0.0f : 1.0f } });
        prepared->prepareToPlay (sampleRate, 512);

        if (run % 3 == 0) // all but the console channel is there from the start
        {
            moved->applySnapshot (wanted);
            setPlain (*moved, "TolChannel", static_cast<float> (33 - wanted.tolChannel));
        }

        moved->prepareToPlay (sampleRate, 512);
        moved->applySnapshot (wanted);
        process (*moved, std::vector<Signal> (2, Signal (96000)), 512);
        const std::vector<Signal> sound (2, noise (48000, 4, 0.1f));
        const auto heard = process (*moved, sound, 512), expected = process (*prepared, sound, 512);

        for (std::size_t side = 0; side < 2; ++side)
        {
            auto rest = heard[side];
            std::transform (rest.begin(), rest.end(), expected[side].begin(), rest.begin(), std::minus());
            EXPECT_LT (rmsOfEnd (rest, 24000), 1e-3 * rmsOfEnd (expected[side], 24000)) << run << ", " << side;
        }
    }
}

TEST (BlockLoop, AStreamCutAnywhereSoundsTheSameWhileAParameterMoves)
{
    std::mt19937 random (4);

    // From change to change: steady automation, and gaps that end in a crossfade, in its tail, at its end, and at rest.
    constexpr std::array gaps { 1024, 1024, 6000, 4800, 5300, 14000 };

    for (const auto factor : { 1, 2, 4 })
        for (int index = 0; index < numParameters; ++index)
        {
            const auto width = 1 + (index + factor / 2) % 2;
            const auto whole = makeNoiselessStrip (width, factor, true), cut = makeNoiselessStrip (width, factor, true);

            for (auto* const strip : { whole.get(), cut.get() })
            {
                // Everything that the strip has, at work.
                setPlain (*strip, { { "thd", 10.0f },      { "gain", 6.0f },           { "pad", 1.0f },
                                    { "unity", 1.0f },     { "highGain", 8.0f },       { "midGain", 0.7f },
                                    { "lowFreq", 2.0f },   { "lowGain", 0.6f },        { "highPass", 1.0f },
                                    { "compHPF", 120.0f }, { "compLimit", 1.0f },      { "compNiveau", 1.0f },
                                    { "compNuke", 1.0f },  { "compThreshold", -9.0f }, { "expMode", 2.0f },
                                    { "expHold", 1.0f },   { "expThreshold", 0.0f },   { "compMix", 0.8f },
                                    { "phase", 1.0f },     { "level", -3.0f },         { "compExtSideChain", 1.0f } });
                strip->prepareToPlay (sampleRate, 512);
            }

            for (const auto gap : gaps)
            {
                const auto place = static_cast<float> (random() % 1001) / 1000.0f;
                whole->getParameters()[index]->setValueNotifyingHost (place);
                cut->getParameters()[index]->setValueNotifyingHost (place);
                std::vector<Signal> input;

                for (int c = 0; c < 2 * width; ++c)
                    input.push_back (noise (gap, random()));

                ASSERT_EQ (process (*cut, input, [&] { return static_cast<int> (random() % 700); }),
                           process (*whole, input, gap))
                    << parameterRow (index).id << " to " << place << ", factor " << factor << ", " << width << " wide";
            }
        }
}

} // namespace tarvik
