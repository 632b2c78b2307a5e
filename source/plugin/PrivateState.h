// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik
{

/** Whether a VST3 state ends in the bypass switch as JUCE's wrapper writes it after ours: the 60 bytes of a small tree
    with one property, its length and a mark, without a bit changed. The wrapper, which trusts that length and that tree,
    then reads them; otherwise it leaves the switch alone and hands all bytes on. Any thread; any bytes.

    Without a header of JUCE's, since the wrapper includes this one before it has set JUCE up.
*/
bool endsInPrivateState (const void* data, int sizeInBytes) noexcept;

} // namespace tarvik
