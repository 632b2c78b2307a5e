// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the corrected copy of JUCE's VST3 wrapper calls (cmake/CorrectedWrappers.cmake). No header of JUCE's here: the copy
// includes this one before it has set JUCE up.
namespace tarvik
{

/** Whether a VST3 state ends in the bypass switch exactly as JUCE's wrapper writes it after ours: 60 bytes, of a tree
    with one property, its length and a mark. Only then may the wrapper, which trusts that length, read them. Any
    thread; any bytes.
*/
bool endsInPrivateState (const void* data, int sizeInBytes) noexcept;

/** What a parameter with so many steps (0 for a continuous one) holds after a host has sent a number: the nearest step
    within 0 to 1, or the former value if it is not a number. Any thread.
*/
double heldValue (double sent, int numSteps, double former) noexcept;

} // namespace tarvik
