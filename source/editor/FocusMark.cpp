// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/FocusMark.h"

namespace tarvik
{

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
