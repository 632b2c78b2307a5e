// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/plot/RecordingOverview.h"

#include "tools/Interruption.h"
#include "tools/Levels.h"
#include "tools/ToolError.h"
#include "tools/plot/BandLevels.h"
#include "tools/plot/Measurements.h"

#include <cmath>
#include <list>

namespace tarvik::plot
{

namespace
{
/** The mean over the channels, as levels. */
std::vector<Point> levelsOf (std::list<BandLevels>& channels)
{
    constexpr double powerOfFullScaleSine = 0.5;
    std::vector<Point> mean;

    for (auto& channel : channels)
    {
        channel.finish();
        const auto powers = channel.powers();
        mean.resize (powers.size());

        for (std::size_t i = 0; i < powers.size(); ++i)
            mean[i] = { powers[i].x, mean[i].y + powers[i].y / static_cast<double> (channels.size()) };
    }

    for (auto& point : mean)
        point.y = decibels (std::sqrt (point.y / powerOfFullScaleSine));

    return mean;
}
} // namespace

RecordingReader::RecordingReader (const juce::String& path) : file (path), name (fileAt (path).getFileName())
{
    // Below, no band around 1 kHz; above, the lowest bands are narrower than the lines of the spectra.
    constexpr double lowestRateHz = 4000.0, highestRateHz = 1e6;

    if (file.length() == 0)
        throw ToolError ("there is no sound in '" + path + "'");

    if (file.sampleRate() < lowestRateHz || file.sampleRate() > highestRateHz)
        throw ToolError ("the rate of '" + path + "' is " + juce::String (file.sampleRate())
                         + " Hz; from 4 kHz to 1 MHz is possible");
}

RecordingOverview RecordingReader::read (juce::int64 numSamples)
{
    // The whole picture is about that many pixels wide.
    constexpr juce::int64 numPieces = 760;
    const auto numChannels = file.numChannels();
    const auto rateHz = file.sampleRate();
    std::list<BandLevels> bands;
    ChannelLevels levels; // of all channels as if one followed the other
    RecordingOverview overview { name, static_cast<double> (numSamples) / rateHz, {}, {} };
    juce::AudioBuffer<float> block;

    for (int c = 0; c < numChannels; ++c)
        bands.emplace_back (rateHz);

    for (juce::int64 piece = 0; piece < numPieces; ++piece)
    {
        throwIfInterrupted();
        const auto begin = numSamples * piece / numPieces;
        const auto n = static_cast<int> (numSamples * (piece + 1) / numPieces - begin);
        block.setSize (numChannels, n, false, false, true);
        file.readNext (block.getArrayOfWritePointers(), n);
        auto extent = block.findMinMax (0, 0, n);

        for (int c = 0; auto& band : bands)
        {
            extent = extent.getUnionWith (block.findMinMax (c, 0, n));
            levels.add (block.getReadPointer (c), n);
            band.add (block.getReadPointer (c++), n);
        }

        for (const auto value : { extent.getStart(), extent.getEnd() })
            if (n > 0 && std::isfinite (value))
                overview.outline.push_back ({ static_cast<double> (begin) / rateHz, static_cast<double> (value) });
    }

    overview.bandsDb = levelsOf (bands);
    overview.peakDbfs = levels.peakDbfs();
    overview.rmsDbfs = levels.rmsDbfs();
    overview.badSamples = levels.badSamples();
    return overview;
}

} // namespace tarvik::plot
