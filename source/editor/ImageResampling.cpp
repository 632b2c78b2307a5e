// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ImageResampling.h"

#include <utility>

namespace tarvik
{

RowResampler::Taps RowResampler::areaTaps (double start, double end)
{
    Taps taps { static_cast<int> (start), {} };
    const auto last = std::max (taps.first + 1, static_cast<int> (std::ceil (end)));

    for (int i = taps.first; i < last; ++i)
        taps.shares.push_back (
            static_cast<float> ((std::min (end, i + 1.0) - std::max (start, i + 0.0)) / (end - start)));

    return taps;
}

RowResampler::Taps RowResampler::interpolationTaps (double centre, int length)
{
    const auto place = juce::jlimit (0.0, length - 1.0, centre - 0.5);
    const auto first = std::min (static_cast<int> (place), std::max (0, length - 2));
    const auto share = static_cast<float> (place - first);

    return { first, { 1.0f - share, share } };
}

/** For each new pixel along an axis. */
std::vector<RowResampler::Taps> RowResampler::tapsFor (int sourceLength, int length)
{
    std::vector<Taps> all;
    const auto ratio = sourceLength / static_cast<double> (length);

    for (int i = 0; i < length; ++i)
        all.push_back (ratio >= 1.0 ? areaTaps (i * ratio, std::min<double> (sourceLength, (i + 1) * ratio))
                                    : interpolationTaps ((i + 0.5) * ratio, sourceLength));

    return all;
}

RowResampler::RowResampler (juce::Image::PixelFormat format, int fromWidth, int fromHeight, int frameWidth,
                            int frameHeight, int framesInStrip)
    : sourceWidth (fromWidth), sourceHeight (fromHeight), numFrames (framesInStrip),
      bytesPerPixel (format == juce::Image::RGB ? 3 : 4),
      target (format, frameWidth * framesInStrip, frameHeight, false, juce::SoftwareImageType()),
      columns (tapsFor (fromWidth / framesInStrip, frameWidth)), rows (tapsFor (fromHeight, frameHeight))
{
}

void RowResampler::addRow (const juce::uint8* row)
{
    const auto isLast = rowsAdded == sourceHeight - 1;
    const auto numRows = static_cast<int> (rows.size());

    for (int y = rowsDone; y < numRows && rows[static_cast<std::size_t> (y)].first <= rowsAdded; ++y)
    {
        if (y - rowsDone == static_cast<int> (open.size()))
        {
            open.push_back (std::exchange (spare, {}));
            open.back().assign (static_cast<std::size_t> (sourceWidth * bytesPerPixel), 0.0f);
        }

        const auto& [first, shares] = rows[static_cast<std::size_t> (y)];
        auto& sums = open[static_cast<std::size_t> (y - rowsDone)];
        const auto begin = static_cast<std::size_t> (rowsAdded - first);

        // What would lie beyond the source's edge is the last row once more.
        for (auto t = begin; t < (isLast ? shares.size() : std::min (shares.size(), begin + 1)); ++t)
            for (std::size_t i = 0; i < sums.size(); ++i)
                sums[i] += shares[t] * static_cast<float> (row[i]);
    }

    ++rowsAdded;

    while (! open.empty())
    {
        const auto& [first, shares] = rows[static_cast<std::size_t> (rowsDone)];

        if (! isLast && first + static_cast<int> (shares.size()) > rowsAdded)
            break;

        finishRow (open.front().data());
        spare = std::move (open.front());
        open.pop_front();
        ++rowsDone;
    }
}

/** Mixes the columns of a new row's sums. */
void RowResampler::finishRow (const float* sums)
{
    const auto frameWidth = sourceWidth / numFrames;
    juce::Image::BitmapData pixels (target, juce::Image::BitmapData::writeOnly);
    auto* to = pixels.getLinePointer (rowsDone);

    for (int frame = 0; frame < numFrames; ++frame)
        for (const auto& [first, shares] : columns)
        {
            float mean[4] = {}; // the widest pixel

            for (std::size_t t = 0; t < shares.size(); ++t)
            {
                const auto column = frame * frameWidth + std::min (first + static_cast<int> (t), frameWidth - 1);

                for (int c = 0; c < bytesPerPixel; ++c)
                    mean[c] += shares[t] * sums[column * bytesPerPixel + c];
            }

            for (int c = 0; c < bytesPerPixel; ++c)
                *to++ = static_cast<juce::uint8> (mean[c] + 0.5f);
        }
}

juce::Image resampled (const juce::Image& source, int width, int height, int numFrames)
{
    if (source.isNull() || width <= 0 || height <= 0)
        return {};

    RowResampler resampler (source.getFormat(), source.getWidth(), source.getHeight(), width, height, numFrames);
    const juce::Image::BitmapData pixels (source, juce::Image::BitmapData::readOnly);

    for (int y = 0; y < source.getHeight(); ++y)
        resampler.addRow (pixels.getLinePointer (y));

    return resampler.result();
}

} // namespace tarvik
