// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/KVLEditor.h"

namespace tarvik
{

/** The console for our strip, JUCE's list of parameters for any other processor. */
juce::AudioProcessorEditor* createStripEditor (KVLProcessor& processor)
{
    if (auto* const strip = dynamic_cast<Tarvik41Processor*> (&processor))
        return new KVLEditor (*strip);

    return new juce::GenericAudioProcessorEditor (processor);
}

} // namespace tarvik
