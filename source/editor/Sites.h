// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik
{

/** The web sites that the window links to, as configured for the build; empty for none. */
struct Sites
{
    juce::String family; ///< Of the products: its home page.
    juce::String maker;  ///< Of those who make them: its home page.

    static Sites configured();

    /** The page about this product in a folder of the family's site; empty without a site. */
    juce::String productPage (const juce::String& folder) const;
};

} // namespace tarvik
