// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/Polyphase.h"

#include "PlainPolyphase.h"
#include "dsp/InstructionSets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace tarvik
{
namespace
{
using Samples = std::vector<float>;

// The plug-in's factors, and some whose phases fill no vector evenly.
constexpr int factors[] = { 2, 3, 4, 5, 6, 8, 12, 15, 16 };

// Noise at level 1.
Samples noise (int numSamples)
{
    std::mt19937 engine (1);
    std::uniform_real_distribution<float> level (-1.0f, 1.0f);
    Samples samples (static_cast<std::size_t> (numSamples));
    std::generate (samples.begin(), samples.end(), [&] { return level (engine); });
    return samples;
}

Samples runUp (PolyphaseChannel& channel, int factor, const Samples& in)
{
    Samples out (in.size() * static_cast<std::size_t> (factor));
    channel.up (in.data(), out.data(), static_cast<int> (in.size()));
    return out;
}

Samples runDown (PolyphaseChannel& channel, int factor, const Samples& in)
{
    Samples out (in.size() / static_cast<std::size_t> (factor));
    channel.down (in.data(), out.data(), static_cast<int> (out.size()));
    return out;
}

float largestDifference (const Samples& samples, const std::vector<double>& expected)
{
    double largest = samples.size() == expected.size() ? 0.0 : 1.0;

    for (std::size_t i = 0; i < expected.size(); ++i)
        largest = std::max (largest, std::abs (static_cast<double> (samples[i]) - expected[i]));

    return static_cast<float> (largest);
}

double sumOf (const Samples& taps) { return std::accumulate (taps.begin(), taps.end(), 0.0); }

// Gain of the filter at a frequency in cycles per sample of the high rate, dB.
double gainDb (const Samples& taps, double frequency)
{
    std::complex<double> sum;

    for (std::size_t n = 0; n < taps.size(); ++n)
        sum += static_cast<double> (taps[n]) * std::polar (1.0, -2.0 * std::numbers::pi * frequency * double (n));

    return 20.0 * std::log10 (std::abs (sum));
}
} // namespace

TEST (PolyphaseDesign, FilterIsFlatBelowAndQuietAboveTheNyquistFrequencyOfTheBaseRate)
{
    for (const auto factor : factors)
    {
        SCOPED_TRACE (factor);
        const auto taps = designPolyphaseFilter (factor);
        ASSERT_EQ (taps.size(), static_cast<std::size_t> (52 * factor + 1));
        EXPECT_TRUE (std::equal (taps.begin(), taps.end(), taps.rbegin()));

        // Frequencies in units of the base rate, so that the same figures hold for every factor.
        EXPECT_NEAR (gainDb (taps, 0.40 / factor), 0.0, 0.01);
        EXPECT_NEAR (gainDb (taps, 0.44 / factor), -0.05, 0.002);

        for (auto frequency = 0.5; frequency <= 0.5 * factor; frequency += 0.003)
            ASSERT_LT (gainDb (taps, frequency / factor), -53.0) << frequency;
    }
}

TEST (PolyphaseDesign, GainIsTheSquareOfTheUnscaledSum)
{
    for (const auto factor : factors)
    {
        const auto middle = 26 * factor;
        const auto attenuationDb = -20.0 * std::log10 (0.002);
        const auto shape = 0.1102 * (attenuationDb - 8.7);
        const auto width = (attenuationDb - 7.95) / (2.285 * 2.0 * middle);
        const auto cutoff = 0.5 / factor - 0.5 * width / (2.0 * std::numbers::pi);
        auto sum = 2.0 * cutoff;

        for (int k = 1; k <= middle; ++k)
            sum += 2.0 * std::sin (2.0 * std::numbers::pi * cutoff * k) / (std::numbers::pi * k)
                   * std::cyl_bessel_i (0.0, shape * std::sqrt (1.0 - std::pow (double (k) / middle, 2.0)))
                   / std::cyl_bessel_i (0.0, shape);

        EXPECT_NEAR (sumOf (designPolyphaseFilter (factor)), sum * sum, 2.0e-6) << factor;
    }
}

TEST (Polyphase, ImpulseComesBack52SamplesLater)
{
    for (const auto factor : factors)
    {
        SCOPED_TRACE (factor);
        PolyphaseChannel channel;
        channel.setup (factor);
        Samples impulse (400);
        impulse[100] = 1.0f;

        const auto out = runDown (channel, factor, runUp (channel, factor, impulse));
        const auto gain = static_cast<float> (sumOf (designPolyphaseFilter (factor)));
        EXPECT_NEAR (sumOf (out), gain * gain, 2.0e-3);

        for (std::size_t i = 1; i <= 152; ++i)
            ASSERT_NEAR (out[152 - i], out[152 + i], 1.0e-7f) << i; // symmetric about this very sample

        EXPECT_EQ (std::max_element (out.begin(), out.end()), out.begin() + 100 + Polyphase::latencySamples);
    }
}

TEST (Polyphase, EveryInstructionSetAgreesWithThePlainForm)
{
    for (const auto set : supportedInstructionSets())
        for (const auto factor : factors)
        {
            SCOPED_TRACE (std::string (set.name) + ", factor " + std::to_string (factor));
            const ScopedInstructionSet scope (set);
            const auto taps = designPolyphaseFilter (factor);
            PolyphaseChannel channel;
            channel.setup (factor);

            const auto base = noise (777);
            EXPECT_LT (largestDifference (runUp (channel, factor, base), plain::up (taps, factor, base)), 1.0e-6f);

            const auto high = noise (777 * factor);
            EXPECT_LT (largestDifference (runDown (channel, factor, high), plain::down (taps, factor, high)), 1.0e-6f);
        }
}

TEST (Polyphase, CuttingIntoBlocksChangesNoBit)
{
    constexpr int numSamples = 1500;
    constexpr int blocks[] = { 1, 2, 3, 0, 256, 5, 64, 7, 23, 1, 96, 257, 13, 441, 1, 24 };

    for (const auto set : supportedInstructionSets())
        for (const auto factor : factors)
        {
            SCOPED_TRACE (std::string (set.name) + ", factor " + std::to_string (factor));
            const ScopedInstructionSet scope (set);
            PolyphaseChannel whole, cut;
            whole.setup (factor);
            cut.setup (factor);

            const auto base = noise (numSamples);
            const auto high = noise (numSamples * factor);
            Samples baseOut (base.size()), highOut (high.size());

            for (int pos = 0, i = 0; pos < numSamples; ++i)
            {
                const auto n = std::min (blocks[i % 16], numSamples - pos);
                cut.up (base.data() + pos, highOut.data() + pos * factor, n);
                cut.down (high.data() + pos * factor, baseOut.data() + pos, n);
                pos += n;
            }

            EXPECT_EQ (highOut, runUp (whole, factor, base));
            EXPECT_EQ (baseOut, runDown (whole, factor, high));
        }
}

TEST (Polyphase, SetupAndResetForgetTheSignal)
{
    for (const auto factor : factors)
    {
        Polyphase sampler;
        sampler.setup (1, factor);
        const auto base = noise (101);
        const auto high = noise (101 * factor);
        const auto f = static_cast<std::size_t> (factor);

        const auto run = [&]
        {
            Samples out (high.size() + base.size());
            sampler.up (0, base.data(), out.data(), 101);
            sampler.down (0, high.data(), out.data() + 101 * f, 101);
            return out;
        };

        const auto fresh = run();
        EXPECT_NE (run(), fresh);
        sampler.reset();
        EXPECT_EQ (run(), fresh);
        sampler.setup (1, factor);
        EXPECT_EQ (run(), fresh);
    }
}

TEST (Polyphase, ChannelsFollowTheSetupAndStayApart)
{
    Polyphase sampler;
    sampler.setup (3, 4);
    EXPECT_EQ (sampler.getNumChannels(), 3);
    EXPECT_EQ (sampler.getFactor(), 4);

    const auto in = noise (64);
    Samples loud (256), quiet (256, 1.0f);
    sampler.up (0, in.data(), loud.data(), 64);
    sampler.up (1, Samples (64).data(), quiet.data(), 64);
    EXPECT_EQ (quiet, Samples (256));

    sampler.setup (1, 2);
    EXPECT_EQ (sampler.getNumChannels(), 1);
    EXPECT_EQ (sampler.getFactor(), 2);

    // Filters that were there are gone again: a copy, also onto itself.
    for (const auto factor : { 1, 0 })
    {
        sampler.setup (1, factor);
        Samples out (64), same = in;
        sampler.up (0, in.data(), out.data(), 64);
        sampler.down (0, same.data(), same.data(), 64);
        EXPECT_EQ (out, in);
        EXPECT_EQ (same, in);
    }
}
} // namespace tarvik
