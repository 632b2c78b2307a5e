// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What JUCE's VST3 wrapper calls in its corrected copy (cmake/CorrectedWrappers.cmake). Without a header of JUCE's, because
// the copy includes this one before it has set JUCE up.
namespace tarvik
{

/** Whether a VST3 state ends in the bypass switch as JUCE's wrapper writes it after ours: the 60 bytes of a small tree
    with one property, its length and a mark, without a bit changed. The wrapper, which trusts that length and that tree,
    then reads them; otherwise it leaves the switch alone and hands all bytes on. Any thread; any bytes.
*/
bool endsInPrivateState (const void* data, int sizeInBytes) noexcept;

/** What a parameter with so many steps (0 for a continuous one) holds after a host has sent a number: the nearest step
    within 0 to 1, and the former value where it is not a number. The wrapper would keep and show whatever was sent. Any
    thread.
*/
double heldValue (double sent, int numSteps, double former) noexcept;

} // namespace tarvik
