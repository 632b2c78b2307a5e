// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvik
{

/** Has a window outline the control that the keyboard goes to, from the first Tab until the mouse is pressed again: who
    works with the mouse sees none. Belongs to the window and goes with it. Message thread.
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
