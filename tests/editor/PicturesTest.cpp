// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ImageResampling.h"
#include "editor/ScaledPictures.h"

#include <gtest/gtest.h>

namespace tarvik
{
namespace
{
using juce::Image;

/** One grey for each pixel of a row, repeated over the height. */
Image rowsOf (std::initializer_list<juce::uint8> greys, int height)
{
    Image image (Image::RGB, static_cast<int> (greys.size()), height, false);
    int x = 0;

    for (const auto grey : greys)
        image.clear ({ x++, 0, 1, height }, juce::Colour (grey, grey, grey));

    return image;
}

bool samePixels (const Image& one, const Image& other)
{
    for (int y = 0; y < one.getHeight(); ++y)
        for (int x = 0; x < one.getWidth(); ++x)
            if (one.getPixelAt (x, y) != other.getPixelAt (x, y))
                return false;

    return ! one.isNull() && one.getBounds() == other.getBounds();
}

int redAt (const Image& image, int x, int y = 0) { return image.getPixelAt (x, y).getRed(); }
} // namespace

TEST (Pictures, TheFontDrawsAndEveryFileIsAsTheCatalogueSays)
{
    const juce::SharedResourcePointer<NameTypeface> face;
    ASSERT_NE (face->typeface, nullptr);
    EXPECT_GT (juce::Font (face->typeface).withHeight (26.0f).getStringWidth ("Lead vocal"), 50);

    for (const auto& row : pictureCatalogue)
    {
        const auto image = decodedPicture (row.id);
        EXPECT_EQ (image.getBounds(), juce::Rectangle (row.width, row.height)) << row.name;
        EXPECT_EQ (image.hasAlphaChannel(), row.colours == PictureColours::rgba) << row.name;
    }
}

TEST (Resampling, PixelsCountByTheirAreaAndTheirOpacity)
{
    // JUCE's own renderer gives 0 or 255 here, whichever pixel it meets.
    const auto lines = rowsOf ({ 255, 0, 0, 255, 0, 0, 255, 0, 0 }, 6);

    for (int x = 0; x < 3; ++x)
        EXPECT_EQ (redAt (resampled (lines, 3, 2), x, 1), 85);

    const auto fractions = resampled (rowsOf ({ 30, 90, 240 }, 3), 2, 2);
    EXPECT_EQ (redAt (fractions, 0), (30 * 2 + 90) / 3);
    EXPECT_EQ (redAt (fractions, 1), (90 + 240 * 2) / 3);

    const auto larger = resampled (rowsOf ({ 0, 200 }, 1), 4, 1);
    EXPECT_EQ (redAt (larger, 1), 50) << "no steps";
    EXPECT_EQ (redAt (larger, 2), 150);

    Image half (Image::ARGB, 2, 1, true);
    half.setPixelAt (0, 0, juce::Colours::white);
    const auto mean = resampled (half, 1, 1).getPixelAt (0, 0);
    EXPECT_NEAR (mean.getAlpha(), 128, 1);
    EXPECT_GE (mean.getRed(), 254) << "a dark edge";

    const auto strip = resampled (rowsOf ({ 0, 0, 0, 0, 240, 240, 240, 240 }, 4), 3, 3, 2);
    EXPECT_EQ (redAt (strip, 2), 0);
    EXPECT_EQ (redAt (strip, 3), 240) << "no frame bleeds into the next";
}

TEST (ScaledPictures, OneCopyServesAllAndGoesWhenNobodyHoldsIt)
{
    auto& pictures = *ScaledPictures::getInstance();
    pictures.releaseUnused();
    const Image canvas (Image::RGB, 100, 100, true);
    juce::Graphics normal (canvas), doubled (canvas);
    doubled.addTransform (juce::AffineTransform::scale (2.0f));

    {
        ScaledPicture one (Picture::muteOn), other (Picture::muteOn);
        one.draw (normal, { 0, 0, 20, 20 });
        other.draw (normal, { 10, 0, 20, 20 });
        EXPECT_EQ (pictures.memoryInUse(), 20u * 20u * 4u);

        // A display of twice the density, and what nobody uses any more is gone.
        one.draw (doubled, { 0, 0, 20, 20 });
        other.draw (normal, { 0, 0, 30, 30 });
        EXPECT_EQ (pictures.memoryInUse(), (30u * 30u + 40u * 40u) * 4u);
    }

    // Several at once, from one reading of the file: what JUCE decodes, at any size.
    const ScaledPictures::Copy copies[] { { Picture::ledRed, 80, 80 },
                                          { Picture::ledRed, 33, 33 },
                                          { Picture::panel, 90, 70 } };
    pictures.makeTogether (copies);

    for (const auto& copy : copies)
        EXPECT_TRUE (samePixels (pictures.get (copy),
                                 resampled (decodedPicture (copy.picture), copy.frameWidth, copy.frameHeight)));

    pictures.releaseUnused();
    EXPECT_EQ (pictures.memoryInUse(), 0u);
}

} // namespace tarvik
