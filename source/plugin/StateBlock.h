// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <memory>

namespace tarvik
{

/** The document in a block that a host kept for us, as far as it is of use: the root with its attributes, and the first
    child of each slot with its own. Null where there is no such document: text that is not XML up to the root's end, a
    root of another name, more than a megabyte of text, or a document type that declares entities. Comments, sections,
    instructions and elements that the strip does not know are passed over, as is whatever follows the root.

    Any bytes may come in, and any thread may call it: Expat reads them in time and memory that grow with the text, and
    does not recurse. (JUCE's parser, which the text does not reach, recurses for every nested element, reads past the
    end of some texts and never returns from others.)

    data           may be null if sizeInBytes is below 9
    sizeInBytes    may be anything; a block of 8 bytes or fewer holds nothing
*/
std::unique_ptr<juce::XmlElement> parseStateBlock (const void* data, int sizeInBytes);

} // namespace tarvik
