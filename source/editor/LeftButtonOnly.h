// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <type_traits>

namespace tarvik
{

/** A control that leaves the right button to the window, which opens the host's menu. What began with one button ends
    with it, whichever is pressed meanwhile. Message thread.
*/
template <typename Control>
class LeftButtonOnly : public Control
{
public:
    using Control::Control;

    void mouseDown (const juce::MouseEvent& event) override
    {
        isOtherButton = event.mods.isPopupMenu();

        if (! isOtherButton)
            Control::mouseDown (event);
        else if constexpr (std::is_base_of_v<juce::Button, Control>)
            this->setState (juce::Button::buttonOver); // the focus that came with the press has drawn it held
    }

    void mouseDrag (const juce::MouseEvent& event) override
    {
        if (! isOtherButton)
            Control::mouseDrag (event);
    }

    void mouseUp (const juce::MouseEvent& event) override
    {
        if (! isOtherButton)
            Control::mouseUp (event);
    }

    void mouseDoubleClick (const juce::MouseEvent& event) override
    {
        if (! isOtherButton)
            Control::mouseDoubleClick (event);
    }

protected:
    bool isOtherButton = false; ///< The current or last press was not the left button's.
};

} // namespace tarvik
