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

template <typename Drawing>
Image drawn (int width, int height, Drawing&& draw)
{
    Image image (Image::ARGB, width, height, true);
    juce::Graphics g (image);
    draw (g);
    return image;
}

Image rowDrawn (KVLLNF& look, const menuDrawing::Row& row, int width, int height = 24)
{
    return drawn (width, height,
                  [&] (juce::Graphics& g)
                  {
                      menuDrawing::drawBackground (g, width, height);
                      menuDrawing::drawRow (g, look, { width, height }, row);
                  });
}
} // namespace

TEST (MenuLook, ARowOnALightRoundSheetShowsItsStateAndAllOfItsText)
{
    KVLLNF look;
    menuDrawing::Row row;
    const auto sheet = rowDrawn (look, row, 100);
    EXPECT_EQ (sheet.getPixelAt (0, 0).getAlpha(), 0);
    EXPECT_EQ (sheet.getPixelAt (50, 1), juce::Colour (0xfffcfcfc));
    EXPECT_FALSE (look.findColour (juce::PopupMenu::backgroundColourId).isOpaque()) << "what lies below shows";

    row.text = "Lim. Sensitivity (Normal)";
    row.hasSubMenu = true;
    int width = 0, height = 0;
    look.getIdealPopupMenuItemSize (row.text, false, 0, width, height);

    // No ellipsis: in the width that the menu gives it the row reads as in a wider one, but for the arrow at its right.
    const auto leftPart = juce::Rectangle (0, 0, width - height, height);
    EXPECT_EQ (difference (rowDrawn (look, row, width, height).getClippedImage (leftPart),
                           rowDrawn (look, row, width + 60, height).getClippedImage (leftPart)),
               0.0);

    using Row = menuDrawing::Row;

    for (bool Row::*const property :
         { &Row::isTicked, &Row::isHighlighted, &Row::isActive, &Row::hasSubMenu, &Row::isSeparator })
    {
        auto other = row;
        other.*property = ! (row.*property);
        EXPECT_GT (difference (rowDrawn (look, other, 200), rowDrawn (look, row, 200)), 0.003);
    }
}

TEST (BoxLook, ItHasABorderOfTwoPixelsAndAnArrowToEitherSide)
{
    KVLLNF look;
    juce::ComboBox box;
    box.setColour (juce::ComboBox::backgroundColourId, juce::Colours::blue);
    box.setColour (juce::ComboBox::outlineColourId, juce::Colours::red);
    box.setColour (juce::ComboBox::arrowColourId, juce::Colours::white);
    const auto boxDrawn = [&]
    { return drawn (100, 40, [&] (juce::Graphics& g) { look.drawComboBox (g, 100, 40, false, 60, 0, 40, 40, box); }); };

    // In a button of 40 by 40 from 60, one arrow fills the rows 10 to 18, the other 22 to 30, each 16 wide at its base.
    const auto image = boxDrawn();

    for (const auto& [x, y, colour] : { std::tuple (1, 20, juce::Colours::red),
                                        { 2, 20, juce::Colours::blue },
                                        { 80, 12, juce::Colours::white },
                                        { 74, 17, juce::Colours::white },
                                        { 74, 12, juce::Colours::blue },
                                        { 80, 20, juce::Colours::blue },
                                        { 86, 22, juce::Colours::white },
                                        { 80, 27, juce::Colours::white },
                                        { 80, 31, juce::Colours::blue } })
        EXPECT_EQ (image.getPixelAt (x, y), colour) << x << " " << y;

    box.setEnabled (false);
    EXPECT_NEAR (boxDrawn().getPixelAt (80, 14).getRed(), 77, 1); // three tenths
}

} // namespace tarvik
