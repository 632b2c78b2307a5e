// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik
{

/** What a parameter does, in a sentence for the tooltip and for assistive technology; empty for an unknown ID. */
juce::String helpFor (const juce::String& parameterID);

} // namespace tarvik
