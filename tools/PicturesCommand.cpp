// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EmbeddedResources.h"
#include "editor/ImageResampling.h"
#include "editor/ScaledPictures.h"
#include "tools/Commands.h"
#include "tools/PngFile.h"

#include <iostream>

namespace tarvik
{

namespace
{
constexpr int sheetWidth = 2760;
constexpr int margin = 24, captionHeight = 26;
constexpr int reduction = 3; ///< What the window shrinks the pictures by at 100 %.
constexpr int framesShown = 7;
constexpr juce::uint32 paperColour = 0xff4a5157, captionColour = 0xffe4e3de;

/** The picture itself, or a few frames of a strip. */
juce::Image sampleOf (const juce::Image& picture, int numFrames)
{
    if (numFrames == 1)
        return picture;

    const auto frameWidth = picture.getWidth() / numFrames;
    juce::Image sample (picture.getFormat(), frameWidth * framesShown, picture.getHeight(), true);
    juce::Graphics g (sample);

    for (int i = 0; i < framesShown; ++i)
        g.drawImageAt (
            picture.getClippedImage ({ i * numFrames / framesShown * frameWidth, 0, frameWidth, picture.getHeight() }),
            i * frameWidth, 0);

    return sample;
}

/** One picture with its caption above it, and the small one below. */
struct Entry
{
    juce::Image large, small;
    juce::String caption;

    static juce::Font font() { return { captionHeight * 0.7f }; }

    int width() const { return std::max (large.getWidth(), font().getStringWidth (caption)); }

    int height() const { return captionHeight + large.getHeight() + margin + small.getHeight(); }

    void draw (juce::Graphics& g, int x, int y) const
    {
        g.setColour (juce::Colour (captionColour));
        g.setFont (font());
        g.drawText (caption, x, y, width(), captionHeight, juce::Justification::centredLeft);
        g.setOpacity (1.0f);
        g.drawImageAt (large, x, y + captionHeight);
        g.drawImageAt (small, x, y + captionHeight + large.getHeight() + margin);
    }
};

Entry entryFor (const PictureRow& row)
{
    const auto picture = decodedPicture (row.id);
    const auto numFrames = numFramesOf (row.id);
    const auto width = juce::roundToInt (static_cast<float> (row.width) / static_cast<float> (numFrames * reduction));
    const auto height = juce::roundToInt (static_cast<float> (row.height) / static_cast<float> (reduction));

    return { sampleOf (picture, numFrames), sampleOf (resampled (picture, width, height, numFrames), numFrames),
             juce::String (row.name) };
}

/** Places the entries line by line and draws them if there is something to draw on. Returns the height. */
int layOut (const std::vector<Entry>& entries, juce::Graphics* g)
{
    int x = margin, y = margin, lineHeight = 0;

    for (const auto& entry : entries)
    {
        if (x > margin && x + entry.width() > sheetWidth - margin)
        {
            x = margin;
            y += lineHeight + margin;
            lineHeight = 0;
        }

        if (g != nullptr)
            entry.draw (*g, x, y);

        x += entry.width() + margin;
        lineHeight = std::max (lineHeight, entry.height());
    }

    return y + lineHeight + margin;
}
} // namespace

void writeContactSheet (const CommandLine& line)
{
    OutputFile file (line.outputPath);
    std::vector<Entry> entries;

    for (const auto& row : pictureCatalogue)
        entries.push_back (entryFor (row));

    juce::Image sheet (juce::Image::RGB, sheetWidth, layOut (entries, nullptr), false);
    juce::Graphics g (sheet);
    g.fillAll (juce::Colour (paperColour));
    layOut (entries, &g);

    writePng (file, sheet);
    std::cout << line.outputPath << '\n';
}

} // namespace tarvik
