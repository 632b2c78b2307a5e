// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/Sites.h"

namespace tarvik
{

Sites Sites::configured() { return { TARVIK_VENDOR_URL, TARVIK_MAKER_URL }; }

juce::String Sites::productPage (const juce::String& folder) const
{
    return family.isEmpty() ? juce::String()
                            : family.trimCharactersAtEnd ("/") + "/" + folder + "/" + "tarvik_41_series";
}

} // namespace tarvik
