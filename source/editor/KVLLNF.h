// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvik
{

/** The light menus of the window: a sheet with round corners, and rows that suit it. Message thread. */
class MenuLook : public juce::LookAndFeel_V3
{
public:
    MenuLook();

    void drawPopupMenuBackground (juce::Graphics& g, int width, int height) override;
    void drawPopupMenuItem (juce::Graphics& g, const juce::Rectangle<int>& area, bool isSeparator, bool isActive,
                            bool isHighlighted, bool isTicked, bool hasSubMenu, const juce::String& text,
                            const juce::String& shortcut, const juce::Drawable* icon,
                            const juce::Colour* textColour) override;
};

/** The look of the whole window: flat buttons, the preset box, and light menus. */
class KVLLNF final : public MenuLook
{
public:
    void drawButtonBackground (juce::Graphics& g, juce::Button& button, const juce::Colour& colour, bool isHighlighted,
                               bool isHeld) override;
    void drawComboBox (juce::Graphics& g, int width, int height, bool isHeld, int buttonX, int buttonY, int buttonWidth,
                       int buttonHeight, juce::ComboBox& box) override;
    juce::Font getComboBoxFont (juce::ComboBox& box) override;
};

} // namespace tarvik
