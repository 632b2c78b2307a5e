// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <memory>

namespace tarvik
{

/** The document in a block that a host kept for us, as far as the strip reads it: the root, the first child of each
    slot, and their attributes that the strip knows. Everything else is skipped, space before the document and whatever
    follows the root too. Null if there is no such document: text that is not well-formed XML up to the root's end,
    another root, a document type with declarations in it, or more than 256 KiB of text.

    Any bytes, any size, any thread; `data` may be null if the size is below 9. Expat reads in time and memory that grow
    with the text, and does not recurse. (JUCE's own parser recurses for every nested element, reads past the end of
    some texts and never returns from others.)
*/
std::unique_ptr<juce::XmlElement> parseStateBlock (const void* data, int sizeInBytes);

} // namespace tarvik
