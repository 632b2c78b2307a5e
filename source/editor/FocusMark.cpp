// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/FocusMark.h"

#include "editor/Palette.h"

namespace tarvik
{

namespace focusOutline
{
namespace
{
const juce::Identifier insetX ("focusInsetX"), insetY ("focusInsetY");

juce::Rectangle<int> areaIn (const juce::Component& control)
{
    const auto inset = [&control] (const juce::Identifier& name, int size)
    { return juce::roundToInt (static_cast<double> (control.getProperties()[name]) * size); };
    return control.getLocalBounds().reduced (inset (insetX, control.getWidth()), inset (insetY, control.getHeight()));
}

struct Amber final : juce::FocusOutline::OutlineWindowProperties
{
    explicit Amber (bool isControlRound) : isRound (isControlRound) {}

    juce::Rectangle<int> getOutlineBounds (juce::Component& control) override
    {
        return control.localAreaToGlobal (areaIn (control));
    }

    void drawOutline (juce::Graphics& g, int width, int height) override
    {
        draw (g, juce::Rectangle (width, height), isRound);
    }

    bool isRound;
};
} // namespace

void draw (juce::Graphics& g, juce::Rectangle<int> area, bool isRound)
{
    constexpr float thickness = 2.0f, usualCorner = 4.0f;
    const auto line = area.toFloat().reduced (thickness / 2.0f);
    g.setColour (juce::Colour (palette::accent));
    g.drawRoundedRectangle (line, isRound ? line.getWidth() / 2.0f : usualCorner, thickness);
}

void setInset (juce::Component& control, float shareOfWidth, float shareOfHeight)
{
    control.getProperties().set (insetX, shareOfWidth);
    control.getProperties().set (insetY, shareOfHeight);
}

std::unique_ptr<juce::FocusOutline> create (juce::Component& control)
{
    const auto* const slider = dynamic_cast<juce::Slider*> (&control);
    return std::make_unique<juce::FocusOutline> (std::make_unique<Amber> (slider != nullptr && slider->isRotary()));
}
} // namespace focusOutline

//==============================================================================

FocusMark::FocusMark (juce::Component& windowToWatch) : window (windowToWatch)
{
    window.addKeyListener (this);
    window.addMouseListener (this, true);
    juce::Desktop::getInstance().addFocusChangeListener (this);
}

FocusMark::~FocusMark()
{
    juce::Desktop::getInstance().removeFocusChangeListener (this);
    window.removeMouseListener (this);
    window.removeKeyListener (this);
}

/** JUCE draws the outline right after this call. */
void FocusMark::globalFocusChanged (juce::Component* focused)
{
    if (focused != nullptr && window.isParentOf (focused))
        focused->setHasFocusOutline (isKeyboardInUse);
}

/** Called with keys that the controls do not use, before JUCE moves the focus. */
bool FocusMark::keyPressed (const juce::KeyPress& key, juce::Component*)
{
    isKeyboardInUse = isKeyboardInUse || key.isKeyCode (juce::KeyPress::tabKey);
    return false;
}

void FocusMark::mouseDown (const juce::MouseEvent&) { isKeyboardInUse = false; }

} // namespace tarvik
