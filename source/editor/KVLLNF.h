// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/FocusMark.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvik
{

/** What all looks of the window share. Message thread. */
class WindowLook : public juce::LookAndFeel_V3
{
public:
    WindowLook();

    void drawTextEditorOutline (juce::Graphics& g, int width, int height, juce::TextEditor& editor) override;

    std::unique_ptr<juce::FocusOutline> createFocusOutlineForComponent (juce::Component& control) override
    {
        return focusOutline::create (control);
    }
};

/** The light menus of the window: a sheet with round corners, and rows that suit it. Message thread. */
class MenuLook : public WindowLook
{
public:
    MenuLook();

    void preparePopupMenuWindow (juce::Component& window) override;

    /** Draws nothing: JUCE would frame a menu in a window, and with square corners. */
    void drawResizableFrame (juce::Graphics&, int, int, const juce::BorderSize<int>&) override {}

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
