// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/StripTestTools.h"

#include <limits>

namespace tarvik
{

using namespace test;

namespace
{
constexpr double sampleRate = 48000.0;

/** What a broken plug-in in front of the strip may send: noise of a level, and one sample in it. */
constexpr std::pair<float, float> badAudio[] = { { 0.0f, 0.0f },
                                                 { 1.0f, 0.0f },
                                                 { 15.85f, 0.0f }, // +24 dBFS
                                                 { 1e-39f, 0.0f },
                                                 { 0.5f, std::numeric_limits<float>::quiet_NaN() },
                                                 { 0.5f, -std::numeric_limits<float>::infinity() } };
} // namespace

/** Random settings, parameters stepped at each block, bad audio on the left and on the left of the side chain. The right
    hears a programme all the while, then both do: with the tolerances linked it is what the left would be had nothing
    happened. What one case leaves in the strip the next would show.

    What may remain after a second is in the compressor's second capacitor. Four blocks fill it through 33 k to 3.5 % of
    the highest voltage, 39 V; in a second it empties through 153 k and the shortest release, 15 k, to 52 %: case after
    case, at most 3.8 % remain (at higher factors, whose times are shorter, less). The first capacitor sees 15 / 168 of
    it, 0.13 V, and the gain element's curve falls by at most 32 % per volt: 4.3 %, so 4.5 % are allowed, and with the
    dynamics out what rounding leaves in the filters.

    While they recover, the levels are a console's, because the compressor's loop is chaotic far above; hold, a staircase,
    is off; and the low cut is not at "0 dB", where a capacitor takes 3.6 s.
*/
TEST (HostileAudio, AnyAudioLeavesTheStripFiniteAndCleanASecondLater)
{
#ifdef __SANITIZE_ADDRESS__
    constexpr int numCases = 500; // each takes twenty times as long
#else
    constexpr int numCases = 2000;
#endif
    constexpr int blockLength = 128;
    constexpr auto second = static_cast<int> (sampleRate);
    std::mt19937 random (41);
    std::vector<std::unique_ptr<Tarvik41Processor>> strips;
    const auto programme = noise (second, 5, 0.03f);

    for (const auto factor : { 1, 2, 4, 8, 16 })
    {
        strips.push_back (makeNoiselessStrip (2, factor, true));
        strips.back()->prepareToPlay (sampleRate, blockLength);
    }

    for (int run = 0; run < numCases; ++run)
    {
        // The high factors cost most and differ least: they get a share of the cases.
        const auto percent = run % 100;
        auto& strip = *strips[percent < 66 ? 0u : percent < 90 ? 1u : percent < 97 ? 2u : percent < 99 ? 3u : 4u];
        const auto kind = random() % std::size (badAudio);
        const auto isIn = random() % 4 != 0;
        SCOPED_TRACE (run);

        const auto play = [&] (const Signal& left, const Signal& right)
        {
            auto output = process (strip, { left, right, left, right }, blockLength);

            for (const auto& channel : output)
                EXPECT_TRUE (allFinite (channel));

            const auto& snapshot = strip.currentSnapshot();
            EXPECT_TRUE (std::isfinite (snapshot.inputMeter + snapshot.outputMeter + snapshot.gainReductionDb));
            return output;
        };

        setRandomly (strip, random);
        setPlain (strip, "TolLink", 1.0f);

        for (int block = 0; block < 4; ++block)
        {
            auto bad = noise (blockLength, random(), badAudio[kind].first);
            bad[blockLength / 2] += badAudio[kind].second;
            play (bad, Signal (programme.begin(), programme.begin() + blockLength));
            const auto number = random();

            for (auto* const p : strip.getParameters())
                if (constexpr auto share = 1.0f / 40; drawFor (*p, number) < share)
                    p->setValueNotifyingHost (p->getValue() > 0.5f ? 0.0f : 1.0f);
        }

        setPlain (strip, { { "TolLink", 1.0f },
                           { "compIn", static_cast<float> (isIn) },
                           { "compRelease", 0.0f },
                           { "expRelease", 0.025f },
                           { "expHold", 0.0f },
                           { "mute", 0.0f },
                           { "gain", 0.0f },
                           { "inLevel", 0.0f },
                           { "compInput", 2.5f },
                           { "compOutput", 2.5f },
                           { "compNuke", 0.0f },
                           { "compNiveau", 0.0f },
                           { "lowFreq", 0.0f } });
        const auto output = play (programme, programme);
        auto difference = 0.0f, level = 0.0f;

        for (auto i = programme.size() - 1024; i < programme.size(); ++i)
        {
            difference = std::max (difference, std::abs (output[0][i] - output[1][i]));
            level = std::max (level, std::abs (output[1][i]));
        }

        EXPECT_LE (difference, level * (isIn ? 0.045f : 2e-5f)) << "kind " << kind;
    }
}

} // namespace tarvik
