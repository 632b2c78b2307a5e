// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/BareStrip.h"

namespace tarvik
{

using namespace test;

namespace
{
constexpr double sampleRate = 48000.0;
constexpr int fadeSamples = 4800;
constexpr float gain = 1.99526231f; // 6 dB

std::unique_ptr<BareStrip> preparedStrip (int factor)
{
    auto strip = makeBareStrip (2, factor);
    setPlain (*strip, "gain", 6.0f);
    strip->prepareToPlay (sampleRate, 512);
    return strip;
}
} // namespace

TEST (Bypass, FadesIn100MillisecondsAndThenDelaysByTheLatencyAloneHoweverTheStreamIsCut)
{
    std::mt19937 random (11);

    for (const auto factor : { 1, 2 })
        for (const auto longest : { 10u, 60u, 700u }) // shorter than the delay, about as long, and longer than a slice
        {
            const auto strip = preparedStrip (factor);
            const auto latency = static_cast<std::size_t> (strip->getLatencySamples());
            const auto input = noise (3 * fadeSamples, 21);
            process (*strip, { noise (2000, 20), noise (2000, 20) }, 512);

            const auto output = process (
                *strip, { input, input }, [&] { return static_cast<int> (random() % longest); }, true)[0];

            // The strip runs on to the end of the block in which the fade ends.
            for (std::size_t i = fadeSamples + 700; i < output.size(); ++i)
                ASSERT_NEAR (output[i], input[i - latency], 1e-6f) << "factor " << factor << ", sample " << i;

            if (factor == 1)
            {
                EXPECT_NEAR (output[2399], input[2399] * (0.5f * gain + 0.5f), 1e-5f) << "half way through the fade";
            }
        }
}

TEST (Bypass, NothingIsTouchedInFullBypassAndTheStripStandsStill)
{
    const auto strip = preparedStrip (1);
    process (*strip, { Signal (6000), Signal (6000) }, 500, true);

    const Signal input (600, 5000.0f); // beyond what the strip would let in
    EXPECT_EQ (process (*strip, { input, input }, 300, true)[1], input);
}

TEST (Bypass, ComesAndGoesWithoutAStepOrAnEchoOfTheLastFade)
{
    const auto strip = preparedStrip (2);
    constexpr double hz = 100.0;
    constexpr std::size_t stretch = 9600, whole = 6 * stretch;
    const auto input = sine (hz, 0.5, sampleRate, whole / sampleRate);
    Signal all;

    for (std::size_t start = 0; start < whole; start += stretch)
    {
        const Signal part (input.begin() + static_cast<std::ptrdiff_t> (start),
                           input.begin() + static_cast<std::ptrdiff_t> (start + stretch));
        const auto output = firstOf (process (*strip, { part, part }, 240, start / stretch % 2 == 1));
        all.insert (all.end(), output.begin(), output.end());
    }

    // A sine of 0.5 at twice the gain moves by 2 pi f / fs per sample; the fade adds 1 / 4800 of the difference. In
    // front of it is the start behind an empty sampler.
    const auto bound = static_cast<float> (juce::MathConstants<double>::twoPi * hz / sampleRate) + 1.0f / fadeSamples;

    for (std::size_t i = 200; i < all.size(); ++i)
        ASSERT_LT (std::abs (all[i] - all[i - 1]), 1.1f * bound) << i;

    // Silence through a new bypass must stay silence: the rows of the last fade are gone.
    const Signal silence (stretch);
    process (*strip, { silence, silence }, 240);
    EXPECT_EQ (process (*strip, { silence, silence }, 240, true)[0], silence);
}

TEST (Bypass, ABlockOfNoSamplesAlreadyTurnsTheFade)
{
    const auto strip = preparedStrip (1);
    juce::AudioBuffer<float> empty (2, 0);
    juce::MidiBuffer midi;
    const Signal half (2400, 0.5f);

    process (*strip, { half, half }, 2400, true); // half of the way out: the wet share is 0.5
    strip->processBlock (empty, midi);            // begins the way back in
    strip->processBlockBypassed (empty, midi);    // and out again: a whole fade from here
    EXPECT_NEAR (process (*strip, { half, half }, 2400, true)[0].back(), 0.5f * (0.25f * gain + 0.75f), 1e-4f);
}

} // namespace tarvik
