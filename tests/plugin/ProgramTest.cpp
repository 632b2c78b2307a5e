// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/FactoryPrograms.h"
#include "tests/support/Golden.h"
#include "tests/support/StateTestTools.h"
#include "tests/support/StripTestTools.h"

namespace tarvik
{

using namespace test;

TEST (Programs, AreThoseThatUsersKnow)
{
    Tarvik41Processor strip;
    EXPECT_EQ (strip.getProgramName (26) + strip.getProgramName (-1), "");
    juce::String all;

    for (int program = 0; program < strip.getNumPrograms(); ++program)
        all << strip.getProgramName (program) << ":"
            << differencesFromDefault (factoryPrograms()[static_cast<std::size_t> (program)].snapshot) << "\n";

    expectGolden ("programs.txt", all);
}

TEST (Programs, SetEveryParameterOfTheCurrentSlotAndNoSetting)
{
    Tarvik41Processor strip;
    setPlain (strip, { { "TolChannel", 9.0f }, { "mute", 1.0f } });
    strip.selectSlot (1);
    strip.calibrationSetting().setValue (22.0);
    strip.limiterSensitivitySetting().setValue (1);

    for (const auto& [wanted, taken] : { std::pair (17, 17), { -1, 0 }, { 100, 25 } })
    {
        strip.setCurrentProgram (wanted);
        EXPECT_EQ (strip.getCurrentProgram(), taken);

        for (int i = 0; i < numParameters; ++i)
            EXPECT_FLOAT_EQ (plainValueOf (strip.getSlot (1), i),
                             plainValueOf (factoryPrograms()[static_cast<std::size_t> (taken)].snapshot, i));
    }

    EXPECT_EQ (strip.getSlot (0).tolChannel.get(), 9) << "the other slot is left alone";
    EXPECT_EQ (strip.calibrationSetting().getValue(), 22.0);
    EXPECT_FLOAT_EQ (static_cast<float> (strip.currentSnapshot().calibration), strip.getCalibrationGain());
    EXPECT_EQ (strip.limiterSensitivitySetting().getValue(), 1);
    EXPECT_EQ (strip.currentSnapshot().limiterSensitivity.get(), 1);
}

TEST (Programs, ProgramRightAfterAStateLoadDoesNotOverwriteIt)
{
    Tarvik41Processor strip;
    setPlain (strip, "gain", 7.0f);
    load (strip, saved (strip));

    strip.setCurrentProgram (5);
    EXPECT_EQ (strip.getCurrentProgram(), 5);
    EXPECT_FLOAT_EQ (plainOf (strip, "gain"), 7.0f);

    juce::Thread::sleep (510);
    load (strip, blockOfText ("not a document")); // counts as a load as well
    strip.setCurrentProgram (6);
    EXPECT_FLOAT_EQ (plainOf (strip, "gain"), 7.0f);

    juce::Thread::sleep (510);
    strip.setCurrentProgram (5);
    EXPECT_FLOAT_EQ (plainOf (strip, "gain"), 10.58f);
}

/** Under a low sine no two neighbouring samples lie further apart than the sine at the loudest level nearby would have
    them, with a tenth for the saturation's harmonics, one step of two things that change places in 4800, and one of the
    480 in which the tail of the equaliser's old filter fades. "EQ Post" stays out: it exchanges two stages at once.
*/
TEST (Programs, AChangeOfProgramOrChannelWhilePlayingMakesNoStep)
{
    constexpr std::size_t stretch = 24000; // a change and what the compressor makes of it
    constexpr std::size_t cycle = 512;     // a little more than one
    constexpr double radians = 2.0 * std::numbers::pi * 97.3 / 48000.0;
    constexpr auto allowed = static_cast<float> (1.1 * radians + 2.0 / 4800.0 + 1.0 / 480.0);
    const auto strip = makeNoiselessStrip (1);
    strip->prepareToPlay (48000.0, 256);
    std::mt19937 random (7);
    Signal all;

    for (unsigned change = 0; change < 160; ++change)
    {
        // First each program to the next, then anywhere, and the console channel after each.
        if (change % 2 == 0)
            strip->setCurrentProgram (static_cast<int> (change < 52 ? change / 2 : random() % 26));
        else
            setPlain (*strip, "TolChannel", static_cast<float> (2 + random() % 31));

        setPlain (*strip, "eqPost", 0.0f);
        Signal tone (stretch);

        for (std::size_t i = 0; i < stretch; ++i)
            tone[i] = 0.1f * static_cast<float> (std::sin (radians * static_cast<double> (all.size() + i)));

        const auto out = firstOf (process (*strip, { tone }, 256));
        all.insert (all.end(), out.begin(), out.end());
    }

    float peak = 0.0f;

    for (std::size_t i = cycle + 1; i < all.size(); ++i) // from where there is a level to go by
    {
        if (i % (cycle / 4) == 1)
        {
            const auto from = all.begin() + static_cast<std::ptrdiff_t> (i - cycle);
            const auto [lowest, highest] =
                std::minmax_element (from, from + std::min<std::ptrdiff_t> (2 * cycle, all.end() - from));
            peak = std::max (-*lowest, *highest);
        }

        ASSERT_LT (std::abs (all[i] - all[i - 1]), allowed * peak) << i / stretch << ", sample " << i % stretch;
    }
}

} // namespace tarvik
