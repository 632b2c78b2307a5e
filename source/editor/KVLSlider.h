// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvik
{

/** A slider from 0 to 1 whose wheel suits positions as well as travels: on a stepped slider a notched wheel counts
    notches, fine movements with Ctrl add up to a step, and what is left is forgotten after a pause. Message thread.
*/
class KVLSlider : public juce::Slider, private juce::Timer, private juce::Slider::Listener
{
public:
    KVLSlider (SliderStyle style, int width, int height);

    void mouseWheelMove (const juce::MouseEvent& event, const juce::MouseWheelDetails& wheel) override;

    /** True from a step of the wheel until the listeners have heard of it: meanwhile the parameter's value is the older
        one and must not be put back.
    */
    bool hasUnsentStep() const noexcept { return unsentStep; }

protected:
    /** The value as a share of the travel. */
    float share() { return static_cast<float> (valueToProportionOfLength (getValue())); }

private:
    void timerCallback() override;

    /** The first listener to come is the last to be called. */
    void sliderValueChanged (juce::Slider*) override { unsentStep = false; }

    float wheelAccumulator = 0.0f;
    bool unsentStep = false;
};

} // namespace tarvik
