// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/InstructionSets.h"

#include <gtest/gtest.h>
#include <juce_events/juce_events.h>

#include <cstdlib>

int main (int argc, char** argv)
{
    testing::InitGoogleTest (&argc, argv);

    // No test touches the settings of the user who runs it.
    const auto scratch = juce::File::createTempFile ("tarvik-tests");
    scratch.createDirectory();
    setenv ("XDG_CONFIG_HOME", scratch.getFullPathName().toRawUTF8(), 1);

    // No test may need a screen. With the variable unset JUCE would join whatever screen :0 is, and end with it.
    setenv ("DISPLAY", ":65000", 1);

    const juce::ScopedJuceInitialiser_GUI juceRuntime;
    tarvik::selectInstructionSet();

    const auto result = RUN_ALL_TESTS();
    scratch.deleteRecursively();
    return result;
}
