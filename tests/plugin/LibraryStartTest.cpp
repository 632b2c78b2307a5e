// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/Tarvik41Processor.h"

#include <gtest/gtest.h>

namespace tarvik
{

TEST (LibraryStart, EachInstanceSaysSoAndOnePairOfSelfChecksRemains)
{
    testing::internal::CaptureStdout();
    const Tarvik41Processor first, second;
    EXPECT_EQ (testing::internal::GetCapturedStdout(), "Initializing KVLLib...\nInitializing KVLLib...\n");

    juce::UnitTestRunner runner;
    const auto checks = juce::UnitTest::getTestsInCategory ("KVLLib");
    EXPECT_EQ (checks.size(), 2);
    runner.setAssertOnFailure (false);
    runner.runTests (checks);
    ASSERT_GT (runner.getNumResults(), 4);

    for (int i = 0; i < runner.getNumResults(); ++i)
    {
        EXPECT_EQ (runner.getResult (i)->failures, 0) << runner.getResult (i)->unitTestName;
        EXPECT_GT (runner.getResult (i)->passes, 0) << runner.getResult (i)->unitTestName;
    }
}

} // namespace tarvik
