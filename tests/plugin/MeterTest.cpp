// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/StripTestTools.h"

namespace tarvik
{

using namespace test;

TEST (Meters, NeedlesOfTheRunningStripStandAt0VuFor18DbBelowFullScale)
{
    for (const auto& [rate, factor] : { std::pair (44100.0, 1), { 48000.0, 2 }, { 192000.0, 1 } })
    {
        const auto strip = makeNoiselessStrip (2, factor);
        setPlain (*strip, { { "compIn", 0.0f }, { "equalizer", 0.0f }, { "level", -6.0f } });
        strip->prepareToPlay (rate, 512);
        const auto tone =
            sine (997.0, std::pow (10.0, -18.0 / 20.0), rate, 1.5); // not a whole number of samples a cycle
        process (*strip, { tone, tone }, 512);
        EXPECT_NEAR (strip->currentSnapshot().inputMeter, 1.0f, 2e-3f) << rate << ", factor " << factor;

        // The saturation and the components of the second side take 0.05 dB.
        EXPECT_NEAR (strip->currentSnapshot().outputMeter, std::pow (10.0f, -6.0f / 20.0f), 5e-3f) << rate;

        strip->calibrationSetting().setValue (24.0); // 6 dB more sensitive
        process (*strip, { tone, tone }, 512);
        EXPECT_NEAR (strip->currentSnapshot().inputMeter, std::pow (10.0f, 6.0f / 20.0f), 4e-3f);

        setPlain (*strip, "pad", 1.0f);
        process (*strip, { tone, tone }, 512);
        EXPECT_NEAR (strip->currentSnapshot().inputMeter, std::pow (10.0f, -14.0f / 20.0f), 4e-3f);
    }
}

TEST (Meters, GainReductionIsWhatTheToneLoses)
{
    for (const auto& [ratio, levelDb, leastDb] :
         { std::tuple (1.0f, -18.0, 0.0f), { 5.0f, -18.0, 0.0f }, { 1.0f, -6.0, -3.0f }, { 5.0f, -6.0, -3.0f } })
    {
        const auto strip = makeStripFor (juce::AudioProcessor::wrapperType_AAX); // has it as a parameter too
        strip->analogSetting().setValue (false);
        setPlain (
            *strip,
            { { "equalizer", 0.0f }, { "compThreshold", -20.0f }, { "compRatio", ratio }, { "compRelease", 8.0f } });
        strip->prepareToPlay (48000.0, 512);
        const auto tone = sine (997.0, std::pow (10.0, levelDb / 20.0), 48000.0, 4.0);
        const auto quiet = sine (997.0, 0.001, 48000.0, 4.0);
        const auto compressed = process (*strip, { quiet, tone }, 512);
        const float reading = strip->currentSnapshot().gainReductionDb;
        EXPECT_FLOAT_EQ (parameter (*strip, "gainReduction").getValue(), 1.0f - std::pow (10.0f, reading / 20.0f));
        setPlain (*strip, "compIn", 0.0f);
        const auto untouched = process (*strip, { quiet, tone }, 512);
        const auto lossDb = [&] (std::size_t side)
        { return 20.0 * std::log10 (rmsOfEnd (compressed[side], 9600) / rmsOfEnd (untouched[side], 9600)); };

        // The needle is that of the side that loses more.
        EXPECT_NEAR (reading, std::min (lossDb (0), lossDb (1)), 0.01) << ratio << ", level " << levelDb;
        EXPECT_LE (reading, leastDb) << "there must be some";
    }
}

} // namespace tarvik
