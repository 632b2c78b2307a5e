// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik
{

/** The start of the signal-processing library, run by each new instance first: writes a line to standard output and, on
    Windows, the product's record into the registry, chooses the processor's code paths, so that the audio thread never has
    to, and registers the self-checks `VBufferTest` and `PolyphaseTest` in JUCE's category "KVLLib", in place of those of
    the instance before. Any thread; several at once wait for each other.
*/
void startLibrary();

} // namespace tarvik
