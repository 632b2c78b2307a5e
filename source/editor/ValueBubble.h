// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ValueSlider.h"

namespace tarvik
{

/** The bubble that shows the value of the slider that the hand moved last, one for a window. It stays for two seconds after
    the last move; JUCE's own goes when the mouse is released, and knows neither wheel nor keys. Message thread.
*/
class ValueBubble final : public juce::BubbleComponent, private juce::Timer
{
public:
    ValueBubble() { setAlwaysOnTop (true); }

    void show (ValueSlider& slider, bool isHeld);

    void hide() { timerCallback(); }

private:
    void timerCallback() override;
    void getContentSize (int& width, int& height) override;
    void paintContent (juce::Graphics& g, int width, int height) override;

    juce::Font font;
    juce::String text;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (ValueBubble)
};

} // namespace tarvik
