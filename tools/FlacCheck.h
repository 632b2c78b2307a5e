// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik
{

/** Decodes a FLAC file from end to end and says whether all of it is there and as it was encoded, by its frames' check
    sums, its length and its MD5 sum. JUCE's reader puts silence in the place of what it cannot decode. Takes about a
    thousandth of the audio's duration.
*/
bool isFlacIntact (const juce::File& file);

} // namespace tarvik
