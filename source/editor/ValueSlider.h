// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/LeftButtonOnly.h"

namespace tarvik
{

class ValueSlider;

/** What a window does for the sliders in it. Message thread. */
struct ValueWindow
{
    virtual ~ValueWindow() = default;

    /** Shows a slider's value for as long as it is held, or for a while after a move. */
    virtual void showValue (ValueSlider& slider, bool isHeld) = 0;

    /** Lets the user type the value. */
    virtual void typeValue (ValueSlider& slider) = 0;
};

/** A slider from 0 to 1 for mouse and keys. Ctrl or Shift makes a drag ten times finer; an arrow key moves it by a hundredth
    of its travel or a step, whichever is larger, and by a tenth of that with Ctrl or Shift; Return lets the user type.
    Whatever moves it by hand, the window shows the value. Message thread.
*/
class ValueSlider : public LeftButtonOnly<juce::Slider>
{
public:
    explicit ValueSlider (SliderStyle style);

    /** The nearest position that the parameter can take; any, if not set. */
    std::function<double (double)> legalPosition = [] (double position) { return position; };

    /** What the value is shown at, in the slider's own coordinates. */
    virtual juce::Rectangle<int> valuePlace() const { return getLocalBounds(); }

    void mouseDown (const juce::MouseEvent& event) override;
    void mouseDrag (const juce::MouseEvent& event) override;
    void mouseUp (const juce::MouseEvent& event) override;
    void mouseDoubleClick (const juce::MouseEvent& event) override;
    void mouseWheelMove (const juce::MouseEvent& event, const juce::MouseWheelDetails& wheel) override;
    bool keyPressed (const juce::KeyPress& key) override;

protected:
    static constexpr float fineFactor = 0.1f;

    void showValue (bool isHeld = false);

private:
    ValueWindow* window() const { return findParentComponentOfClass<ValueWindow>(); }

    void moveByKey (double steps, bool isFine);

    juce::Point<float> lastMouse, dragPlace; ///< Where the mouse is, and where a coarse drag would have it.
};

} // namespace tarvik
