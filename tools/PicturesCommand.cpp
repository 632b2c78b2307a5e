// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EmbeddedResources.h"
#include "editor/ImageResampling.h"
#include "editor/ScaledPictures.h"
#include "tools/Commands.h"
#include "tools/ContactSheet.h"
#include "tools/PngFile.h"

#include <iostream>

namespace tarvik
{

namespace
{
constexpr int reduction = 3; ///< What the window shrinks the pictures by at 100 %.
constexpr int framesShown = 7;

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

void add (ContactSheet& sheet, const PictureRow& row)
{
    const auto picture = decodedPicture (row.id);
    const auto numFrames = numFramesOf (row.id);
    const auto width = juce::roundToInt (static_cast<float> (row.width) / static_cast<float> (numFrames * reduction));
    const auto height = juce::roundToInt (static_cast<float> (row.height) / static_cast<float> (reduction));

    sheet.add (row.name,
               { sampleOf (picture, numFrames), sampleOf (resampled (picture, width, height, numFrames), numFrames) });
}
} // namespace

void writeContactSheet (const CommandLine& line)
{
    OutputFile file (line.outputPath);
    ContactSheet sheet;

    for (const auto& row : pictureCatalogue)
        add (sheet, row);

    writePng (file, sheet.draw());
    std::cout << line.outputPath << '\n';
}

} // namespace tarvik
