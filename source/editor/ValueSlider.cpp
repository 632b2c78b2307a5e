// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ValueSlider.h"

namespace tarvik
{

namespace
{
bool isFine (juce::ModifierKeys keys) { return keys.isShiftDown() || keys.isCtrlDown(); }
} // namespace

ValueSlider::ValueSlider (SliderStyle style) : LeftButtonOnly<juce::Slider> (style, NoTextBox)
{
    setRange (0.0, 1.0);

    // JUCE's own fine drag follows the mouse's speed: a slow mouse does not move it at all.
    setVelocityModeParameters (1.0, 1, 0.0, false);
}

void ValueSlider::showValue (bool isHeld)
{
    if (auto* const w = window())
        w->showValue (*this, isHeld);
}

//==============================================================================
void ValueSlider::mouseDown (const juce::MouseEvent& event)
{
    lastMouse = dragPlace = event.position;
    LeftButtonOnly::mouseDown (event);

    if (! isOtherButton)
        showValue (true);
}

void ValueSlider::mouseDrag (const juce::MouseEvent& event)
{
    dragPlace += (event.position - lastMouse) * (isFine (event.mods) ? fineFactor : 1.0f);
    lastMouse = event.position;
    LeftButtonOnly::mouseDrag (event.withNewPosition (dragPlace));

    if (! isOtherButton)
        showValue (true);
}

void ValueSlider::mouseUp (const juce::MouseEvent& event)
{
    LeftButtonOnly::mouseUp (event);

    if (! isOtherButton)
        showValue();
}

void ValueSlider::mouseDoubleClick (const juce::MouseEvent& event)
{
    LeftButtonOnly::mouseDoubleClick (event);

    if (! isOtherButton)
        showValue();
}

void ValueSlider::mouseWheelMove (const juce::MouseEvent& event, const juce::MouseWheelDetails& wheel)
{
    LeftButtonOnly::mouseWheelMove (event, wheel);

    if (! event.mods.isAnyMouseButtonDown())
        showValue();
}

//==============================================================================
bool ValueSlider::keyPressed (const juce::KeyPress& key)
{
    using juce::KeyPress;

    if (isMouseButtonDown()) // a gesture within the drag's would end that
        return false;

    if (key == KeyPress (KeyPress::returnKey))
    {
        auto* const w = window();

        if (w != nullptr)
            w->typeValue (*this);

        return w != nullptr;
    }

    const auto isUp = key.isKeyCode (KeyPress::upKey) || key.isKeyCode (KeyPress::rightKey);
    const auto isDown = key.isKeyCode (KeyPress::downKey) || key.isKeyCode (KeyPress::leftKey);

    if (isUp == isDown || key.getModifiers().isAltDown() || ! isEnabled())
        return false;

    moveByKey (isUp ? 1.0 : -1.0, isFine (key.getModifiers()));
    return true;
}

void ValueSlider::moveByKey (double steps, bool isFineKey)
{
    constexpr double shareOfTravel = 0.01;
    const auto fine = static_cast<double> (fineFactor);
    const auto step = steps * std::max (getInterval(), isFineKey ? shareOfTravel * fine : shareOfTravel);
    const auto old = getValue();
    auto position = old;

    // Where the scale is dense, a fine step may be less than the parameter can tell apart.
    do
        position = juce::jlimit (getMinimum(), getMaximum(), position + step);
    while (legalPosition (position) == legalPosition (old) && position > getMinimum() && position < getMaximum());

    if (legalPosition (position) != legalPosition (old))
    {
        const ScopedDragNotification gesture (*this);
        setValue (legalPosition (position), juce::sendNotificationSync);
    }

    showValue();
}

} // namespace tarvik
