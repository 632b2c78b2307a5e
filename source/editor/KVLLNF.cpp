// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/KVLLNF.h"

#include "editor/Palette.h"

namespace tarvik
{

namespace
{
constexpr int sideMargin = 5, markGap = 4;

void drawSeparator (juce::Graphics& g, juce::Rectangle<int> area)
{
    constexpr float alpha = 0.2f;
    g.setColour (juce::Colour (palette::menuPrint).withAlpha (alpha));
    g.fillRect (area.reduced (2 * sideMargin, 0).withSizeKeepingCentre (area.getWidth() - 4 * sideMargin, 1));
}
} // namespace

WindowLook::WindowLook()
{
    const juce::Colour accent (palette::accent);
    setColour (juce::TextEditor::highlightColourId, accent);
    setColour (juce::TextEditor::highlightedTextColourId, juce::Colours::black);
    setColour (juce::TextEditor::focusedOutlineColourId, accent);
    setColour (juce::CaretComponent::caretColourId, accent);
}

void WindowLook::drawTextEditorOutline (juce::Graphics& g, int width, int height, juce::TextEditor& editor)
{
    if (editor.hasKeyboardFocus (true))
        focusOutline::draw (g, juce::Rectangle (width, height), false);
}

//==============================================================================
MenuLook::MenuLook()
{
    setColour (juce::PopupMenu::backgroundColourId,
               juce::Colours::transparentBlack); // so that the corners can be round
    setColour (juce::PopupMenu::highlightedBackgroundColourId, juce::Colour (palette::menuHighlight));
}

/** JUCE makes menus opaque, and their corners white, where the screen has no compositor; one in a window needs none. */
void MenuLook::preparePopupMenuWindow (juce::Component& window)
{
    if (window.getParentComponent() != nullptr)
        window.setOpaque (false);
}

void MenuLook::drawPopupMenuBackground (juce::Graphics& g, int width, int height)
{
    constexpr float cornerSize = 5.0f;
    g.setColour (juce::Colour (palette::menuSheet));
    g.fillRoundedRectangle (0.0f, 0.0f, static_cast<float> (width), static_cast<float> (height), cornerSize);
}

void MenuLook::drawPopupMenuItem (juce::Graphics& g, const juce::Rectangle<int>& area, bool isSeparator, bool isActive,
                                  bool isHighlighted, bool isTicked, bool hasSubMenu, const juce::String& text,
                                  const juce::String& shortcut, const juce::Drawable* icon,
                                  const juce::Colour* textColour)
{
    if (isSeparator)
        return drawSeparator (g, area);

    constexpr float rowsPerFontHeight = 1.3f, inactiveAlpha = 0.4f, rowCorner = 3.0f;
    const auto isMarked = isHighlighted && isActive;
    auto place = area.reduced (sideMargin, 1);

    if (isMarked)
    {
        g.setColour (findColour (juce::PopupMenu::highlightedBackgroundColourId));
        g.fillRoundedRectangle (place.toFloat(), rowCorner);
    }

    auto colour = isMarked                ? juce::Colour (palette::menuHighlightedPrint)
                  : textColour != nullptr ? *textColour
                                          : juce::Colour (palette::menuPrint);

    if (! isActive)
        colour = colour.withMultipliedAlpha (inactiveAlpha);

    auto font = getPopupMenuFont();
    font.setHeight (std::min (font.getHeight(), static_cast<float> (area.getHeight()) / rowsPerFontHeight));
    g.setFont (font);

    // Mark, gap and arrow share the two heights that JUCE leaves beside the text with the margins.
    const auto signWidth = place.getHeight() - sideMargin;
    const auto markPlace = place.removeFromLeft (signWidth).toFloat().reduced (1.0f);
    place.removeFromLeft (markGap);

    if (icon != nullptr)
    {
        icon->drawWithin (g, markPlace, juce::RectanglePlacement::centred, 1.0f);
    }
    else if (isTicked)
    {
        const auto tick = getTickShape (1.0f);
        g.setColour (isMarked ? colour : juce::Colour (palette::menuTick));
        g.fillPath (tick, tick.getTransformToScaleToFit (markPlace, true));
    }

    g.setColour (colour);

    if (hasSubMenu)
    {
        const auto size = font.getHeight() * 0.25f; // half of the arrow's height
        const auto centre = place.removeFromRight (signWidth).toFloat().getCentre();
        juce::Path arrow;
        arrow.addTriangle (centre.translated (-size / 2.0f, -size), centre.translated (-size / 2.0f, size),
                           centre.translated (size, 0.0f));
        g.fillPath (arrow);
    }

    g.drawText (text, place, juce::Justification::centredLeft);
    g.drawText (shortcut, place, juce::Justification::centredRight);
}

//==============================================================================
void KVLLNF::drawButtonBackground (juce::Graphics& g, juce::Button& button, const juce::Colour& colour,
                                   bool isHighlighted, bool isHeld)
{
    constexpr float focusedOutline = 0.6f, disabledOutline = 0.1f, outline = 0.5f;
    constexpr float heldFill = 0.5f, highlightedFill = 0.8f;

    if (button.getWidth() <= 0 || button.getHeight() <= 0)
        return;

    g.setColour (colour.withMultipliedAlpha (isHeld ? heldFill : isHighlighted ? highlightedFill : 0.0f));
    g.fillRect (button.getLocalBounds());
    g.setColour (colour.withMultipliedAlpha (button.hasKeyboardFocus (true) ? focusedOutline
                                             : ! button.isEnabled()         ? disabledOutline
                                                                            : outline));
    g.drawRect (button.getLocalBounds());
}

void KVLLNF::drawComboBox (juce::Graphics& g, int width, int height, bool, int buttonX, int buttonY, int buttonWidth,
                           int buttonHeight, juce::ComboBox& box)
{
    constexpr int outlineThickness = 2;
    constexpr float disabledAlpha = 0.3f;

    g.fillAll (box.findColour (juce::ComboBox::backgroundColourId));

    if (box.hasKeyboardFocus (false))
    {
        g.setColour (box.findColour (juce::ComboBox::buttonColourId));
        g.fillRect (0, 0, width, height);
    }
    else
    {
        g.setColour (box.findColour (juce::ComboBox::outlineColourId));
        g.drawRect (0, 0, width, height, outlineThickness);
    }

    // One arrow up and one down, as shares of the button.
    const auto corner = [=] (float x, float y)
    {
        return juce::Point<float> (static_cast<float> (buttonX) + x * static_cast<float> (buttonWidth),
                                   static_cast<float> (buttonY) + y * static_cast<float> (buttonHeight));
    };

    constexpr float left = 0.3f, middle = 0.5f, right = 0.7f;
    juce::Path arrows;
    arrows.addTriangle (corner (middle, 0.25f), corner (left, 0.45f), corner (right, 0.45f));
    arrows.addTriangle (corner (middle, 0.75f), corner (left, 0.55f), corner (right, 0.55f));
    g.setColour (
        box.findColour (juce::ComboBox::arrowColourId).withMultipliedAlpha (box.isEnabled() ? 1.0f : disabledAlpha));
    g.fillPath (arrows);
}

juce::Font KVLLNF::getComboBoxFont (juce::ComboBox& box)
{
    constexpr float shareOfBox = 0.85f, largest = 10.0f, jucesLowest = 0.1f;
    return juce::Font (std::max (jucesLowest, std::min (shareOfBox * static_cast<float> (box.getHeight()), largest)));
}

} // namespace tarvik
