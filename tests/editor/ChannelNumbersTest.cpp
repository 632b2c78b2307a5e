// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ChannelNumbers.h"

#include "editor/EditorSize.h"

#include <gtest/gtest.h>

namespace tarvik
{

TEST (ChannelNumbers, ATypedNumberIsHeldToWhatTheStripFitsIn)
{
    using channelNumbers::fromLeftText;

    for (const auto& [text, mono, stereo] : { std::tuple ("7", 7, 7),
                                              { "L7", 7, 7 },
                                              { " l. 12", 12, 12 },
                                              { "0", 1, 1 },
                                              { "32", 32, 31 },
                                              { "99", 32, 31 },
                                              { "0000000000012", 12, 12 },
                                              { "99999999999999999999", 32, 31 } })
    {
        EXPECT_EQ (fromLeftText (text, 1), mono) << text;
        EXPECT_EQ (fromLeftText (text, 2), stereo) << text;
    }

    // The colon of the shown tag is none of the characters that are dropped.
    for (const auto* const junk : { "", "L", "abc", "-3", "7a", "7 ", "L:7", "R7" })
        EXPECT_FALSE (fromLeftText (junk, 1).has_value()) << junk;
}

TEST (ChannelNumbers, TheRightNumberMovesTheLeftChannelBelowIt)
{
    using channelNumbers::fromRightText;

    for (const auto& [text, unlinked, linked] :
         { std::tuple ("9", 8, 9), { "R9", 8, 9 }, { "1", 1, 1 }, { "0", 1, 1 }, { "40", 31, 32 } })
    {
        EXPECT_EQ (fromRightText (text, 2, false), unlinked) << text;
        EXPECT_EQ (fromRightText (text, 2, true), linked) << text;
    }

    EXPECT_FALSE (fromRightText ("L9", 2, false).has_value());
}

TEST (EditorSize, FollowsTheZoomAndStaysOnTheDisplay)
{
    using editorSize::forZoom;
    using Size = juce::Point<int>;

    for (const auto& [zoom, size] : { std::pair (0.8, Size (720, 605)),
                                      { 0.9, Size (810, 673) },
                                      { 1.0, Size (900, 741) },
                                      { 1.2, Size (1080, 876) },
                                      { 1.5, Size (1350, 1079) } })
        EXPECT_EQ (forZoom (zoom, {}), size) << zoom;

    // (768 x 0.9 - 64) / 740.67 is 0.8468, less than the width allows.
    EXPECT_EQ (forZoom (1.5, juce::Rectangle (1024, 768)), Size (762, 637));
    EXPECT_EQ (forZoom (0.8, juce::Rectangle (1024, 768)), Size (720, 605));

    // From a damaged project: a small window, or the usual one, but a window.
    for (const auto broken : { 0.0, -3.0, 1e-30 })
        EXPECT_EQ (forZoom (broken, {}), Size (90, 132)) << broken;

    EXPECT_EQ (forZoom (std::numeric_limits<double>::quiet_NaN(), {}), Size (900, 741));
    EXPECT_LT (forZoom (1e300, juce::Rectangle (1920, 1080)).y, 1080);
    EXPECT_GT (forZoom (1.0, juce::Rectangle (1, 1)).x, 0);
    EXPECT_EQ (forZoom (1.0, juce::Rectangle<int>()), Size (900, 741)) << "a display that says nothing is none";
}

} // namespace tarvik
