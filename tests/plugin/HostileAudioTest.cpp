// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/StripTestTools.h"

#include <limits>

namespace tarvik
{

using namespace test;

namespace
{
constexpr double sampleRate = 48000.0;

/** What a broken plug-in in front of the strip may send. */
enum class Badness
{
    silence,
    fullScale,
    plus24Db,
    oneNan,
    oneInfinity,
    subnormals,
    kinds
};

Signal badSignal (Badness kind, int numSamples, unsigned seed)
{
    switch (kind)
    {
        case Badness::fullScale:
            return noise (numSamples, seed, 1.0f);
        case Badness::plus24Db:
            return noise (numSamples, seed, 15.85f);
        case Badness::subnormals:
            return noise (numSamples, seed, 1e-39f);
        case Badness::oneNan:
        case Badness::oneInfinity:
        {
            auto signal = noise (numSamples, seed, 0.5f);
            signal[signal.size() / 2] = kind == Badness::oneNan ? std::numeric_limits<float>::quiet_NaN()
                                                                : -std::numeric_limits<float>::infinity();
            return signal;
        }
        case Badness::silence:
        case Badness::kinds:
            break;
    }

    return Signal (static_cast<std::size_t> (numSamples));
}

void randomSettings (Tarvik41Processor& strip, std::mt19937& random)
{
    for (auto* const p : strip.getParameters())
        p->setValueNotifyingHost (static_cast<float> (random() % 1001) / 1000.0f);
}
} // namespace

/** Random settings on a random strip, bad audio on main channels and side chain, a parameter stepped at each block: the
    output stays finite on every channel. The strip is not made new between cases, so what one leaves behind the next would
    show.
*/
TEST (HostileAudio, NothingThatComesInBreaksTheStrip)
{
    constexpr unsigned seed = 41;
    constexpr int numCases = 2000;
    constexpr int blockLength = 256;
    std::mt19937 random (seed);
    std::vector<std::unique_ptr<Tarvik41Processor>> strips;

    for (const auto factor : { 1, 2, 4, 8, 16 })
    {
        strips.push_back (makeStrip (factor == 4 ? 1 : 2, true));
        strips.back()->oversamplingSetting().setValue (factor);
        strips.back()->analogSetting().setValue (false);
    }

    for (int run = 0; run < numCases; ++run)
    {
        // The high factors cost most and differ least: they get a share of the cases.
        const auto index = run % 10 < 4 ? 0u : run % 10 < 7 ? 1u : run % 10 < 8 ? 2u : run % 10 < 9 ? 3u : 4u;
        auto& strip = *strips[index];
        const auto kind = static_cast<Badness> (random() % static_cast<unsigned> (Badness::kinds));
        const auto channels = static_cast<std::size_t> (strip.getTotalNumInputChannels());

        randomSettings (strip, random);

        if (run < 10)
            strip.prepareToPlay (sampleRate, blockLength);

        for (int block = 0; block < 4; ++block)
        {
            const auto output = process (
                strip, std::vector<Signal> (channels, badSignal (kind, blockLength, static_cast<unsigned> (random()))),
                blockLength);

            for (const auto& channel : output)
                for (const auto sample : channel)
                    ASSERT_TRUE (std::isfinite (sample)) << "case " << run << ", seed " << seed;

            auto* const p = strip.getParameters()[static_cast<int> (random() % 42)];
            p->setValueNotifyingHost (p->getValue() > 0.5f ? 0.0f : 1.0f);
        }
    }
}

TEST (HostileAudio, ASecondLaterTheStripSoundsAsIfNothingHadBeen)
{
    std::mt19937 random (42);

    for (const auto kind : { Badness::plus24Db, Badness::oneNan, Badness::oneInfinity })
        for (const auto factor : { 1, 2 })
        {
            const auto bad = makeStrip();
            const auto clean = makeStrip();

            for (auto* const strip : { bad.get(), clean.get() })
            {
                strip->oversamplingSetting().setValue (factor);
                strip->analogSetting().setValue (false);
                setPlain (*strip, "compRelease", 0.0f);
                setPlain (*strip, "compThreshold", -6.0f);
                setPlain (*strip, "lowGain", 0.7f);
                setPlain (*strip, "lowFreq", 3.0f);
                strip->prepareToPlay (sampleRate, 256);
            }

            process (*bad, { badSignal (kind, 2048, 1), badSignal (kind, 2048, 2) }, 256);
            process (*clean, { Signal (2048), Signal (2048) }, 256);

            const auto second = static_cast<int> (sampleRate);
            process (*bad, { Signal (static_cast<std::size_t> (second)), Signal (static_cast<std::size_t> (second)) },
                     256);
            process (*clean, { Signal (static_cast<std::size_t> (second)), Signal (static_cast<std::size_t> (second)) },
                     256);

            const std::vector<Signal> music { noise (4800, 5, 0.1f), noise (4800, 6, 0.1f) };
            const auto after = process (*bad, music, 256)[0];
            const auto expected = process (*clean, music, 256)[0];
            float difference = 0.0f;
            float level = 0.0f;

            for (std::size_t i = 0; i < after.size(); ++i)
            {
                difference = std::max (difference, std::abs (after[i] - expected[i]));
                level = std::max (level, std::abs (expected[i]));
            }

            // The slow capacitor of the release may remember a little; -30 dB is far below what it would take to hear.
            EXPECT_LT (difference, 0.03f * level) << "kind " << static_cast<int> (kind) << ", factor " << factor;
        }
}

TEST (HostileAudio, SilenceBehindASignalStaysFreeOfSubnormals)
{
    const auto strip = makeStrip();
    strip->analogSetting().setValue (false);
    strip->prepareToPlay (sampleRate, 512);
    process (*strip, { noise (4800, 1, 0.5f), noise (4800, 2, 0.5f) }, 512);

    for (int second = 0; second < 20; ++second)
        for (const auto sample : firstOf (process (*strip, { Signal (48000), Signal (48000) }, 512)))
            ASSERT_TRUE (sample == 0.0f || std::isnormal (sample)) << "second " << second;
}

} // namespace tarvik
