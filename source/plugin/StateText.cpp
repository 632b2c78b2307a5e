// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/StateText.h"

#include <juce_core/juce_core.h>

namespace tarvik
{

bool readStateText (std::string_view text, juce::MemoryBlock& block)
{
    constexpr std::string_view digits = ".ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+";
    constexpr unsigned bitsPerDigit = 6, bitsPerByte = 8;
    constexpr std::size_t longest = 1 << 21; // a state has some thousand; ten times this would take seconds

    block.reset();
    text = text.substr (0, text.find ('\0'));
    const auto dot = text.find ('.');

    if (dot == std::string_view::npos || text.size() > longest)
        return false;

    text.remove_prefix (dot + 1);
    block.setSize (text.size() / bitsPerByte * bitsPerDigit + bitsPerDigit);
    std::size_t size = 0, bits = 0;
    unsigned numBits = 0;

    // The lowest bits come first.
    for (const auto character : text)
        if (const auto digit = digits.find (character); digit != std::string_view::npos)
        {
            bits |= digit << numBits;
            numBits += bitsPerDigit;

            if (numBits >= bitsPerByte)
            {
                block[size++] = static_cast<char> (bits);
                bits >>= bitsPerByte;
                numBits -= bitsPerByte;
            }
        }

    block.setSize (size);
    return size > 0;
}

} // namespace tarvik
