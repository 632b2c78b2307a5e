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
    constexpr int stretch = 6000;
    std::mt19937 random (11);

    for (const auto factor : { 1, 2 })
        for (const auto longest : { 10u, 60u, 700u }) // shorter than the delay, about as long, and longer than a slice
        {
            const auto strip = preparedStrip (factor), twin = preparedStrip (factor);
            const auto latency = static_cast<std::size_t> (strip->getLatencySamples());
            auto wet = 1.0;
            std::vector<double> dry (latency); // fades before the delay

            for (unsigned part = 0; part < 5; ++part)
            {
                const auto isBypassed = part % 2 == 1;
                const auto input = noise (stretch, 21 + part, 0.5f);
                const auto playing = firstOf (process (*twin, { input, input }, 512));
                const auto output = process (
                    *strip, { input, input }, [&] { return static_cast<int> (random() % longest); }, isBypassed)[1];

                for (std::size_t i = 0; i < stretch; ++i)
                {
                    wet = std::clamp (wet + (isBypassed ? -1.0 : 1.0) / fadeSamples, 0.0, 1.0);
                    dry.push_back ((1.0 - wet) * static_cast<double> (input[i]));
                    const auto delayed = dry[dry.size() - 1 - latency];

                    // Right after a bypass the samplers have heard nothing of it; and the delayed end of a fade back goes
                    // with the slice.
                    if (isBypassed || (i > 2 * latency && (wet < 1.0 || delayed == 0.0)))
                    {
                        ASSERT_NEAR (static_cast<double> (output[i]), wet * static_cast<double> (playing[i]) + delayed,
                                     3e-5)
                            << "factor " << factor << ", part " << part << ", sample " << i;
                    }
                }
            }
        }
}

TEST (Bypass, LeavesEverySampleAloneAndForgetsTheSideChain)
{
    const auto strip = makeStrip<BareStrip> (2, true);
    setPlain (*strip, "compExtSideChain", 1.0f);
    strip->prepareToPlay (sampleRate, 512);

    for (const auto isBypassed : { false, true })
        process (*strip, std::vector<Signal> (4, noise (6000, 5)), 500, isBypassed);

    EXPECT_NE (strip->sidechainSeen, 0.0f) << "by the last slice of the fade";
    process (*strip, std::vector<Signal> (4, Signal (20)), 20);
    EXPECT_EQ (strip->sidechainSeen, 0.0f) << "of before the bypass";

    strip->oversamplingSetting().setValue (1);
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
    const auto input = noise (3000, 3);
    process (*strip, { input, input }, 500, true); // not to the fade's end

    for (const auto& [factor, latency] : { std::pair (1, 0), { 4, 52 } })
    {
        strip->oversamplingSetting().setValue (factor);
        const auto output = process (*strip, { input, input }, 500, true)[0];
        EXPECT_TRUE (std::equal (output.begin() + latency, output.end(), input.begin())) << factor;
        EXPECT_TRUE (std::all_of (output.begin(), output.begin() + latency, [] (float x) { return x == 0.0f; }));
    }
}

} // namespace tarvik
