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
Image rowsOf (std::initializer_list<int> greys, int height)
{
    Image image (Image::RGB, static_cast<int> (greys.size()), height, false);

    for (int y = 0; y < height; ++y)
    {
        int x = 0;

        for (const auto grey : greys)
        {
            const auto level = static_cast<juce::uint8> (grey);
            image.setPixelAt (x++, y, juce::Colour (level, level, level));
        }
    }

    return image;
}

int redAt (const Image& image, int x, int y = 0) { return image.getPixelAt (x, y).getRed(); }
} // namespace

TEST (Pictures, EveryFileHasTheSizeAndTheChannelsOfTheCatalogue)
{
    for (const auto& row : pictureCatalogue)
    {
        SCOPED_TRACE (row.name);
        const auto file = embeddedPicture (row.id);
        ASSERT_GT (file.size(), 33u);

        // After the signature comes the header: width, height, bits a channel, kind of colours (2 RGB, 6 RGBA).
        const auto* const header = reinterpret_cast<const char*> (file.data()) + 16;
        EXPECT_EQ (juce::ByteOrder::bigEndianInt (header), static_cast<juce::uint32> (row.width));
        EXPECT_EQ (juce::ByteOrder::bigEndianInt (header + 4), static_cast<juce::uint32> (row.height));
        EXPECT_EQ (header[9], row.colours == PictureColours::rgba ? 6 : 2);
        EXPECT_TRUE (decodedPicture (row.id).isValid());
    }
}

TEST (Pictures, TheFontIsAnOpenTypeFaceThatDraws)
{
    EXPECT_EQ (juce::String (reinterpret_cast<const char*> (embeddedFont().data()), 4), "OTTO");

    const juce::SharedResourcePointer<NameTypeface> face;
    ASSERT_NE (face->typeface, nullptr);
    EXPECT_GT (juce::Font (face->typeface).withHeight (26.0f).getStringWidth ("Lead vocal"), 50);
}

TEST (Resampling, AThirdOfTheLinesIsAThirdOfTheLight)
{
    // JUCE's own renderer gives 0 or 255 here, whichever pixel it meets.
    const auto lines = rowsOf ({ 255, 0, 0, 255, 0, 0, 255, 0, 0 }, 6);

    for (int x = 0; x < 3; ++x)
        EXPECT_EQ (redAt (resampled (lines, 3, 2), x, 1), 85);

    // Fractions of pixels count by their area: 1.5 pixels to one.
    const auto fractions = resampled (rowsOf ({ 30, 90, 240 }, 3), 2, 2);
    EXPECT_EQ (redAt (fractions, 0), (30 * 2 + 90) / 3);
    EXPECT_EQ (redAt (fractions, 1), (90 + 240 * 2) / 3);

    // The same size is the same picture, and a larger one has no steps.
    EXPECT_EQ (redAt (resampled (lines, 9, 6), 3), 255);
    const auto larger = resampled (rowsOf ({ 0, 200 }, 1), 4, 1);
    EXPECT_EQ (redAt (larger, 1), 50);
    EXPECT_EQ (redAt (larger, 2), 150);
}

TEST (Resampling, TransparentPixelsDarkenNoEdges)
{
    Image half (Image::ARGB, 2, 2, true);

    for (int y = 0; y < 2; ++y)
        half.setPixelAt (0, y, juce::Colours::white);

    const auto mean = resampled (half, 1, 1).getPixelAt (0, 0);
    EXPECT_NEAR (mean.getAlpha(), 128, 1);
    EXPECT_GE (mean.getRed(), 254);
}

TEST (Resampling, NoFrameOfAStripBleedsIntoTheNext)
{
    const auto strip = rowsOf ({ 0, 0, 0, 0, 240, 240, 240, 240 }, 4);

    for (const auto width : { 1, 3, 7 })
    {
        const auto scaled = resampled (strip, width, 3, 2);
        ASSERT_EQ (scaled.getWidth(), 2 * width);
        EXPECT_EQ (redAt (scaled, width - 1), 0) << width;
        EXPECT_EQ (redAt (scaled, width), 240) << width;
    }
}

TEST (ScaledPictures, OneCopyServesAllAndGoesWithItsLastUser)
{
    using Pictures = juce::SharedResourcePointer<ScaledPictures>;
    const Image canvas (Image::RGB, 100, 100, true);
    juce::Graphics normal (canvas), doubled (canvas);
    doubled.addTransform (juce::AffineTransform::scale (2.0f));

    {
        const Pictures pictures;
        ASSERT_EQ (pictures->memoryInUse(), 0u);

        ScaledPicture one (Picture::muteOn), other (Picture::muteOn);
        one.draw (normal, { 0, 0, 20, 20 });
        other.draw (normal, { 10, 0, 20, 20 });
        EXPECT_EQ (pictures->memoryInUse(), 20u * 20u * 4u);

        // A display of twice the density, and what nobody uses any more is gone.
        one.draw (doubled, { 0, 0, 20, 20 });
        EXPECT_EQ (pictures->memoryInUse(), (20u * 20u + 40u * 40u) * 4u);
        other.draw (normal, { 0, 0, 30, 30 });
        EXPECT_EQ (pictures->memoryInUse(), (30u * 30u + 40u * 40u) * 4u);

        // At its own size, as at 150 % on a display of twice the density, a strip of 35 MB is not copied.
        const auto own = pictures->get (Picture::muteOn, 110, 110);
        EXPECT_EQ (own.getPixelData(), decodedPicture (Picture::muteOn).getPixelData());
        EXPECT_EQ (pictures->memoryInUse(), (30u * 30u + 40u * 40u) * 4u);
    }

    EXPECT_EQ (Pictures()->memoryInUse(), 0u);
}

} // namespace tarvik
