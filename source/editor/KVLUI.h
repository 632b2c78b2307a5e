// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/KVLProcessor.h"
#include "plugin/ParameterRows.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <map>
#include <vector>

namespace tarvik
{

/** A page of the window whose controls stand for parameters: knows which control shows which, and marks the ones that
    the host wants to point out. Message thread.
*/
class KVLUI : public juce::Component
{
public:
    explicit KVLUI (KVLProcessor& processorToShow) : processor (processorToShow) {}

    /** The host's index of what a control stands for, or `noParameter`. */
    int parameterOf (const juce::Component& control) const;

    /** The controls that stand for a parameter, in the order of their registration. */
    std::vector<juce::Component*> controlsOf (int index) const;

    /** Frames a parameter's control in the host's colour; does nothing for a parameter without a control. */
    void setHighlight (int index, juce::Colour colour);
    void clearHighlight (int index);

    void resized() override;
    void paintOverChildren (juce::Graphics& g) override;

protected:
    void registerControl (int index, juce::Component& control);

    juce::RangedAudioParameter& parameterAt (int index) const;

    KVLProcessor& processor;
    std::map<int, std::vector<juce::Component*>> parameterToControls;
    std::map<const juce::Component*, int> controlToParameter;

private:
    juce::Rectangle<int> boundsOf (int index) const;

    struct Highlight
    {
        juce::Rectangle<int> bounds;
        juce::Colour colour;
    };

    std::map<int, Highlight> highlights;
};

} // namespace tarvik
