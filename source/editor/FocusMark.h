// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvik
{

/** The outline of the control that has the keyboard: amber, rounded, and within the control, whose area may reach into
    its neighbours'. Message thread.
*/
namespace focusOutline
{
/** Moves a control's outline inwards, by shares of its width and height at either side. */
void setInset (juce::Component& control, float shareOfWidth, float shareOfHeight);

void draw (juce::Graphics& g, juce::Rectangle<int> area, bool isRound);

/** What JUCE shows over the control. */
std::unique_ptr<juce::FocusOutline> create (juce::Component& control);
} // namespace focusOutline

/** Outlines the control that has the keyboard focus in a window, from the first Tab until a press of the mouse moves the
    focus. Owned by the window. Message thread.
*/
class FocusMark final : private juce::FocusChangeListener, private juce::KeyListener, private juce::MouseListener
{
public:
    explicit FocusMark (juce::Component& windowToWatch);
    ~FocusMark() override;

private:
    void globalFocusChanged (juce::Component* focused) override;
    bool keyPressed (const juce::KeyPress& key, juce::Component*) override;
    void mouseDown (const juce::MouseEvent&) override;

    juce::Component& window;
    bool isKeyboardInUse = false;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (FocusMark)
};

} // namespace tarvik
