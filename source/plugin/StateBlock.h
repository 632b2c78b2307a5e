// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <memory>

namespace tarvik
{

/** The document in a block that a host kept for us, or null where there is none. Any bytes may come in.

    JUCE's parser trusts its input: it recurses for every nested element, expands entities that the text declares, and
    reads past the end of text that is cut inside a character or a character reference, and never returns from some
    instructions. So a block reaches it only if it is small, flat, valid UTF-8, and nothing but elements behind the XML
    declaration: a comment, an instruction, a CDATA section or a document type in it, none of which the strip writes,
    and there is no document. Any thread with 256 KiB of stack.

    data           may be null if sizeInBytes is below 9
    sizeInBytes    may be anything; a block of 8 bytes or fewer holds nothing
*/
std::unique_ptr<juce::XmlElement> parseStateBlock (const void* data, int sizeInBytes);

} // namespace tarvik
