// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/HostBuses.h"
#include "tests/support/StripTestTools.h"

namespace tarvik
{

namespace
{
using Set = juce::AudioChannelSet;
using test::layoutOf;
} // namespace

TEST (BusLayout, EqualMonoOrStereoWithItsSideChainOrNoneIsAccepted)
{
    const auto mono = Set::mono(), stereo = Set::stereo(), none = Set::disabled(), surround = Set::create5point1();

    for (const auto& [in, out, sidechain, isAccepted] : { std::tuple (stereo, stereo, stereo, true),
                                                          { stereo, stereo, none, true },
                                                          { mono, mono, mono, true },
                                                          { mono, mono, none, true },
                                                          { mono, stereo, mono, false },
                                                          { stereo, mono, stereo, false },
                                                          { mono, mono, stereo, false },
                                                          { stereo, stereo, mono, false },
                                                          { surround, surround, none, false },
                                                          { none, none, none, false } })
    {
        Tarvik41Processor strip; // the query may adjust it
        EXPECT_EQ (strip.checkBusesLayoutSupported (layoutOf (in, out, sidechain)), isAccepted)
            << in.getDescription() << ", " << out.getDescription() << ", " << sidechain.getDescription();
    }
}

TEST (BusLayout, OnlyAVst3HostFindsARefusedSidechainAtTheMainWidth)
{
    for (const auto format : { juce::AudioProcessor::wrapperType_VST3, juce::AudioProcessor::wrapperType_Undefined })
    {
        const auto strip = test::makeStripFor (format);
        EXPECT_FALSE (strip->checkBusesLayoutSupported (layoutOf (Set::mono(), Set::mono(), Set::stereo())));
        const auto width = format == juce::AudioProcessor::wrapperType_VST3 ? Set::mono() : Set::stereo();
        EXPECT_EQ (strip->getChannelLayoutOfBus (true, 1), width);
        EXPECT_EQ (strip->getChannelLayoutOfBus (true, 0), width);
    }
}

TEST (BusLayout, ArdourAndItsScriptInterpreterAreOfferedNoMono)
{
    using Host = juce::PluginHostType;
    EXPECT_EQ (hostTypeOf (juce::File ("/usr/lib/ardour7/luasession"), Host::UnknownHost), Host::Ardour);
    EXPECT_EQ (hostTypeOf (juce::File ("/usr/lib/ardour7/ardour-7.3.0"), Host::Ardour), Host::Ardour);
    EXPECT_EQ (hostTypeOf (juce::File ("/opt/host"), Host::Reaper), Host::Reaper);

    EXPECT_FALSE (isMainBusOffered (Set::mono(), Host::Ardour));
    EXPECT_TRUE (isMainBusOffered (Set::stereo(), Host::Ardour));
    EXPECT_TRUE (isMainBusOffered (Set::mono(), Host::UnknownHost));
}

} // namespace tarvik
