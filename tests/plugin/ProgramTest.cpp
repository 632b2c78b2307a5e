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

} // namespace tarvik
