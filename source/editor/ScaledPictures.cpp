// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ScaledPictures.h"

#include "editor/ControlGeometry.h"

#include <future>

namespace tarvik
{

JUCE_IMPLEMENT_SINGLETON (ScaledPictures)

int numFramesOf (Picture picture)
{
    return picture == Picture::knobStandard || picture == Picture::knobLarge ? filmstrip::frameCount : 1;
}

void ScaledPictures::begin (Work& work, const Copy& copy)
{
    const auto& row = rowOf (copy.picture);
    const auto format = row.colours == PictureColours::rgba ? juce::Image::ARGB : juce::Image::RGB;
    work.try_emplace (copy, format, row.width, row.height, copy.frameWidth, copy.frameHeight,
                      numFramesOf (copy.picture));
}

bool ScaledPictures::read (Work& work) const
{
    return readPicture (work.begin()->first.picture,
                        [&work] (const juce::uint8* pixels)
                        {
                            for (auto& [copy, resampler] : work)
                                resampler.addRow (pixels);
                        });
}

void ScaledPictures::keep (const Work& work)
{
    for (const auto& [copy, resampler] : work)
        copies[copy] = resampler.result();
}

juce::Image ScaledPictures::get (const Copy& wanted)
{
    if (wanted.picture == Picture::none || wanted.frameWidth <= 0 || wanted.frameHeight <= 0)
        return {};

    if (const auto found = copies.find (wanted); found != copies.end())
        return found->second;

    releaseUnused();
    Work work;
    begin (work, wanted);

    if (! read (work))
        return {};

    keep (work);
    return copies[wanted];
}

void ScaledPictures::makeTogether (std::span<const Copy> wanted)
{
    std::map<Picture, Work> missing; // with the copies' memory, which outlives the threads that fill it

    for (const auto& copy : wanted)
        if (copy.frameWidth > 0 && copy.frameHeight > 0 && ! copies.contains (copy))
            begin (missing[copy.picture], copy);

    std::vector<std::pair<std::future<bool>, const Work*>> jobs;

    for (auto& [picture, work] : missing) // where no thread can be had, in turn
        jobs.emplace_back (
            std::async (std::launch::async | std::launch::deferred, [this, &work = work] { return read (work); }),
            &work);

    for (auto& [isRead, work] : jobs)
        if (isRead.get())
            keep (*work);
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
