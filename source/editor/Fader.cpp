// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/Fader.h"

#include "editor/ControlGeometry.h"

namespace tarvik
{

namespace
{
constexpr int defaultWidth = 300, defaultHeight = 1706;
}

Fader::Fader() : ValueSlider (LinearVertical)
{
    setLookAndFeel (&look);
    setSize (defaultWidth, defaultHeight);
}

Fader::~Fader() { setLookAndFeel (nullptr); }

juce::MouseEvent Fader::moved (const juce::MouseEvent& event) const
{
    return event.withNewPosition (event.position.translated (0.0f, pressOffset));
}

juce::Rectangle<int> Fader::valuePlace() const
{
    const auto fromTop = juce::roundToInt ((1.0 - getValue()) * fader::trackHeight (getHeight()));
    return { 0, fromTop, getWidth(), fader::capHeight (getHeight()) };
}

void Fader::mouseDown (const juce::MouseEvent& event)
{
    const auto fromTop = static_cast<float> ((1.0 - getValue()) * fader::trackHeight (getHeight()));
    pressOffset = fromTop + static_cast<float> (fader::trackTop (getHeight())) - event.position.y;
    ValueSlider::mouseDown (moved (event));
}

void Fader::mouseDrag (const juce::MouseEvent& event) { ValueSlider::mouseDrag (moved (event)); }

void Fader::mouseUp (const juce::MouseEvent& event)
{
    ValueSlider::mouseUp (moved (event));
    pressOffset = 0.0f;
}

//==============================================================================
void Fader::FaderLNF::drawLinearSliderThumb (juce::Graphics& g, int, int, int, int, float position, float, float,
                                             juce::Slider::SliderStyle, juce::Slider& slider)
{
    // Half a cap in whole pixels, as the layout has it: with a half pixel left over, each step of the mouse would land
    // on the edge between two pixels, and the cap would stand still and then jump.
    const auto height = slider.getHeight();
    cap.draw (
        g, { 0, juce::roundToInt (position) - fader::trackTop (height), slider.getWidth(), fader::capHeight (height) });
}

juce::Slider::SliderLayout Fader::FaderLNF::getSliderLayout (juce::Slider& slider)
{
    const auto height = slider.getHeight();
    return { { 0, fader::trackTop (height), slider.getWidth(), fader::trackHeight (height) }, {} };
}

} // namespace tarvik
