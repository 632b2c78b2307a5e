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
    EXPECT_EQ (strip.getNumPrograms(), 26);
    EXPECT_EQ (strip.getProgramName (26), "");
    EXPECT_EQ (strip.getProgramName (-1), "");

    juce::String all;

    for (int program = 0; program < strip.getNumPrograms(); ++program)
        all << strip.getProgramName (program) << ":"
            << differencesFromDefault (factoryPrograms()[static_cast<std::size_t> (program)].snapshot) << "\n";

    expectGolden ("programs.txt", all);
}

TEST (Programs, SettleEveryParameterOfTheSlotInForceAndClampTheirNumber)
{
    Tarvik41Processor strip;
    setPlain (strip, "TolChannel", 9.0f);
    setPlain (strip, "mute", 1.0f);
    strip.selectSlot (1);
    strip.setCurrentProgram (17);

    const auto& b = strip.getSlot (1);
    EXPECT_EQ (b.midMode.get(), 0);
    EXPECT_EQ (b.lowFreq.get(), 1);
    EXPECT_FLOAT_EQ (b.gain, 6.01f);
    EXPECT_EQ (b.compAttack.get(), 1);
    EXPECT_EQ (b.highPass.get(), 2);
    EXPECT_FLOAT_EQ (b.expThreshold, -37.68f);
    EXPECT_EQ (strip.getSlot (0).tolChannel.get(), 9) << "the other slot is left alone";

    strip.setCurrentProgram (-1);
    EXPECT_EQ (strip.getCurrentProgram(), 0);
    strip.setCurrentProgram (100);
    EXPECT_EQ (strip.getCurrentProgram(), 25);
    EXPECT_EQ (b.compNuke.get(), true);
    EXPECT_EQ (b.lowFreq.get(), 8);
    EXPECT_FLOAT_EQ (b.midGain, 0.88f);
}

TEST (Programs, ProgramRightBehindAStateLoadDoesNotOverwriteIt)
{
    Tarvik41Processor strip;
    setPlain (strip, "gain", 7.0f);
    load (strip, saved (strip));

    strip.setCurrentProgram (5);
    EXPECT_EQ (strip.getCurrentProgram(), 5);
    EXPECT_FLOAT_EQ (plainOf (strip, "gain"), 7.0f);

    juce::Thread::sleep (510);
    strip.setCurrentProgram (5);
    EXPECT_FLOAT_EQ (plainOf (strip, "gain"), 10.58f);
}

} // namespace tarvik
