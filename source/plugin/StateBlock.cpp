// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/StateBlock.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <algorithm>
#include <string_view>

namespace tarvik
{

namespace
{
constexpr int headerBytes = 8; ///< A mark and the length of the text, four bytes each.

/** A document of ours has 1.5 KB. Beyond this JUCE's pool of attribute names, kept sorted, would take seconds. */
constexpr std::size_t largestText = 1 << 16;

/** A document of ours has five angle brackets and no ampersand. As every element needs a bracket, this bounds how deep
    they nest, at about half a kilobyte of stack each. For each ampersand the parser may go through all the text behind
    it.
*/
constexpr std::ptrdiff_t mostMarks = 256;

bool hasFew (std::string_view text, char mark) { return std::count (text.begin(), text.end(), mark) <= mostMarks; }

/** Hexadecimal references without their end take the parser one byte past whatever follows. */
bool completesHexReferences (std::string_view text)
{
    constexpr std::string_view opening = "&#";

    for (auto at = text.find (opening); at != std::string_view::npos; at = text.find (opening, at))
    {
        at += opening.size();

        if (at >= text.size() || (text[at] != 'x' && text[at] != 'X'))
            continue;

        const auto end = text.find_first_not_of ("0123456789abcdefABCDEF", at + 1);

        if (end == std::string_view::npos || text[end] != ';')
            return false;
    }

    return true;
}

/** Whether there is nothing but elements behind the XML declaration. JUCE's parser never returns from an instruction
    with text behind it ("<a><?b?>c"), and a document type may let entities grow without bound. Comments go with them: a
    host hands back what the strip wrote, and that has none.
*/
bool isPlainMarkup (std::string_view text)
{
    constexpr auto none = std::string_view::npos;
    return text.find ("<!") == none && text.find ("<?", 1) == none;
}

bool isHarmless (std::string_view text)
{
    return text.size() <= largestText && hasFew (text, '<') && hasFew (text, '&') && isPlainMarkup (text)
           && juce::CharPointer_UTF8::isValidString (text.data(), static_cast<int> (text.size()))
           && completesHexReferences (text);
}
} // namespace

std::unique_ptr<juce::XmlElement> parseStateBlock (const void* data, int sizeInBytes)
{
    if (sizeInBytes <= headerBytes)
        return {};

    const auto* const bytes = static_cast<const char*> (data);
    const auto stated = static_cast<int> (juce::ByteOrder::littleEndianInt (bytes + headerBytes / 2));
    const auto length = std::clamp (stated, 0, sizeInBytes - headerBytes);
    const std::string_view whole (bytes + headerBytes, static_cast<std::size_t> (length));

    // The parser stops at a zero byte.
    if (! isHarmless (whole.substr (0, whole.find ('\0'))))
        return {};

    return juce::AudioProcessor::getXmlFromBinary (data, sizeInBytes);
}

} // namespace tarvik
