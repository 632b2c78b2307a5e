// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/InstructionSets.h"
#include "tools/ScratchSettings.h"

#include <gtest/gtest.h>
#include <juce_events/juce_events.h>

int main (int argc, char** argv)
{
    testing::InitGoogleTest (&argc, argv);

    const tarvik::ScratchSettings settings; // no test touches those of the user who runs it

    // No test may need a screen. Without this JUCE would join whatever screen :0 is, and end with it.
    tarvik::joinNoScreen();

    const juce::ScopedJuceInitialiser_GUI juceRuntime;
    tarvik::selectInstructionSet();
    return RUN_ALL_TESTS();
}
