// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <memory>

namespace tarvik
{

/** The document in a block that a host kept for us, as far as the strip reads it: the root, the first child of each
    slot, and of both the attributes that the strip knows. Null where there is no such document: text that is not
    well-formed XML up to the root's end, a root of another name, a document type with declarations in it, or more than
    256 KiB of text. Comments, sections, instructions and all that the strip does not know are passed over, and so are
    space in front of the document and whatever follows the root.

    Any bytes may come in, and any thread may call it: Expat reads them in time and memory that grow with the text, and
    does not recurse. (JUCE's parser, which the text does not reach, recurses for every nested element, reads past the
    end of some texts and never returns from others.)

    data           may be null if sizeInBytes is below 9
    sizeInBytes    may be anything; a block of 8 bytes or fewer holds nothing
*/
std::unique_ptr<juce::XmlElement> parseStateBlock (const void* data, int sizeInBytes);

} // namespace tarvik
