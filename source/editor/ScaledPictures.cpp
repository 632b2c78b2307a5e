// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ScaledPictures.h"

#include "editor/ControlGeometry.h"
#include "editor/ImageResampling.h"

#include <future>

namespace tarvik
{

JUCE_IMPLEMENT_SINGLETON (ScaledPictures)

int numFramesOf (Picture picture)
{
    return picture == Picture::knobStandard || picture == Picture::knobLarge ? filmstrip::frameCount : 1;
}

ScaledPictures::Copies ScaledPictures::make (Picture picture, const std::set<Copy>& wanted) const
{
    const auto& row = rowOf (picture);
    const auto format = row.colours == PictureColours::rgba ? juce::Image::ARGB : juce::Image::RGB;
    std::map<Copy, RowResampler> resamplers;
    Copies made;

    for (const auto& copy : wanted)
        resamplers.try_emplace (copy, format, row.width, row.height, copy.frameWidth, copy.frameHeight,
                                numFramesOf (picture));

    if (readPicture (picture,
                     [&] (const juce::uint8* pixels)
                     {
                         for (auto& [copy, resampler] : resamplers)
                             resampler.addRow (pixels);
                     }))
        for (const auto& [copy, resampler] : resamplers)
            made.emplace (copy, resampler.result());

    return made;
}

juce::Image ScaledPictures::get (const Copy& wanted)
{
    if (wanted.picture == Picture::none || wanted.frameWidth <= 0 || wanted.frameHeight <= 0)
        return {};

    if (const auto found = copies.find (wanted); found != copies.end())
        return found->second;

    releaseUnused();
    copies.merge (make (wanted.picture, { wanted }));
    return copies[wanted];
}

void ScaledPictures::makeTogether (std::span<const Copy> wanted)
{
    std::map<Picture, std::set<Copy>> missing;

    for (const auto& copy : wanted)
        if (copy.frameWidth > 0 && copy.frameHeight > 0 && ! copies.contains (copy))
            missing[copy.picture].insert (copy);

    std::vector<std::future<Copies>> jobs;

    for (const auto& [picture, sizes] : missing) // one after the other if there is no thread to be had
        jobs.push_back (std::async (std::launch::async | std::launch::deferred,
                                    [this, picture = picture, &sizes = sizes] { return make (picture, sizes); }));

    for (auto& job : jobs)
        copies.merge (job.get());
}

void ScaledPictures::releaseUnused()
{
    // No control holds a copy whose only reference is ours.
    std::erase_if (copies, [] (const auto& entry) { return entry.second.getReferenceCount() == 1; });
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
    held = {};
}

ScaledPictures::Copy ScaledPicture::copyFor (juce::Rectangle<int> area, float scale) const
{
    return { picture, juce::roundToInt (static_cast<float> (area.getWidth()) * scale),
             juce::roundToInt (static_cast<float> (area.getHeight()) * scale) };
}

void ScaledPicture::hold (juce::Rectangle<int> area, float scale)
{
    const auto wanted = copyFor (area, scale);

    if (wanted == held)
        return;

    copy = {}; // releases the old size before the new one is made
    copy = ScaledPictures::getInstance()->get (wanted);
    held = wanted;
}

void ScaledPicture::drawFrame (juce::Graphics& g, juce::Rectangle<int> area, int frame, float angle)
{
    hold (area, scaleOf (g));

    if (copy.isNull())
        return;

    const auto whole = area.toFloat();
    const auto image = copy.getClippedImage ({ frame * held.frameWidth, 0, held.frameWidth, held.frameHeight });
    g.setOpacity (1.0f);
    g.setImageResamplingQuality (juce::Graphics::highResamplingQuality);
    g.drawImageTransformed (image,
                            juce::AffineTransform::scale (whole.getWidth() / static_cast<float> (held.frameWidth),
                                                          whole.getHeight() / static_cast<float> (held.frameHeight))
                                .translated (whole.getPosition())
                                .rotated (angle, whole.getCentreX(), whole.getCentreY()));
}

} // namespace tarvik
