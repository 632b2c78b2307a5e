// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <optional>

namespace tarvik
{

/** How the numbers of the console channels are read and written. A strip of c main channels takes c neighbouring
    console channels, the first of which is the parameter. Any thread.
*/
namespace channelNumbers
{
inline constexpr int numChannels = 32;

/** What was typed over the first number, held to what the strip fits in: a tag like "L" and stops around the digits are
    dropped. Nothing if the rest is no number.
*/
std::optional<int> fromLeftText (const juce::String& text, int channelsOfStrip);

/** The first channel for what was typed over the last number; linked sides share one channel. */
std::optional<int> fromRightText (const juce::String& text, int channelsOfStrip, bool isLinked);

juce::String leftText (int channel, int channelsOfStrip, bool isLinked);
juce::String rightText (int channel, bool isLinked);
} // namespace channelNumbers

} // namespace tarvik
