// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvik
{

/** The light menus of the window, for every look that shows one: a sheet with round corners, which leaves the corners
    to what lies below, and rows that suit it. Message thread.
*/
namespace menuDrawing
{
/** Gives a look the colours that the functions below expect: a see-through menu, so that the corners can be round. */
void setColours (juce::LookAndFeel& look);

void drawBackground (juce::Graphics& g, int width, int height);

/** What a row of a menu shows. */
struct Row
{
    bool isSeparator = false, isActive = true, isHighlighted = false, isTicked = false, hasSubMenu = false;
    juce::String text, shortcut;
    const juce::Drawable* icon = nullptr;
    const juce::Colour* textColour = nullptr;
};

void drawRow (juce::Graphics& g, juce::LookAndFeel_V3& look, juce::Rectangle<int> area, const Row& row);
} // namespace menuDrawing

/** The look of the whole window: flat buttons, the preset box, and light menus. */
class KVLLNF final : public juce::LookAndFeel_V3
{
public:
    KVLLNF() { menuDrawing::setColours (*this); }

    void drawButtonBackground (juce::Graphics& g, juce::Button& button, const juce::Colour& colour, bool isHighlighted,
                               bool isHeld) override;
    void drawPopupMenuBackground (juce::Graphics& g, int width, int height) override;
    void drawPopupMenuItem (juce::Graphics& g, const juce::Rectangle<int>& area, bool isSeparator, bool isActive,
                            bool isHighlighted, bool isTicked, bool hasSubMenu, const juce::String& text,
                            const juce::String& shortcut, const juce::Drawable* icon,
                            const juce::Colour* textColour) override;
    void drawComboBox (juce::Graphics& g, int width, int height, bool isHeld, int buttonX, int buttonY, int buttonWidth,
                       int buttonHeight, juce::ComboBox& box) override;
    juce::Font getComboBoxFont (juce::ComboBox& box) override;
};

} // namespace tarvik
