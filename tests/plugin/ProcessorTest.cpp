// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/HostBuses.h"
#include "tests/support/StripTestTools.h"

namespace tarvik
{

using Set = juce::AudioChannelSet;
using test::layoutOf;

TEST (BusLayout, EqualMonoOrStereoWithItsSideChainOrNoneIsAccepted)
{
    const auto mono = Set::mono(), stereo = Set::stereo(), none = Set::disabled(), surround = Set::create5point1();

    for (const auto& [in, out, sidechain, isAccepted] : { std::tuple (stereo, stereo, stereo, true),
                                                          { mono, mono, mono, true },
                                                          { mono, mono, none, true },
                                                          { mono, stereo, mono, false },
                                                          { stereo, stereo, mono, false },
                                                          { surround, surround, none, false },
                                                          { none, none, none, false } })
        EXPECT_EQ (Tarvik41Processor().checkBusesLayoutSupported (layoutOf (in, out, sidechain)), isAccepted)
            << in.getDescription() << ", " << out.getDescription() << ", " << sidechain.getDescription();
}

TEST (BusLayout, OnlyAVst3HostFindsARefusedSidechainAtTheMainWidth)
{
    for (const auto& [format, width] : { std::pair (juce::AudioProcessor::wrapperType_VST3, Set::mono()),
                                         { juce::AudioProcessor::wrapperType_Undefined, Set::stereo() } })
    {
        const auto strip = test::makeStripFor (format);
        EXPECT_FALSE (strip->checkBusesLayoutSupported (layoutOf (Set::mono(), Set::mono(), Set::stereo())));

        for (const auto bus : { 0, 1 })
            EXPECT_EQ (strip->getChannelLayoutOfBus (true, bus), width);
    }
}

TEST (BusLayout, ArdourAndItsScriptInterpreterAreOfferedNoMono)
{
    using Host = juce::PluginHostType;
    EXPECT_EQ (hostTypeOf (juce::File ("/usr/lib/ardour7/luasession"), Host::UnknownHost), Host::Ardour);
    EXPECT_EQ (hostTypeOf (juce::File ("/opt/host"), Host::Reaper), Host::Reaper);
    EXPECT_FALSE (isMainBusOffered (Set::mono(), Host::Ardour));
    EXPECT_TRUE (isMainBusOffered (Set::stereo(), Host::Ardour));
    EXPECT_TRUE (isMainBusOffered (Set::mono(), Host::UnknownHost));
}

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
