// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

namespace juce
{
class MemoryBlock;
}

namespace tarvik
{

/** The bytes of a state that an LV2 host or the program's settings kept as text, in the form that JUCE's MemoryBlock
    writes: their number, a dot, and six bits a character. The number is not trusted, nor needed; characters that stand
    for nothing are skipped, and a zero byte ends the text. Any thread; any text, and never more memory than the text has.

    False, and an empty block, where there is nothing after a dot. Without a header of JUCE's, since JUCE's wrapper
    includes this one before it has set JUCE up.
*/
bool readStateText (std::string_view text, juce::MemoryBlock& block);

} // namespace tarvik
