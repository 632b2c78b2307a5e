// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/BareStrip.h"
#include "tests/support/Golden.h"
#include "tests/support/StateTestTools.h"

namespace tarvik
{

using namespace test;

namespace
{
juce::String textOf (juce::AudioProcessor& strip, const char* id, float plain)
{
    auto& p = parameter (strip, id);
    return p.getText (p.convertTo0to1 (plain), 5);
}

float fromText (juce::AudioProcessor& strip, const char* id, const char* typed)
{
    auto& p = parameter (strip, id);
    return p.convertFrom0to1 (p.getValueForText (typed));
}
} // namespace

TEST (Parameters, AreThoseThatProjectsAndAutomationAreStoredWith)
{
    Tarvik41Processor strip;
    juce::String all;

    for (auto* const p : strip.getParameters())
    {
        const auto& parameter = *dynamic_cast<juce::RangedAudioParameter*> (p);
        const auto& range = parameter.getNormalisableRange();
        all << parameterID (parameter) << " | " << parameter.getName (100) << " | " << parameter.getLabel() << " | "
            << range.start << " to " << range.end << " by " << range.interval << " | default "
            << parameter.convertFrom0to1 (parameter.getDefaultValue()) << " | half way "
            << juce::String (parameter.convertFrom0to1 (0.5f), 3) << " | "
            << parameter.getAllValueStrings().joinIntoString (", ") << "\n";
        EXPECT_TRUE (parameter.isAutomatable());
        EXPECT_EQ (parameter.getCategory(), juce::AudioProcessorParameter::genericParameter);
    }

    expectGolden ("parameters.txt", all);

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
        auto& p = *dynamic_cast<juce::RangedAudioParameter*> (strip.getParameters()[i]);
        EXPECT_FLOAT_EQ (plainValueOf (previous, i), p.convertFrom0to1 (p.getDefaultValue())) << p.paramID;

        p.setValueNotifyingHost (p.getValue() > 0.5f ? 0.0f : 1.0f);

        for (int j = 0; j < numParameters; ++j)
            EXPECT_EQ (plainValueOf (strip.currentSnapshot(), j) != plainValueOf (previous, j), i == j)
                << p.paramID << " and field " << j;

        previous = strip.currentSnapshot();
    }

    for (const auto none : { -1, parameterIndex::gainReduction + 1 })
        EXPECT_EQ (fieldForParameter (strip.currentSnapshot(), none).kind, ParameterFieldKind::None);
}

/** A host may set a switch to any number, and shows what it reads back. */
TEST (Parameters, ASwitchHoldsWhatTheStripHearsAndALoadTellsTheHost)
{
    Tarvik41Processor strip;
    const auto project = saved (strip);
    auto& pad = parameter (strip, "pad");

    for (const auto& [set, held] : { std::pair (0.375f, 0.0f), { 0.5f, 1.0f }, { 0.51f, 1.0f }, { -3.0f, 0.0f } })
    {
        pad.setValueNotifyingHost (set);
        EXPECT_EQ (pad.getValue(), held);
        EXPECT_EQ (strip.currentSnapshot().pad, held > 0.0f);
    }

    pad.setValueNotifyingHost (0.375f);
    HostEars host (strip);
    load (strip, project);
    EXPECT_EQ (host.heard(), "v2 ") << "the host may still show 0.375";
    load (strip, project);
    EXPECT_EQ (host.heard(), "");
    EXPECT_EQ (pad.getText (0.4f, 10) + pad.getText (0.6f, 10), "OffOn");
    EXPECT_EQ (pad.getValueForText ("Yes") + pad.getValueForText ("1") + pad.getValueForText ("off"), 2.0f);
}

