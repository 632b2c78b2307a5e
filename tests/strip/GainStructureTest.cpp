// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/BareStrip.h"
#include "tests/support/StripTestTools.h"

namespace tarvik
{

using namespace test;

namespace
{
constexpr double sampleRate = 48000.0;

/** So quiet that the strip's harmonics and dynamics are out of the picture, at any gain of the strip. */
constexpr double quiet = 1e-4;

/** The real strip with what would hide its gains taken out. */
std::unique_ptr<Tarvik41Processor> makeQuietStrip (int factor)
{
    auto strip = makeStrip();
    strip->oversamplingSetting().setValue (factor);
    strip->analogSetting().setValue (false);
    setPlain (*strip, "equalizer", 0.0f);
    setPlain (*strip, "compIn", 0.0f);
    return strip;
}

Signal tone (int numSamples) { return sine (1000.0, quiet, sampleRate, numSamples / sampleRate); }

/** The gain for a sine of 1 kHz behind `settleSamples` samples, in dB. */
double gainDb (Tarvik41Processor& strip, int settleSamples = 12000)
{
    const auto input = tone (settleSamples + 4800);
    return 20.0 * std::log10 (rmsOfEnd (process (strip, { input, input }, 256)[0], 4800) / rmsOfEnd (input, 4800));
}
} // namespace

TEST (GainStructure, EachControlGivesItsDecibelsAfterItsRamp)
{
    struct Case
    {
        std::vector<std::pair<const char*, float>> settings;
        double expectedDb;
    };

    const Case cases[] = {
        { { { "gain", 12.0f } }, 12.0 },
        { { { "level", -33.0f } }, -33.0 },
        { { { "pad", 1.0f } }, -20.0 },
        { { { "inLevel", 10.0f }, { "outLevel", -3.0f } }, 7.0 },
        { { { "gain", 20.0f }, { "unity", 1.0f } }, 0.0 },
        { { { "gain", 20.0f }, { "pad", 1.0f }, { "unity", 1.0f } }, 0.0 },
        { { { "pad", 1.0f }, { "unity", 1.0f }, { "level", -6.0f } }, -6.0 },
        { { { "mute", 1.0f } }, -160.0 },
        { { { "mute", 1.0f }, { "gain", 40.0f }, { "level", 10.0f } }, -160.0 },
        { { { "gain", 48.0f }, { "level", -80.0f } }, -32.0 },
    };

    for (const auto factor : { 1, 4 })
        for (const auto& c : cases)
        {
            const auto strip = makeQuietStrip (factor);
            strip->prepareToPlay (sampleRate, 256);
            const auto reference = gainDb (*strip); // the saturation's filters are all that is in the way

            for (const auto& [id, value] : c.settings)
                setPlain (*strip, id, value);

            constexpr double toleranceDb = 0.01;
            EXPECT_NEAR (gainDb (*strip) - reference, c.expectedDb, toleranceDb)
                << c.settings.front().first << ", factor " << factor;

            // What the ramps reached, a fresh prepare goes to at once: a slow ramp would show in its first tenth. Of a
            // muted strip one would measure how the saturation's filters settle instead.
            if (c.expectedDb < -100.0)
                continue;

            strip->prepareToPlay (sampleRate, 256);
            EXPECT_NEAR (gainDb (*strip, 400) - reference, c.expectedDb, 5.0 * toleranceDb) << c.settings.front().first;
        }
}

TEST (GainStructure, RampsLastTheSame100MillisecondsAtEveryFactor)
{
    for (const auto factor : { 1, 2, 8 })
    {
        const auto strip = makeQuietStrip (factor);
        setPlain (*strip, "gain", 20.0f);
        strip->prepareToPlay (sampleRate, 256);
        const auto before = gainDb (*strip);
        setPlain (*strip, "unity", 1.0f);

        // Equal factors over 4800 samples: 10 dB half way. A short sine about that moment, two cycles long.
        const auto input = tone (2400 + 48 + (factor > 1 ? 52 : 0));
        const auto output = process (*strip, { input, input }, 64)[0];
        float peak = 0.0f;

        for (auto i = output.size() - 96; i < output.size(); ++i)
            peak = std::max (peak, std::abs (output[i]));

        EXPECT_NEAR (20.0 * std::log10 (static_cast<double> (peak) / quiet) - before, -10.0, 0.4)
            << "factor " << factor;
        EXPECT_NEAR (gainDb (*strip, 2400) - before, -20.0, 0.01) << "factor " << factor;
    }
}

TEST (GainStructure, EqualiserInNeutralMakesUpForItsLoss)
{
    const auto strip = makeQuietStrip (2);
    strip->prepareToPlay (sampleRate, 256);
    const auto without = gainDb (*strip);
    setPlain (*strip, "equalizer", 1.0f);

    // "0 dB" in all three sections and "Boost": 5100 over 30100 ohms times 10^0.771 is +0.0016 dB, and the last
    // position of the high section's capacitor, 1 pF, leaves that alone.
    EXPECT_NEAR (gainDb (*strip) - without, 0.0, 0.05);
    setPlain (*strip, "midMode", 0.0f);
    EXPECT_NEAR (gainDb (*strip) - without, -0.396, 0.05) << "the other network is a little quieter";
}

TEST (GainStructure, DynamicsInCircuitButAtRestLeaveTheLevel)
{
    const auto strip = makeQuietStrip (1);
    strip->prepareToPlay (sampleRate, 256);
    const auto without = gainDb (*strip);
    setPlain (*strip, "compIn", 1.0f);

    // Both potentiometers in the middle take 17 dB each, the output gives 4 and the gain element 30.
    EXPECT_NEAR (gainDb (*strip) - without, 0.0, 0.15);
    setPlain (*strip, "compOutput", 3.5f);
    EXPECT_NEAR (gainDb (*strip) - without, 6.8, 0.15) << "34 dB over 5 marks";
    setPlain (*strip, "compOutput", 0.5f);
    EXPECT_NEAR (gainDb (*strip) - without, -13.6 - 6.02, 0.15) << "below 1 it also falls in a straight line";
    setPlain (*strip, "compOutput", 2.5f);
    setPlain (*strip, "compNuke", 1.0f);
    EXPECT_NEAR (gainDb (*strip) - without, 20.0 - 6.02, 0.3) << "20 dB in, half out";
}

TEST (GainStructure, PhaseTurnsThroughZeroInAStraightLine)
{
    const auto strip = makeBareStrip();
    strip->prepareToPlay (sampleRate, 256);
    setPlain (*strip, "phase", 1.0f);
    const auto output = process (*strip, { Signal (6000, 1.0f), Signal (6000, 1.0f) }, 300)[1];

    for (const auto i : { 1199U, 2399U, 4799U })
        EXPECT_NEAR (output[i], 1.0f - 2.0f * static_cast<float> (i + 1) / 4800.0f, 1e-5f);
}

TEST (GainStructure, NoControlStepsHoweverItIsMovedOrAutomated)
{
    // 90 dB in 4800 equal factors is 0.22 % a sample; "mute" moves two such gains at once.
    constexpr float largestShareOfLevel = 0.0044f;

    for (const auto* id : { "gain", "level", "inLevel", "outLevel", "pad", "mute", "phase" })
    {
        const auto strip = makeBareStrip();
        setPlain (*strip, "gain", 6.0f);
        strip->prepareToPlay (sampleRate, 64);
        auto& p = parameter (*strip, id);
        const Signal steady (9600, 0.01f);
        auto previous = process (*strip, { steady, steady }, 64)[0].back();
        auto largest = 0.0f, highest = std::abs (previous);

        for (int move = 0; move < 4; ++move)
        {
            p.setValueNotifyingHost (p.getValue() >= 0.5f ? 0.0f : 1.0f);

            for (const auto sample : firstOf (process (*strip, { steady, steady }, 64)))
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
    const auto bare = makeBareStrip();
    bare->prepareToPlay (sampleRate, 256);

    for (const auto calibration : { 16.0, 24.0, 17.5 })
    {
        bare->calibrationSetting().setValue (calibration);
        EXPECT_NEAR (process (*bare, { Signal (300, 1.0f), Signal (300, 1.0f) }, 256)[0].back(), 1.0f, 1e-6f)
            << calibration;
    }

    const auto strip = makeStrip();
    strip->prepareToPlay (sampleRate, 256);
    strip->limiterSensitivitySetting().setValue (0);
    strip->selectSlot (1);
    EXPECT_EQ (strip->currentSnapshot().limiterSensitivity, 0) << "the other slot must not bring back an old one";
}

TEST (GainStructure, TheConsolesNoiseIsAddedBehindThePadAndInFrontOfTheFader)
{
    // Uniform within +-4e-5 in front of the fader, where full scale is at 8.7: -111.5 dBFS. Within +-6e-7 in front of
    // the gain: 251 times that at +48 dB, 0.8 dB less through the saturation's filters. Both together: -100.45; the
    // oversampling takes another 0.3 above 20 kHz. From start to start the level of a second scatters by 0.04 dB, of
    // which the tolerance is six times as much: the clock's seeds cannot make it red.
    constexpr auto toleranceDb = 0.25;

    struct Case
    {
        PlainValues settings;
        double dbfsAtFactor1, dbfsAtFactor2;
    };

    const Case cases[] = {
        { {}, -111.52, -111.52 },
        { { { "inLevel", 20.0f }, { "pad", 1.0f }, { "outLevel", 3.0f } }, -108.52, -108.52 },
        { { { "level", -20.0f } }, -131.52, -131.52 },
        { { { "gain", 48.0f }, { "pad", 1.0f } }, -100.45, -100.75 },
        { { { "gain", 48.0f }, { "unity", 1.0f } }, -111.52, -111.52 },
    };

    for (const auto factor : { 1, 2 })
        for (const auto& [settings, dbfsAtFactor1, dbfsAtFactor2] : cases)
        {
            const auto expectedDbfs = factor == 1 ? dbfsAtFactor1 : dbfsAtFactor2;
            const auto strip = makeQuietStrip (factor);
            setPlain (*strip, settings);
            strip->prepareToPlay (sampleRate, 256);
            const std::vector<Signal> silence { Signal (96000), Signal (96000) };
            EXPECT_LT (rmsOfEnd (process (*strip, silence, 256)[0], 48000), 1e-9) << "it is off";

            strip->analogSetting().setValue (true);
            const auto noise = process (*strip, silence, 256);
            EXPECT_NEAR (20.0 * std::log10 (rmsOfEnd (noise[0], 48000)), expectedDbfs, toleranceDb) << factor;
            EXPECT_NEAR (20.0 * std::log10 (rmsOfEnd (noise[1], 48000)), expectedDbfs, toleranceDb) << factor;
            EXPECT_NE (noise[0], noise[1]);
        }
}

} // namespace tarvik
