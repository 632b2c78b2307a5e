// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik
{

/** What the registry of Windows keeps of an installed module, for the user's other programs: nothing here reads it. */
struct ProductRecord
{
    struct Value
    {
        const char* name;
        juce::var content; ///< A text or a whole number.
    };

    juce::String key; ///< Below HKEY_CURRENT_USER, which needs no rights: the module's path with slashes.
    std::vector<Value> values;
};

/** The record of the module in that file, which tells the format by the file's suffix. */
ProductRecord productRecord (const juce::File& module);

/** Writes the record of this module where there is a registry. Any thread. */
void writeProductRecord();

} // namespace tarvik
