// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/Fader.h"

#include "editor/ControlGeometry.h"

namespace tarvik
{

namespace
{
constexpr int defaultWidth = 300, defaultHeight = 1706;

// Shares of the picture's width and height.
constexpr float capWidthShare = 160.0f / 300.0f, capHeightShare = 344.0f / 500.0f;
constexpr float ringShare = 176.0f / 300.0f; ///< The focus outline lies between the cap and the scale.
} // namespace

Fader::Fader() : ValueSlider (LinearVertical)
{
    setLookAndFeel (&look);
    focusOutline::setInset (*this, (1.0f - ringShare) / 2.0f, 0.0f);
    setSize (defaultWidth, defaultHeight);
}

Fader::~Fader() { setLookAndFeel (nullptr); }

juce::MouseEvent Fader::moved (const juce::MouseEvent& event) const
{
    return event.withNewPosition (event.position.translated (0.0f, pressOffset));
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

juce::Rectangle<int> Fader::valuePlace() const
{
    const auto height = getHeight(), picture = fader::capHeight (height);
    const auto middle = fader::trackTop (height)
                        + juce::roundToInt ((1.0 - getValue()) * static_cast<double> (fader::trackHeight (height)));
    return juce::Rectangle (getWidth(), picture)
        .withCentre ({ getWidth() / 2, middle })
        .withSizeKeepingCentre (juce::roundToInt (capWidthShare * static_cast<float> (getWidth())),
                                juce::roundToInt (capHeightShare * static_cast<float> (picture)));
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
