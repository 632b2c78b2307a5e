// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/BareStrip.h"

namespace tarvik
{

using namespace test;

namespace
{
constexpr double sampleRate = 48000.0;
constexpr double fadeSamples = 4800.0;

std::unique_ptr<BareStrip> preparedStrip (int factor)
{
    auto strip = makeBareStrip (2, factor);
    setPlain (*strip, { { "gain", 6.0f }, { "inLevel", -4.0f }, { "outLevel", 7.0f } });
    strip->prepareToPlay (sampleRate, 512);
    return strip;
}
} // namespace

/** Twice out and in again, against the strip's own sound and the input as it came, mixed by hand. */
TEST (Bypass, EveryFadeMixesTheStripWithTheUntouchedDelayedInput)
{
    std::mt19937 random (11);

    for (const auto factor : { 1, 2 })
        for (const auto longest : { 10u, 60u, 700u }) // shorter than the delay, about as long, and longer than a slice
        {
            const auto strip = preparedStrip (factor), twin = preparedStrip (factor);
            const auto latency = static_cast<std::size_t> (strip->getLatencySamples());
            constexpr std::size_t stretch = 6000;
            const auto input = noise (5 * stretch, 21, 0.5f);
            const auto playing = firstOf (process (*twin, { input, input }, 512));
            const auto length = [&] { return static_cast<int> (random() % longest); };
            auto wet = 1.0;
            std::vector<double> dry (latency); // fades before the delay

            for (std::size_t start = 0; start < input.size(); start += stretch)
            {
                const auto isBypassed = start / stretch % 2 == 1;
                const Signal part (input.begin() + static_cast<std::ptrdiff_t> (start),
                                   input.begin() + static_cast<std::ptrdiff_t> (start + stretch));
                const auto output = process (*strip, { part, part }, length, isBypassed)[1];

                for (std::size_t i = 0; i < stretch; ++i)
                {
                    wet = std::clamp (wet + (isBypassed ? -1.0 : 1.0) / fadeSamples, 0.0, 1.0);
                    dry.push_back ((1.0 - wet) * static_cast<double> (input[start + i]));

                    // Right after a bypass the samplers have heard nothing of it; and the delayed end of a fade back goes
                    // with the slice.
                    if (isBypassed || (i > 2 * latency && (wet < 1.0 || dry[start + i] == 0.0)))
                    {
                        ASSERT_NEAR (static_cast<double> (output[i]),
                                     wet * static_cast<double> (playing[start + i]) + dry[start + i], 3e-5)
                            << "factor " << factor << ", sample " << start + i;
                    }
                }
            }
        }
}

TEST (Bypass, LeavesEverySampleAloneAndTheSideChainToo)
{
    const auto strip = makeStrip<BareStrip> (2, true);
    strip->oversamplingSetting().setValue (1);
    setPlain (*strip, "compExtSideChain", 1.0f);
    strip->prepareToPlay (sampleRate, 512);
    process (*strip, std::vector<Signal> (4, Signal (6000)), 500, true);
    strip->takeLog();

    const std::vector<Signal> input (4, Signal (300, 5000.0f)); // beyond what the strip would let in
    EXPECT_EQ (process (*strip, input, 300, true), input);
    EXPECT_EQ (strip->takeLog(),
               (std::vector<std::string> { "bypassed 256 side 2 factor 1", "bypassed 44 side 2 factor 1" }));
}

TEST (Bypass, FollowsTheFactorAndForgetsItsAudioWhenPreparedAgain)
{
    const auto strip = preparedStrip (2);
    const auto input = noise (6000, 3);
    process (*strip, { input, input }, 500, true);

    for (const auto factor : { 1, 4 })
    {
        strip->oversamplingSetting().setValue (factor);
        const std::size_t latency = factor == 1 ? 0 : 52;
        const auto output = process (*strip, { input, input }, 500, true)[0];
        EXPECT_TRUE (std::equal (output.begin() + static_cast<std::ptrdiff_t> (latency), output.end(), input.begin()))
            << factor;
        EXPECT_EQ (Signal (output.begin(), output.begin() + static_cast<std::ptrdiff_t> (latency)), Signal (latency));
    }
}

TEST (Bypass, ASideChainHeardBeforeItIsForgotten)
{
    const auto strip = makeStrip<BareStrip> (2, true);
    setPlain (*strip, "compExtSideChain", 1.0f);
    strip->prepareToPlay (sampleRate, 512);

    for (const auto isBypassed : { false, true })
        process (*strip, std::vector<Signal> (4, noise (6000, 5)), 500, isBypassed);

    process (*strip, std::vector<Signal> (4, Signal (20)), 20);
    EXPECT_EQ (strip->sidechainSeen, 0.0f);
}

TEST (Bypass, ABlockOfNoSamplesAlreadyTurnsTheFade)
{
    const auto strip = preparedStrip (1);
    juce::AudioBuffer<float> empty (2, 0);
    juce::MidiBuffer midi;
    const Signal half (2400, 0.5f);
    const auto gain = std::pow (10.0f, (6.0f - 4.0f + 7.0f) / 20.0f);

    process (*strip, { half, half }, 2400, true); // half of the way out: the wet share is 0.5
    strip->processBlock (empty, midi);            // begins the way back in
    strip->processBlockBypassed (empty, midi);    // and out again: a whole fade from here
    EXPECT_NEAR (process (*strip, { half, half }, 2400, true)[0].back(), 0.5f * (0.25f * gain + 0.75f), 1e-4f);
}

} // namespace tarvik
