// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/EditorInterface.h"
#include "plugin/KVLProcessor.h"

namespace tarvik
{

/** Until the console panel exists, JUCE's generic list of parameters is the window. */
juce::AudioProcessorEditor* createStripEditor (KVLProcessor& processor)
{
    return new juce::GenericAudioProcessorEditor (processor);
}

} // namespace tarvik