TEST (Parameters, TextRulesReadLikeTheConsoleAndReadBack)
{
    Tarvik41Processor strip;

    for (const auto& [id, plain, text] : { std::tuple ("midGain", 0.0f, "0.00"),
                                           { "lowGain", 0.2f, "3.34" },
                                           { "lowGain", 1.0f, "15.42" },
                                           { "compMix", 0.476f, "48 %" },
                                           { "compHPF", 20.0f, "Off" },
                                           { "compHPF", 123.4f, "123.4 Hz" },
                                           { "expRelease", 0.3f, "0.300" },
                                           { "level", -80.0f, "-80.0" } })
        EXPECT_EQ (textOf (strip, id, plain), text) << id;

    for (float x = 0.0f; x <= 1.0f; x += 0.01f)
        for (const auto* id : { "midGain", "lowGain" })
            EXPECT_NEAR (fromText (strip, id, textOf (strip, id, x).toRawUTF8()), x, 0.0101f) << id;

    // No level is the lower end, not a number gone bad.
    for (const auto& [id, text, plain] : { std::tuple ("compHPF", "Off", 20.0f),
                                           { "compHPF", "90.0 Hz", 90.0f },
                                           { "compMix", "47 %", 0.47f },
                                           { "midGain", "15.42 dB", 1.0f },
                                           { "midGain", "-100", 0.0f } })
        EXPECT_NEAR (fromText (strip, id, text), plain, 1e-4f * plain) << id;

    EXPECT_EQ (decimalText (-0.001f, 2), "0.00");
}

TEST (Parameters, TravelsAreTheFadersAndTheLogarithmic)
{
    Tarvik41Processor strip;

    for (const auto& [id, travel, plain] : { std::tuple ("level", 0.125f, -40.0f),
                                             { "level", 0.3125f, -25.0f },
                                             { "level", 0.75f, 0.0f },
                                             { "expRelease", 0.0f, 0.025f },
                                             { "expRelease", 0.5f, 0.2f },
                                             { "expRelease", 1.0f, 1.6f } })
        EXPECT_FLOAT_EQ (parameter (strip, id).convertFrom0to1 (travel), plain) << id;

    for (const auto& row : parameterRows)
        for (int i = 0; i <= 1000; ++i)
        {
            auto& p = parameter (strip, row.id);
            const auto plain = p.convertFrom0to1 (static_cast<float> (i) / 1000.0f);
            ASSERT_FLOAT_EQ (p.convertFrom0to1 (p.convertTo0to1 (plain)), plain) << row.id << " at " << i;
        }
}

TEST (Parameters, WhatIsNotANumberIsIgnoredByEveryKind)
{
    Tarvik41Processor strip;

    for (const auto bad : { std::nanf (""), HUGE_VALF })
        for (auto* const p : strip.getParameters())
        {
            p->setValueNotifyingHost (0.7f);
            const auto before = p->getValue();
            const auto field = plainValueOf (strip.currentSnapshot(), p->getParameterIndex());
            p->setValueNotifyingHost (bad);
            EXPECT_EQ (p->getValue(), before) << p->getName (50);
            EXPECT_EQ (plainValueOf (strip.currentSnapshot(), p->getParameterIndex()), field) << p->getName (50);
        }
}

TEST (Parameters, ASnapshotIsOneUpdateAndTellsOnlyWhatDiffers)
{
    BareStrip strip;
    setPlain (strip, { { "gain", 7.0f }, { "pad", 1.0f } });
    strip.takeLog();
    HostEars host (strip);
    strip.applySnapshot (ParameterSnapshot (strip.currentSnapshot()));
    EXPECT_EQ (host.heard(), "");
    EXPECT_EQ (strip.takeLog(), std::vector<std::string> { "update" });

    ParameterSnapshot other;
    other.trackName = "not a parameter";
    other.calibration = 1.0;
    strip.applySnapshot (other);
    EXPECT_EQ (host.heard(), "v1 v2 ");
    EXPECT_EQ (strip.takeLog(), std::vector<std::string> { "update" });
    EXPECT_EQ (strip.currentSnapshot().trackName, juce::String());
    EXPECT_EQ (strip.currentSnapshot().calibration.get(), ParameterSnapshot::defaultCalibration);
    EXPECT_EQ (strip.currentSnapshot().gain.get(), 0.0f);
}

} // namespace tarvik
