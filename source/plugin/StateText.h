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
    writes: their number, a dot, and six bits a character. The number is ignored, other characters are skipped, and a
    zero byte ends the text. False, and an empty block, where nothing follows a dot or the text has more than two
    million characters. Any thread; any text. (No header of JUCE's here: its wrapper includes this one before it has set
    JUCE up.)
*/
bool readStateText (std::string_view text, juce::MemoryBlock& block);

} // namespace tarvik
