// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/KVLLNF.h"
#include "tests/support/EditorTestTools.h"

#include <gtest/gtest.h>

namespace tarvik
{
namespace
{
using namespace test;
using juce::Image;

Image rowDrawn (KVLLNF& look, const menuDrawing::Row& row, int width, int height = 24)
{
    Image image (Image::ARGB, width, height, true);
    juce::Graphics g (image);
    menuDrawing::drawBackground (g, width, height);
    menuDrawing::drawRow (g, look, image.getBounds(), row);
    return image;
}
} // namespace

TEST (MenuLook, TheSheetIsLightWithRoundCornersThatShowWhatLiesBelow)
{
    KVLLNF look;
    const auto sheet = rowDrawn (look, {}, 100);
    EXPECT_EQ (sheet.getPixelAt (0, 0).getAlpha(), 0);
    EXPECT_EQ (sheet.getPixelAt (50, 1), juce::Colour (0xfffcfcfc));
    EXPECT_FALSE (look.findColour (juce::PopupMenu::backgroundColourId).isOpaque());
    EXPECT_EQ (look.findColour (juce::PopupMenu::highlightedBackgroundColourId), juce::Colour (0xff626c77));
}

TEST (MenuLook, ARowShowsItsStateAndAllOfItsText)
{
    KVLLNF look;
    const juce::String text ("Lim. Sensitivity (Normal)");
    int width = 0, height = 0;
    look.getIdealPopupMenuItemSize (text, false, 0, width, height);

    menuDrawing::Row row;
    row.text = text;
    row.hasSubMenu = true;

    // No ellipsis: in the width that the menu gives it the row reads as in a wider one, but for the arrow at its right.
    const auto leftPart = juce::Rectangle (0, 0, width - height, height);
    EXPECT_EQ (difference (rowDrawn (look, row, width, height).getClippedImage (leftPart),
                           rowDrawn (look, row, width + 60, height).getClippedImage (leftPart)),
               0.0);

    const auto plain = rowDrawn (look, row, 200);
    const auto differs = [&] (auto change)
    {
        auto other = row;
        change (other);
        return difference (rowDrawn (look, other, 200), plain) > 0.003;
    };
    EXPECT_TRUE (differs ([] (auto& r) { r.isTicked = true; }));
    EXPECT_TRUE (differs ([] (auto& r) { r.isHighlighted = true; }));
    EXPECT_TRUE (differs ([] (auto& r) { r.isActive = false; }));
    EXPECT_TRUE (differs ([] (auto& r) { r.hasSubMenu = false; }));
    EXPECT_TRUE (differs ([] (auto& r) { r.isSeparator = true; }));
}

TEST (BoxLook, ItHasABorderOfTwoPixelsAndAnArrowToEitherSide)
{
    KVLLNF look;
    juce::ComboBox box;
    box.setColour (juce::ComboBox::backgroundColourId, juce::Colours::blue);
    box.setColour (juce::ComboBox::outlineColourId, juce::Colours::red);
    box.setColour (juce::ComboBox::arrowColourId, juce::Colours::white);

    const auto drawn = [&]
    {
        Image image (Image::RGB, 100, 40, true);
        juce::Graphics g (image);
        look.drawComboBox (g, 100, 40, false, 60, 0, 40, 40, box);
        return image;
    };

    const auto image = drawn();
    EXPECT_EQ (image.getPixelAt (1, 20), juce::Colours::red);
    EXPECT_EQ (image.getPixelAt (2, 20), juce::Colours::blue);

    // In a button of 40 by 40 from 60, one arrow fills the rows 10 to 18, the other 22 to 30, each 16 wide at its base.
    for (const auto& [x, y, isArrow] : { std::tuple (80, 12, true),
                                         { 74, 17, true },
                                         { 74, 12, false },
                                         { 80, 20, false },
                                         { 74, 22, true },
                                         { 80, 27, true },
                                         { 74, 27, false },
                                         { 80, 31, false } })
        EXPECT_EQ (image.getPixelAt (x, y) == juce::Colours::white, isArrow) << x << " " << y;

    box.setEnabled (false);
    EXPECT_NEAR (drawn().getPixelAt (80, 14).getRed(), 77, 1); // three tenths

    for (const auto& [height, font] : { std::pair (8, 6.8f), { 12, 10.0f }, { 50, 10.0f } })
    {
        box.setSize (100, height);
        EXPECT_FLOAT_EQ (look.getComboBoxFont (box).getHeight(), font);
    }
}

TEST (ButtonLook, TheOutlineAndTheFillFollowTheState)
{
    KVLLNF look;
    juce::TextButton button;
    button.setSize (20, 20);

    const auto alphas = [&] (bool isOver, bool isDown)
    {
        Image image (Image::ARGB, 20, 20, true);
        juce::Graphics g (image);
        look.drawButtonBackground (g, button, juce::Colours::white, isOver, isDown);
        return std::pair (image.getPixelAt (0, 10).getAlpha(), image.getPixelAt (10, 10).getAlpha());
    };

    EXPECT_EQ (alphas (false, false), std::pair (juce::uint8 (128), juce::uint8 (0)));
    EXPECT_EQ (alphas (true, false).second, 204);
    EXPECT_EQ (alphas (true, true).second, 128);
    button.setEnabled (false);
    EXPECT_NEAR (alphas (false, false).first, 26, 1);
    button.setSize (0, 20);
    EXPECT_EQ (alphas (true, true), std::pair (juce::uint8 (0), juce::uint8 (0)));
}

} // namespace tarvik
