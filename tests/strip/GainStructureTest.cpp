// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/StripTestTools.h"

namespace tarvik
{

using namespace test;

namespace
{
constexpr double sampleRate = 48000.0;

float db (float gain) { return 20.0f * std::log10 (std::abs (gain)); }

/** The level of a constant after everything has settled. */
float settledGain (Tarvik41Processor& strip)
{
    const auto output = process (strip, { Signal (12000, 0.01f), Signal (12000, 0.01f) }, 256)[0];
    return output.back() / 0.01f;
}
} // namespace

TEST (GainStructure, EachControlGivesItsDecibelsAfterItsRamp)
{
    struct Case
    {
        std::vector<std::pair<const char*, float>> settings;
        float expectedDb;
    };

    const Case cases[] = {
        { { { "gain", 12.0f } }, 12.0f },
        { { { "level", -33.0f } }, -33.0f },
        { { { "pad", 1.0f } }, -20.0f },
        { { { "inLevel", 10.0f }, { "outLevel", -3.0f } }, 7.0f },
        { { { "gain", 20.0f }, { "unity", 1.0f } }, 0.0f },
        { { { "gain", 20.0f }, { "pad", 1.0f }, { "unity", 1.0f } }, 0.0f },
        { { { "pad", 1.0f }, { "unity", 1.0f }, { "level", -6.0f } }, -6.0f },
        { { { "mute", 1.0f } }, -160.0f },
        { { { "mute", 1.0f }, { "gain", 40.0f }, { "level", 10.0f } }, -160.0f },
        { { { "gain", 48.0f }, { "level", -80.0f } }, -32.0f },
    };

    for (const auto& c : cases)
    {
        const auto strip = makeStrip();
        makeGainOnly (*strip);
        strip->prepareToPlay (sampleRate, 256);

        for (const auto& [id, value] : c.settings)
            setPlain (*strip, id, value);

        EXPECT_NEAR (db (settledGain (*strip)), c.expectedDb, 1e-3f) << c.settings.front().first;

        // What the ramps reached, a fresh prepare snaps to.
        strip->prepareToPlay (96000.0, 256);
        EXPECT_NEAR (db (process (*strip, { Signal (1, 0.01f), Signal (1, 0.01f) }, 1)[0][0] / 0.01f), c.expectedDb,
                     1e-3f);
    }
}

TEST (GainStructure, PhaseTurnsThroughZeroInAStraightLine)
{
    const auto strip = makeStrip();
    makeGainOnly (*strip);
    strip->prepareToPlay (sampleRate, 256);
    setPlain (*strip, "phase", 1.0f);

    const auto output = process (*strip, { Signal (6000, 1.0f), Signal (6000, 1.0f) }, 300)[1];
    EXPECT_NEAR (output[2399], 0.0f, 1e-5f);
    EXPECT_NEAR (output[1199], 0.5f, 1e-5f);
    EXPECT_NEAR (output[4799], -1.0f, 1e-6f);
}

TEST (GainStructure, NoControlStepsHoweverItIsMovedOrAutomated)
{
    // 90 dB in 4800 equal factors is 0.22 % a sample; "mute" moves two such gains at once.
    constexpr float largestShareOfLevel = 0.0044f;

    for (const auto* id : { "gain", "level", "inLevel", "outLevel", "pad", "unity", "mute", "phase", "equalizer" })
    {
        const auto strip = makeStrip();
        makeGainOnly (*strip);
        setPlain (*strip, "gain", 6.0f);
        strip->prepareToPlay (sampleRate, 64);
        auto& p = parameter (*strip, id);
        float previous = settledGain (*strip) * 0.01f;
        float largest = 0.0f;
        float highest = std::abs (previous);

        for (int block = 0; block < 600; ++block)
        {
            if (block % 150 == 0)
                p.setValueNotifyingHost (p.getValue() >= 0.5f ? 0.0f : 1.0f);

            for (const auto sample : firstOf (process (*strip, { Signal (64, 0.01f), Signal (64, 0.01f) }, 64)))
            {
                largest = std::max (largest, std::abs (sample - previous));
                highest = std::max (highest, std::abs (sample));
                previous = sample;
            }
        }

        EXPECT_GT (largest, 0.0f) << id << " must do something";
        EXPECT_LT (largest, largestShareOfLevel * highest) << id;
    }
}

TEST (GainStructure, CalibrationCancelsAndASlotKeepsTheLiveSensitivity)
{
    const auto strip = makeStrip();
    makeGainOnly (*strip);
    strip->prepareToPlay (sampleRate, 256);

    for (const auto calibration : { 16.0, 24.0, 17.5 })
    {
        strip->calibrationSetting().setValue (calibration);
        EXPECT_NEAR (settledGain (*strip), 1.0f, 1e-6f) << calibration;
    }

    strip->limiterSensitivitySetting().setValue (0);
    strip->selectSlot (1);
    EXPECT_EQ (strip->currentSnapshot().limiterSensitivity, 0) << "the other slot must not bring back an old one";
}

} // namespace tarvik
