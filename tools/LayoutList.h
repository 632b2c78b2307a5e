// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik
{

/** Where every control of the console panel is in the pixels of its picture, and where its scale's marks belong, as
    JSON. The picture's scales are printed from this, so that what stands on the panel is what the code does.
*/
juce::String layoutAsJson();

} // namespace tarvik
