// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/BareStrip.h"
#include "tests/support/StripTestTools.h"

namespace tarvik
{

using namespace test;

namespace
{
constexpr double sampleRate = 48000.0;
constexpr int fadeSamples = 4800;

std::unique_ptr<BareStrip> preparedStrip (int factor)
{
    auto strip = makeBareStrip (2, factor);
    setPlain (*strip, "gain", 6.0f);
    strip->prepareToPlay (sampleRate, 512);
    return strip;
}

float largestStep (const Signal& signal)
{
    float step = 0.0f;

    for (std::size_t i = 1; i < signal.size(); ++i)
        step = std::max (step, std::abs (signal[i] - signal[i - 1]));

    return step;
}

Signal sine (int numSamples, double hz, int start = 0)
{
    Signal signal (static_cast<std::size_t> (numSamples));

    for (int i = 0; i < numSamples; ++i)
        signal[static_cast<std::size_t> (i)] =
            static_cast<float> (0.5 * std::sin (juce::MathConstants<double>::twoPi * hz * (start + i) / sampleRate));

    return signal;
}
} // namespace

TEST (Bypass, FadesIn100MillisecondsAndThenDelaysByTheLatencyAlone)
{
    for (const auto factor : { 1, 2 })
    {
        const auto strip = preparedStrip (factor);
        const auto latency = static_cast<std::size_t> (strip->getLatencySamples());
        const auto input = noise (3 * fadeSamples, 21);
        process (*strip, { noise (2000, 20), noise (2000, 20) }, 512);

        const auto output = process (*strip, { input, input }, 500, true)[0];

        // The strip runs on to the end of the block in which the fade ends, and the dry path is its delayed input.
        for (std::size_t i = fadeSamples + 52; i < output.size(); ++i)
            ASSERT_NEAR (output[i], input[i - latency], 1e-6f) << "factor " << factor << ", sample " << i;

        if (factor == 1)
        {
            const auto gain = std::pow (10.0f, 6.0f / 20.0f);
            const auto wet = 1.0f - 2400.0f / fadeSamples;
            EXPECT_NEAR (output[2399], input[2399] * (gain * wet + (1.0f - wet)), 1e-5f) << "half way through the fade";
        }
    }
}

TEST (Bypass, NothingIsTouchedInFullBypassAndTheStripStandsStill)
{
    const auto strip = preparedStrip (1);
    process (*strip, { Signal (6000), Signal (6000) }, 500, true);

    Signal input (600, 5000.0f); // beyond what the strip would let in
    const auto output = process (*strip, { input, input }, 300, true)[1];
    EXPECT_EQ (output, input);
}

TEST (Bypass, ComesAndGoesWithoutAStepOrAnEchoOfTheLastFade)
{
    const auto strip = preparedStrip (2);
    constexpr double hz = 100.0;
    constexpr int chunk = 9600;
    Signal all;

    for (int part = 0; part < 6; ++part)
    {
        const auto input = sine (chunk, hz, part * chunk);
        const auto output = process (*strip, { input, input }, 240, part % 2 == 1)[0];
        all.insert (all.end(), output.begin(), output.end());
    }

    // A sine of 0.5 at twice the gain moves by 2 pi f / fs per sample; the fade adds 1 / 4800 of the difference.
    const auto bound = static_cast<float> (juce::MathConstants<double>::twoPi * hz / sampleRate) + 1.0f / fadeSamples;
    all.erase (all.begin(), all.begin() + 200); // the start of the very first sine behind an empty sampler
    EXPECT_LT (largestStep (all), 1.1f * bound);

    // Silence through a new bypass must stay silence: the rows of the last fade are gone.
    process (*strip, { Signal (chunk), Signal (chunk) }, 240);
    const auto silent = process (*strip, { Signal (chunk), Signal (chunk) }, 240, true)[0];
    EXPECT_EQ (silent, Signal (chunk));
}

TEST (Bypass, ABlockOfNoSamplesAlreadyTurnsTheFade)
{
    const auto strip = preparedStrip (1);
    const auto gain = std::pow (10.0f, 6.0f / 20.0f);
    juce::AudioBuffer<float> empty (2, 0);
    juce::MidiBuffer midi;
    const Signal half (2400, 0.5f);

    process (*strip, { half, half }, 2400, true); // half of the way out: the wet share is 0.5
    strip->processBlock (empty, midi);            // begins the way back in
    strip->processBlockBypassed (empty, midi);    // and out again: a whole fade from here

    const auto output = process (*strip, { half, half }, 2400, true)[0];
    EXPECT_NEAR (output.back(), 0.5f * (0.25f * gain + 0.75f), 1e-4f);
}

} // namespace tarvik
