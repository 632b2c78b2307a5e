// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik
{

/** @file
    What the tools ask of the system itself, in linux/System.cpp and windows/System.cpp.
*/

/** The words after the program's name, whatever characters they hold. Called first in main: from then on the standard
    streams carry the bytes that are written, unchanged.
*/
juce::StringArray startProgram (int argc, char** argv);

/** A text that two paths of an existing file have in common, over links of either kind; empty if there is no such file. */
juce::String fileIdentity (const juce::File& file);

/** The file of a bundle that JUCE's VST3 host opens: the bundle itself, or on Windows the module in it. */
juce::File openableModule (const juce::File& bundle);

} // namespace tarvik
