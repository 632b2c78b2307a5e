// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/KVLSlider.h"

#include <cmath>

namespace tarvik
{

KVLSlider::KVLSlider (SliderStyle style, int width, int height) : ValueSlider (style)
{
    setName ("new slider");
    addListener (this);
    setSize (width, height);
}

void KVLSlider::mouseWheelMove (const juce::MouseEvent& event, const juce::MouseWheelDetails& wheel)
{
    constexpr int pauseMilliseconds = 500;

    const auto isFine = event.mods.getRawFlags() == juce::ModifierKeys::ctrlModifier;
    const auto takesSteps = getInterval() > 0.0 && ! wheel.isSmooth && isEnabled() && isScrollWheelEnabled();

    if (! takesSteps)
    {
        auto scaled = wheel;
        scaled.deltaX *= isFine ? fineFactor : 1.0f;
        scaled.deltaY *= isFine ? fineFactor : 1.0f;
        ValueSlider::mouseWheelMove (event, scaled); // and from there to the parent, if this slider cannot take it
        return;
    }

    constexpr float stepsPerDeltaAndPixel = 0.02f;
    const auto delta = (wheel.isReversed ? -wheel.deltaY : wheel.deltaY) * (isFine ? fineFactor : 1.0f);
    wheelAccumulator += delta * stepsPerDeltaAndPixel * static_cast<float> (getMouseDragSensitivity());

    if (const auto steps = std::round (wheelAccumulator); steps != 0.0f) // a half goes away from zero
    {
        wheelAccumulator -= steps;
        const auto old = getValue();
        setValue (juce::jlimit (getMinimum(), getMaximum(), old + static_cast<double> (steps) * getInterval()),
                  juce::sendNotificationAsync);
        unsentStep = unsentStep || getValue() != old;
        showValue();
    }

    startTimer (pauseMilliseconds);
}

void KVLSlider::timerCallback()
{
    stopTimer();
    wheelAccumulator = 0.0f;
}

} // namespace tarvik
