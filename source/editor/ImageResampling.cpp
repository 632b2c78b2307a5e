// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ImageResampling.h"

#include <vector>

namespace tarvik
{

namespace
{
/** The source pixels that make one new pixel along one axis, with shares that add up to 1. */
struct Taps
{
    int first = 0;
    std::vector<float> shares;
};

Taps areaTaps (double start, double end)
{
    Taps taps { static_cast<int> (start), {} };
    const auto last = std::max (taps.first + 1, static_cast<int> (std::ceil (end)));

    for (int i = taps.first; i < last; ++i)
        taps.shares.push_back (
            static_cast<float> ((std::min (end, i + 1.0) - std::max (start, i + 0.0)) / (end - start)));

    return taps;
}

Taps interpolationTaps (double centre, int length)
{
    const auto place = juce::jlimit (0.0, length - 1.0, centre - 0.5);
    const auto first = std::min (static_cast<int> (place), std::max (0, length - 2));
    const auto share = static_cast<float> (place - first);

    return { first, { 1.0f - share, share } };
}

/** For each new pixel along an axis. */
std::vector<Taps> tapsFor (int sourceLength, int length)
{
    std::vector<Taps> all;
    const auto ratio = sourceLength / static_cast<double> (length);

    for (int i = 0; i < length; ++i)
        all.push_back (ratio >= 1.0 ? areaTaps (i * ratio, std::min<double> (sourceLength, (i + 1) * ratio))
                                    : interpolationTaps ((i + 0.5) * ratio, sourceLength));

    return all;
}

using Row = std::vector<float>;

/** The weighted mean of some of the source's rows, all bytes of them. */
void mixRows (const juce::Image::BitmapData& source, const Taps& taps, Row& sum)
{
    std::fill (sum.begin(), sum.end(), 0.0f);

    for (std::size_t t = 0; t < taps.shares.size(); ++t)
    {
        const auto* const line =
            source.getLinePointer (std::min (taps.first + static_cast<int> (t), source.height - 1));
        const auto share = taps.shares[t];

        for (std::size_t i = 0; i < sum.size(); ++i)
            sum[i] += share * static_cast<float> (line[i]);
    }
}

template <int bytesPerPixel>
void mixColumns (const float* source, int sourceWidth, const std::vector<Taps>& columns, juce::uint8* target)
{
    for (const auto& taps : columns)
    {
        float sums[4] = {}; // the widest pixel

        for (std::size_t t = 0; t < taps.shares.size(); ++t)
        {
            const auto column = std::min (taps.first + static_cast<int> (t), sourceWidth - 1);
            const auto* const pixel = source + column * bytesPerPixel;

            for (int c = 0; c < bytesPerPixel; ++c)
                sums[c] += taps.shares[t] * pixel[c];
        }

        for (int c = 0; c < bytesPerPixel; ++c)
            *target++ = static_cast<juce::uint8> (sums[c] + 0.5f);
    }
}

template <int bytesPerPixel>
void resample (const juce::Image::BitmapData& source, juce::Image::BitmapData& target, int numFrames)
{
    const auto frameWidth = source.width / numFrames;
    const auto width = target.width / numFrames;
    const auto columns = tapsFor (frameWidth, width);
    Row row (static_cast<std::size_t> (source.width * bytesPerPixel));
    int y = 0;

    for (const auto& taps : tapsFor (source.height, target.height))
    {
        mixRows (source, taps, row);
        auto* const line = target.getLinePointer (y++);

        for (int frame = 0; frame < numFrames; ++frame)
            mixColumns<bytesPerPixel> (row.data() + frame * frameWidth * bytesPerPixel, frameWidth, columns,
                                       line + frame * width * bytesPerPixel);
    }
}
} // namespace

juce::Image resampled (const juce::Image& source, int width, int height, int numFrames)
{
    if (source.isNull() || width <= 0 || height <= 0)
        return {};

    juce::Image target (source.getFormat(), width * numFrames, height, false, juce::SoftwareImageType());
    const juce::Image::BitmapData from (source, juce::Image::BitmapData::readOnly);
    juce::Image::BitmapData to (target, juce::Image::BitmapData::writeOnly);

    if (from.pixelStride == 3)
        resample<3> (from, to, numFrames);
    else if (from.pixelStride == 4)
        resample<4> (from, to, numFrames);
    else
        return {};

    return target;
}

} // namespace tarvik
