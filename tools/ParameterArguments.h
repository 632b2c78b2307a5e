// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik
{

/** One parameter, by its place in the table, and where its travel is wanted, from 0 to 1. */
struct ParameterSetting
{
    int index = 0;
    float normalised = 0.0f;
};

/** Reads ID=TEXT, with the text in the parameter's own units: a choice by its words, a switch as on, off, true, false,
    yes, no, 1 or 0, a number with or without its unit, and any text that the parameter itself shows. Words in upper or
    lower case. Or ID@PLACE, with the place in the parameter's travel from 0 to 1.

    Throws `ToolError` for an unknown ID, a text that says nothing, and a value out of range; nothing is bent to fit.
*/
ParameterSetting parseParameterSetting (const juce::String& argument);

/** The place of a program in a list: by name, else by name in any case, else by number from 0. Throws `ToolError` if
    there is none.
*/
int programNamed (const juce::StringArray& names, const juce::String& nameOrNumber);

/** What a parameter of the table can be set to, in words: its choices, or its range with the unit. */
juce::String describeValues (int index);

/** The text that a parameter shows for a value, with the unit added where the text is a bare number. */
juce::String withUnit (int index, const juce::String& shownText);

} // namespace tarvik
