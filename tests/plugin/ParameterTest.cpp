// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/BareStrip.h"
#include "tests/support/Golden.h"
#include "tests/support/StateTestTools.h"

namespace tarvik
{

using namespace test;

TEST (Parameters, AreThoseThatProjectsAndAutomationAreStoredWith)
{
    Tarvik41Processor strip;
    juce::String all;

    for (const auto& row : parameterRows)
    {
        auto& p = parameter (strip, row.id);
        const auto& range = p.getNormalisableRange();
        all << p.paramID << " | " << p.getName (100) << " | " << p.getLabel() << " | " << range.start << " to "
            << range.end << " by " << range.interval << " | default " << p.convertFrom0to1 (p.getDefaultValue())
            << " | " << p.getAllValueStrings().joinIntoString (", ");

        if (p.getAllValueStrings().isEmpty())
            for (const auto travel : { 0.0f, 0.125f, 0.3125f, 0.5f, 0.75f, 1.0f }) // what it reads, and reads back
            {
                const auto text = p.getText (travel, 100);
                all << p.convertFrom0to1 (travel) << " '" << text << "' "
                    << p.convertFrom0to1 (p.getValueForText (text)) << (travel < 1.0f ? ", " : "");
            }

        all << "\n";
        EXPECT_TRUE (p.isAutomatable());
        EXPECT_EQ (p.getCategory(), juce::AudioProcessorParameter::genericParameter);

        for (int i = 0; i <= 1000; ++i)
        {
            const auto plain = p.convertFrom0to1 (static_cast<float> (i) / 1000.0f);
            ASSERT_FLOAT_EQ (p.convertFrom0to1 (p.convertTo0to1 (plain)), plain) << row.id << " at " << i;
        }
    }

    expectGolden ("parameters.txt", all);
    EXPECT_EQ (strip.getParameters().size(), numParameters);

    // As a person types it; a middle gain without level is at its lower end.
    for (const auto& [id, text, plain] : { std::tuple ("compHPF", "90.0 Hz", 90.0f),
                                           { "compMix", "47 %", 0.47f },
                                           { "lowGain", "15.42 dB", 1.0f },
                                           { "midGain", "-100", 0.0f } })
        EXPECT_NEAR (parameter (strip, id).convertFrom0to1 (parameter (strip, id).getValueForText (text)), plain,
                     1e-4f * plain)
            << id;

    EXPECT_EQ (decimalText (-0.001f, 2), "0.00");
    const auto inAax = makeStripFor (juce::AudioProcessor::wrapperType_AAX);
    ASSERT_EQ (inAax->getParameters().size(), numParameters + 1);
    EXPECT_EQ (parameterID (*inAax->getParameters()[parameterIndex::gainReduction]), "gainReduction");
}

TEST (Parameters, EachReachesItsOwnFieldAndNoOther)
{
    Tarvik41Processor strip;
    auto previous = strip.currentSnapshot();

    for (int i = 0; i < numParameters; ++i)
    {
        auto& p = parameter (strip, parameterRow (i).id);

        for (const auto ignored : { std::nanf (""), HUGE_VALF, -HUGE_VALF })
            p.setValueNotifyingHost (ignored);

        EXPECT_EQ (p.getValue(), p.getDefaultValue()) << p.paramID;
        EXPECT_FLOAT_EQ (plainValueOf (strip.currentSnapshot(), i), p.convertFrom0to1 (p.getValue())) << p.paramID;
        p.setValueNotifyingHost (p.getValue() > 0.5f ? 0.0f : 1.0f);

        for (int j = 0; j < numParameters; ++j)
            EXPECT_EQ (plainValueOf (strip.currentSnapshot(), j) != plainValueOf (previous, j), i == j)
                << p.paramID << " and field " << j;

        previous = strip.currentSnapshot();
    }

    for (const auto none : { -1, parameterIndex::gainReduction + 1 })
        EXPECT_EQ (fieldForParameter (previous, none).kind, ParameterFieldKind::None);
}

/** A host may set a switch to any number, and shows what it reads back. */
TEST (Parameters, ASwitchHoldsWhatTheStripHearsAndALoadTellsTheHost)
{
    Tarvik41Processor strip;
    const auto project = saved (strip);
    auto& pad = parameter (strip, "pad");

    for (const auto& [set, held] : { std::pair (0.5f, 1.0f), { 0.51f, 1.0f }, { -3.0f, 0.0f }, { 0.375f, 0.0f } })
    {
        pad.setValueNotifyingHost (set);
        EXPECT_EQ (pad.getValue(), held);
        EXPECT_EQ (strip.currentSnapshot().pad, held > 0.0f);
    }

    HostEars host (strip);

    for (const auto* const told : { "v2 ", "" }) // the host may still show 0.375
    {
        load (strip, project);
        EXPECT_EQ (host.heard(), told);
    }

    EXPECT_EQ (pad.getText (0.4f, 10) + pad.getText (0.6f, 10), "OffOn");
    EXPECT_EQ (pad.getValueForText ("Yes") + pad.getValueForText ("1") + pad.getValueForText ("off"), 2.0f);
}

TEST (Parameters, ASnapshotIsOneUpdateAndTellsOnlyWhatDiffers)
{
    BareStrip strip;
    setPlain (strip, { { "gain", 7.0f }, { "pad", 1.0f } });
    strip.takeLog();
    HostEars host (strip);
    ParameterSnapshot other;
    other.trackName = "not a parameter";
    other.calibration = 1.0;

    for (const auto& [snapshot, told] : { std::pair (strip.currentSnapshot(), ""), { other, "v1 v2 " } })
    {
        strip.applySnapshot (snapshot);
        EXPECT_EQ (host.heard(), told);
        EXPECT_EQ (strip.takeLog(), std::vector<std::string> { "update" });
    }

    EXPECT_EQ (strip.currentSnapshot().trackName, juce::String());
    EXPECT_EQ (strip.currentSnapshot().calibration.get(), ParameterSnapshot::defaultCalibration);
    EXPECT_EQ (strip.currentSnapshot().gain.get(), 0.0f);
}

} // namespace tarvik
