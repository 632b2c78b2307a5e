// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ValueSlider.h"

namespace tarvik
{

/** A slider whose wheel knows steps. If it is stepped, a notch of the wheel is a step; fine movements with Ctrl add up to
    steps, and a remainder is dropped after a pause. Message thread.
*/
class KVLSlider : public ValueSlider, private juce::Timer, private juce::Slider::Listener
{
public:
    KVLSlider (SliderStyle style, int width, int height);

    void mouseWheelMove (const juce::MouseEvent& event, const juce::MouseWheelDetails& wheel) override;

    /** True from a step of the wheel until the listeners are notified: meanwhile the parameter has the older value, which
        must not be shown.
    */
    bool hasUnsentStep() const noexcept { return unsentStep; }

protected:
    /** The value as a share of the travel. */
    float share() { return static_cast<float> (valueToProportionOfLength (getValue())); }

private:
    void timerCallback() override;

    /** The listener that is added first is called last. */
    void sliderValueChanged (juce::Slider*) override { unsentStep = false; }

    float wheelAccumulator = 0.0f;
    bool unsentStep = false;
};

} // namespace tarvik
