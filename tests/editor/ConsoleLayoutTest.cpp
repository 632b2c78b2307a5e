// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ConsoleLayout.h"

#include <gtest/gtest.h>

#include <map>

namespace tarvik
{
namespace
{
using namespace consoleLayout;
using Pixels = juce::Rectangle<int>;

Pixels designPixels (const Box& box) { return box.on (designWidth, designHeight); }

const char* idOf (int index) { return index == noParameter ? "" : parameterRows[static_cast<std::size_t> (index)].id; }

/** Kind and parameter or name of every control, with its box as it was measured in the drawing of the panel. */
const std::map<std::string, Pixels> drawing {
    { "gain", { 120, 1357, 300, 300 } },
    { "highGain", { 780, 123, 300, 300 } },
    { "midGain", { 780, 558, 300, 300 } },
    { "midFreq", { 551, 790, 300, 300 } },
    { "lowGain", { 780, 1105, 300, 300 } },
    { "lowFreq", { 546, 1357, 300, 300 } },
    { "compHPF", { 1107, 153, 240, 240 } },
    { "compMix", { 1350, 150, 240, 240 } },
    { "compRatio", { 1320, 612, 300, 300 } },
    { "compRelease", { 1080, 848, 300, 300 } },
    { "compThreshold", { 1320, 1105, 300, 300 } },
    { "compInput", { 1080, 1357, 300, 300 } },
    { "expRange", { 1860, 612, 300, 300 } },
    { "expRelease", { 1620, 848, 300, 300 } },
    { "expThreshold", { 1860, 1105, 300, 300 } },
    { "compOutput", { 1620, 1357, 300, 300 } },
    { "level", { 2278, 315, 300, 1706 } },
    { "thd", { 243, 1199, 54, 54 } },
    { "highPass", { 852, 1703, 180, 180 } },
    { "expMode", { 1662, 1703, 180, 180 } },
    { "highFreq", { 612, 366, 180, 180 } },
    { "compAttack", { 1389, 915, 180, 180 } },
    { "expAttack", { 1920, 915, 180, 180 } },
    { "pad", { 34, 1700, 180, 180 } },
    { "", { 180, 1700, 180, 181 } },
    { "unity", { 324, 1700, 180, 181 } },
    { "equalizer", { 582, 1700, 180, 181 } },
    { "eqPost", { 720, 1700, 180, 181 } },
    { "midMode", { 840, 848, 180, 181 } },
    { "compLimit", { 1140, 440, 180, 181 } },
    { "compIn", { 1122, 1700, 180, 181 } },
    { "compNiveau", { 1260, 1700, 180, 181 } },
    { "compNuke", { 1390, 1700, 180, 181 } },
    { "expHold", { 1800, 1700, 180, 181 } },
    { "expInverted", { 1930, 1700, 180, 181 } },
};

/** Corners of the lamps, all 51 by 51. */
const std::map<std::string, juce::Point<int>> lampCorners {
    { "pad", { 102, 1682 } },       { "unity", { 390, 1682 } },    { "equalizer", { 645, 1682 } },
    { "compLimit", { 1206, 432 } }, { "compIn", { 1188, 1682 } },  { "compNiveau", { 1326, 1682 } },
    { "compNuke", { 1458, 1682 } }, { "expHold", { 1866, 1682 } }, { "expInverted", { 1998, 1682 } },
};
} // namespace

TEST (ConsoleLayout, EveryControlIsWhereTheDrawingHasIt)
{
    std::map<std::string, Pixels> placed;
    std::map<std::string, juce::Point<int>> lamps;

    const auto addAll = [&] (const auto& rows)
    {
        for (const auto& row : rows)
            placed[idOf (row.parameter)] = designPixels (row.box);
    };

    addAll (knobs);
    addAll (switches);
    addAll (pushButtons);
    addAll (std::array { levelFader, trim });

    for (const auto& row : pushButtons)
    {
        if (row.lamp == Picture::none)
            continue;

        const auto box = designPixels (row.lampBox);
        lamps[idOf (row.parameter)] = box.getPosition();
        EXPECT_EQ (box.getWidth(), 51);
        EXPECT_EQ (box.getHeight(), 51);
    }

    EXPECT_EQ (placed, drawing);
    EXPECT_EQ (lamps, lampCorners);
}

TEST (ConsoleLayout, WhatHasNoParameterIsWhereTheDrawingHasIt)
{
    const std::pair<Box, Pixels> others[] {
        { mute, { 2214, 75, 165, 165 } },
        { phase, { 2484, 75, 165, 165 } },
        { vuMeter, { 84, 81, 372, 189 } },
        { gainReductionMeter, { 84, 552, 372, 189 } },
        { link, { 1770, 21, 90, 75 } },
        { outputLegend.box, { 234, 238, 78, 27 } },
        { compressorLed.box, { 1410, 474, 120, 120 } },
        { expanderLed.box, { 1950, 474, 120, 120 } },
        { plateMono.box, { 1620, 115, 540, 196 } },
        { plateStereo.box, { 1620, 115, 540, 196 } },
        { channelName.box, { 1635, 171, 510, 105 } },
        { leftNumber.box, { 1620, 115, 73, 52 } },
        { rightNumber.box, { 1890, 115, 73, 52 } },
        { previousChannel.box, { 1624, 256, 72, 51 } },
        { nextChannel.box, { 2084, 256, 72, 51 } },
        { randomChannel.box, { 1905, 21, 90, 75 } },
        { randomInAll.box, { 2034, 21, 90, 75 } },
        { mixReadout.box, { 1386, 114, 162, 72 } },
        { filterReadout.box, { 1143, 114, 162, 72 } },
        { debug.box, { 2208, 0, 450, 72 } },
    };

    for (const auto& [box, pixels] : others)
        EXPECT_EQ (designPixels (box), pixels) << pixels.toString();

    // A third of it, rounded anew.
    EXPECT_EQ (knobs[0].box.on (width, height), Pixels (40, 453, 100, 100));
    EXPECT_EQ (levelFader.box.on (width, height), Pixels (759, 105, 100, 569));
    EXPECT_EQ (pushButtons[0].lampBox.on (width, height), Pixels (34, 561, 17, 17));
}

/** Steps must be the parameter's own, or a click would land between two choices. */
TEST (ConsoleLayout, SteppedKnobsHaveAStepForEachChoice)
{
    for (const auto& knob : knobs)
    {
        const auto& choices = parameterRows[static_cast<std::size_t> (knob.parameter)].choices;
        EXPECT_EQ (choices.empty(), knob.step == 0.0f) << idOf (knob.parameter);

        if (choices.empty())
            continue;

        EXPECT_FLOAT_EQ (knob.step * static_cast<float> (choices.size() - 1), 1.0f) << idOf (knob.parameter);
    }
}

} // namespace tarvik
