// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ValueBubble.h"

namespace tarvik
{

void ValueBubble::show (ValueSlider& slider, bool isHeld)
{
    constexpr int stayMilliseconds = 2000;
    auto& look = slider.getLookAndFeel();
    text = slider.getTextFromValue (slider.getValue()).trim();
    font = look.getSliderPopupFont (slider);
    setAllowedPlacement (look.getSliderPopupPlacement (slider));
    setPosition (getParentComponent()->getLocalArea (&slider, slider.valuePlace()));
    setVisible (true);
    repaint();

    if (isHeld)
        stopTimer();
    else
        startTimer (stayMilliseconds);
}

void ValueBubble::timerCallback()
{
    stopTimer();
    setVisible (false);
}

void ValueBubble::getContentSize (int& width, int& height)
{
    constexpr int margins = 18;
    constexpr float lineHeight = 1.6f;
    width = font.getStringWidth (text) + margins;
    height = static_cast<int> (font.getHeight() * lineHeight);
}

void ValueBubble::paintContent (juce::Graphics& g, int width, int height)
{
    g.setFont (font);
    g.setColour (findColour (juce::TooltipWindow::textColourId, true));
    g.drawFittedText (text, { width, height }, juce::Justification::centred, 1);
}

} // namespace tarvik
