// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the corrected copy of JUCE's LV2 wrapper calls (cmake/CorrectedWrappers.cmake). No header of JUCE's here: the copy
// includes this one before it has set JUCE up.
#include "plugin/StateText.h"

namespace juce
{
class AudioProcessor;
}

namespace tarvik
{

/** An LV2 plug-in's ports are fixed, so the binary has two plug-ins: the stereo one, and this one for mono tracks. */
inline constexpr const char* lv2MonoUri = JucePlugin_LV2URI ":mono";

/** Gives a new strip the buses of the plug-in with this URI, all of them switched on: mono or stereo. Message thread. */
void setLv2Buses (juce::AudioProcessor& strip, const char* uri);

} // namespace tarvik
