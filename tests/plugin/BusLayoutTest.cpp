// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/HostBuses.h"
#include "tests/support/StripTestTools.h"

namespace tarvik
{

namespace
{
using Set = juce::AudioChannelSet;

juce::AudioProcessor::BusesLayout layoutOf (const Set& in, const Set& out, const Set& sidechain)
{
    juce::AudioProcessor::BusesLayout layout;
    layout.inputBuses.add (in);
    layout.inputBuses.add (sidechain);
    layout.outputBuses.add (out);
    return layout;
}
} // namespace

TEST (BusLayout, TheThreeBusesStartInStereoAndOn)
{
    const Tarvik41Processor strip;
    ASSERT_EQ (strip.getBusCount (true), 2);
    ASSERT_EQ (strip.getBusCount (false), 1);

    const std::pair<const juce::AudioProcessor::Bus*, const char*> buses[] = { { strip.getBus (true, 0), "Input" },
                                                                               { strip.getBus (false, 0), "Output" },
                                                                               { strip.getBus (true, 1),
                                                                                 "Sidechain" } };

    for (const auto& [bus, name] : buses)
    {
        EXPECT_EQ (bus->getName(), name);
        EXPECT_EQ (bus->getCurrentLayout(), Set::stereo());
        EXPECT_TRUE (bus->isEnabledByDefault());
    }
}

TEST (BusLayout, EqualMonoOrStereoWithAMatchingOrAbsentSidechainIsAccepted)
{
    const auto mono = Set::mono();
    const auto stereo = Set::stereo();
    const auto none = Set::disabled();
    const auto surround = Set::create5point1();

    struct Case
    {
        Set in, out, sidechain;
        bool isAccepted;
    };

    const Case cases[] = {
        { stereo, stereo, stereo, true }, { stereo, stereo, none, true },         { mono, mono, mono, true },
        { mono, mono, none, true },       { mono, stereo, mono, false },          { stereo, mono, stereo, false },
        { mono, mono, stereo, false },    { stereo, stereo, mono, false },        { surround, surround, none, false },
        { none, none, none, false },      { surround, surround, surround, false }
    };

    for (const auto& c : cases)
    {
        Tarvik41Processor strip; // the query may adjust it
        EXPECT_EQ (strip.checkBusesLayoutSupported (layoutOf (c.in, c.out, c.sidechain)), c.isAccepted)
            << c.in.getDescription() << ", " << c.out.getDescription() << ", " << c.sidechain.getDescription();
    }
}

TEST (BusLayout, OnlyAVst3HostFindsARefusedSidechainAtTheMainWidth)
{
    const auto offer = layoutOf (Set::mono(), Set::mono(), Set::stereo());

    juce::AudioProcessor::setTypeOfNextNewPlugin (juce::AudioProcessor::wrapperType_VST3);
    Tarvik41Processor inVst3;
    juce::AudioProcessor::setTypeOfNextNewPlugin (juce::AudioProcessor::wrapperType_Undefined);
    Tarvik41Processor elsewhere;

    EXPECT_FALSE (inVst3.checkBusesLayoutSupported (offer));
    EXPECT_EQ (inVst3.getChannelLayoutOfBus (true, 1), Set::mono());
    EXPECT_EQ (inVst3.getChannelLayoutOfBus (true, 0), Set::mono());

    EXPECT_FALSE (elsewhere.checkBusesLayoutSupported (offer));
    EXPECT_EQ (elsewhere.getChannelLayoutOfBus (true, 1), Set::stereo());
}

TEST (BusLayout, ArdourAndItsScriptInterpreterAreOfferedNoMono)
{
    using Host = juce::PluginHostType;
    EXPECT_EQ (hostTypeOf (juce::File ("/usr/lib/ardour7/luasession"), Host::UnknownHost), Host::Ardour);
    EXPECT_EQ (hostTypeOf (juce::File ("/usr/lib/ardour7/ardour-7.3.0"), Host::Ardour), Host::Ardour);
    EXPECT_EQ (hostTypeOf (juce::File ("/opt/host"), Host::Reaper), Host::Reaper);

    EXPECT_FALSE (isMainBusOffered (Set::mono(), Host::Ardour));
    EXPECT_TRUE (isMainBusOffered (Set::stereo(), Host::Ardour));
    EXPECT_TRUE (isMainBusOffered (Set::mono(), Host::Reaper));
    EXPECT_TRUE (isMainBusOffered (Set::mono(), Host::UnknownHost));
}

} // namespace tarvik
