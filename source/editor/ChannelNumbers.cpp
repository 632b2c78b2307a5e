// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ChannelNumbers.h"

namespace tarvik::channelNumbers
{

namespace
{
/** Large enough to be out of range and small enough not to overflow, however many digits there are. */
constexpr juce::int64 huge = 9999;

std::optional<int> numberBehind (const juce::String& text, const char* tagCharacters)
{
    const auto digits = text.trimCharactersAtStart (tagCharacters);

    if (digits.isEmpty() || ! digits.containsOnly ("0123456789"))
        return {};

    const auto isHuge = digits.trimCharactersAtStart ("0").length() > 4;
    return static_cast<int> (isHuge ? huge : digits.getLargeIntValue());
}
} // namespace

std::optional<int> fromLeftText (const juce::String& text, int channelsOfStrip)
{
    const auto number = numberBehind (text, " Ll.,");
    return number ? std::optional (juce::jlimit (1, numChannels + 1 - channelsOfStrip, *number)) : number;
}

std::optional<int> fromRightText (const juce::String& text, int channelsOfStrip, bool isLinked)
{
    const auto width = isLinked ? 1 : channelsOfStrip;
    const auto number = numberBehind (text, " Rr.,");
    return number ? std::optional (std::max (width, std::min (*number, numChannels)) - width + 1) : number;
}

juce::String leftText (int channel, int channelsOfStrip, bool isLinked)
{
    return (channelsOfStrip == 2 && isLinked ? "L:" : "") + juce::String (channel) + (channelsOfStrip > 2 ? "..." : "");
}

juce::String rightText (int channel, bool isLinked)
{
    return isLinked ? "R:" + juce::String (channel) : juce::String (std::min (channel + 1, numChannels));
}

} // namespace tarvik::channelNumbers
