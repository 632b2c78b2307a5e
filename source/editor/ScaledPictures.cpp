// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ScaledPictures.h"

#include "editor/ControlGeometry.h"
#include "editor/ImageResampling.h"

namespace tarvik
{

int numFramesOf (Picture picture)
{
    return picture == Picture::knobStandard || picture == Picture::knobLarge ? filmstrip::frameCount : 1;
}

juce::Image ScaledPictures::get (Picture picture, int frameWidth, int frameHeight)
{
    if (picture == Picture::none || frameWidth <= 0 || frameHeight <= 0)
        return {};

    // At its own size a picture needs no copy, and the decoder's cache shares it.
    if (const auto& row = rowOf (picture); frameWidth * numFramesOf (picture) == row.width && frameHeight == row.height)
        return decodedPicture (picture);

    const Key key { picture, frameWidth, frameHeight };

    if (const auto found = copies.find (key); found != copies.end())
        return found->second;

    // No control holds a copy whose only reference is ours.
    std::erase_if (copies, [] (const auto& entry) { return entry.second.getReferenceCount() == 1; });

    return copies[key] = resampled (decodedPicture (picture), frameWidth, frameHeight, numFramesOf (picture));
}

std::size_t ScaledPictures::memoryInUse() const
{
    std::size_t bytes = 0;

    for (const auto& [key, image] : copies)
    {
        const juce::Image::BitmapData data (image, juce::Image::BitmapData::readOnly);
        bytes += static_cast<std::size_t> (data.lineStride) * static_cast<std::size_t> (data.height);
    }

    return bytes;
}

void ScaledPicture::setPicture (Picture pictureToDraw)
{
    picture = pictureToDraw;
    copy = {};
    frameWidth = 0;
}

void ScaledPicture::drawFrame (juce::Graphics& g, juce::Rectangle<int> area, int frame, float angle)
{
    const auto scale = g.getInternalContext().getPhysicalPixelScaleFactor();
    const auto wantedWidth = juce::roundToInt (static_cast<float> (area.getWidth()) * scale);
    const auto wantedHeight = juce::roundToInt (static_cast<float> (area.getHeight()) * scale);

    if (wantedWidth != frameWidth || wantedHeight != frameHeight)
    {
        copy = {}; // releases the old size before the new one is made
        copy = pictures->get (picture, wantedWidth, wantedHeight);
        frameWidth = wantedWidth;
        frameHeight = wantedHeight;
    }

    if (copy.isNull())
        return;

    const auto whole = area.toFloat();
    const auto image = copy.getClippedImage ({ frame * frameWidth, 0, frameWidth, frameHeight });
    g.setOpacity (1.0f);
    g.setImageResamplingQuality (juce::Graphics::highResamplingQuality);
    g.drawImageTransformed (image, juce::AffineTransform::scale (whole.getWidth() / static_cast<float> (frameWidth),
                                                                 whole.getHeight() / static_cast<float> (frameHeight))
                                       .translated (whole.getPosition())
                                       .rotated (angle, whole.getCentreX(), whole.getCentreY()));
}

} // namespace tarvik
