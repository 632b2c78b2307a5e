// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/KVLLNF.h"
#include "editor/ScaledPictures.h"
#include "editor/ValueSlider.h"

namespace tarvik
{

/** The long fader. A press anywhere takes hold of the cap without moving it. Message thread. */
class Fader final : public ValueSlider
{
public:
    Fader();
    ~Fader() override;

    void mouseDown (const juce::MouseEvent& event) override;
    void mouseDrag (const juce::MouseEvent& event) override;
    void mouseUp (const juce::MouseEvent& event) override;

    /** The cap, without its shadow. */
    juce::Rectangle<int> valuePlace() const override;

    /** The whole component, not only the cap. */
    bool hitTest (int, int) override { return true; }

    /** Draws the cap, and makes the track as long as the way of the cap's middle. */
    class FaderLNF final : public WindowLook
    {
    public:
        /** Draws nothing: the track is in the panel's picture. */
        void drawLinearSliderBackground (juce::Graphics&, int, int, int, int, float, float, float,
                                         juce::Slider::SliderStyle, juce::Slider&) override
        {
        }

        void drawLinearSliderThumb (juce::Graphics& g, int x, int y, int width, int height, float position,
                                    float minPosition, float maxPosition, juce::Slider::SliderStyle style,
                                    juce::Slider& slider) override;
        juce::Slider::SliderLayout getSliderLayout (juce::Slider& slider) override;

        /** Beside the cap are the numerals. */
        int getSliderPopupPlacement (juce::Slider&) override { return juce::BubbleComponent::above; }

    private:
        ScaledPicture cap { Picture::faderCap };
    };

private:
    juce::MouseEvent moved (const juce::MouseEvent& event) const;

    FaderLNF look;
    float pressOffset = 0.0f; ///< In pixels, from the mouse down to the middle of the cap.

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (Fader)
};

} // namespace tarvik
