// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/CompareCommand.h"

#include "tools/AudioFile.h"
#include "tools/Interruption.h"
#include "tools/Levels.h"
#include "tools/ToolError.h"
#include "tools/plot/BandLevels.h"
#include "tools/plot/PictureFile.h"
#include "tools/plot/Plots.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <list>

namespace tarvik
{

namespace
{
using plot::Axis;
using plot::Chart;
using plot::Curve;
using plot::Point;

constexpr double referenceHz[] = { 100.0, 1000.0, 10000.0 };

/** What is quieter than this, in dB below the loudest band, has no difference worth a figure. */
constexpr int depthDb = 70;

/** What a picture shows of a recording. */
struct Recording
{
    juce::String name;
    double rateHz = 0.0, seconds = 0.0;
    std::vector<Point> outline; ///< The lowest and the highest sample in each of some hundred pieces, over seconds.
    std::vector<Point> bandsDb; ///< 0 dB is a full-scale sine in one channel, or in both.
    double peakDbfs = 0.0, rmsDbfs = 0.0;
};

class RecordingReader
{
public:
    explicit RecordingReader (const juce::String& path) : file (path), name (fileAt (path).getFileName())
    {
        constexpr double leastRateHz = 1000.0; // the picture has a band there

        if (file.length() == 0)
            throw ToolError ("there is no sound in '" + path + "'");

        if (file.sampleRate() < leastRateHz)
            throw ToolError ("'" + path + "' has a rate of only " + juce::String (file.sampleRate()) + " Hz");
    }

    double rateHz() const { return file.sampleRate(); }

    Recording read()
    {
        // The whole picture is about that many pixels wide.
        constexpr juce::int64 numPieces = 760;
        const auto numChannels = file.numChannels();
        std::list<plot::BandLevels> bands;
        ChannelLevels levels; // of both channels as if one followed the other
        Recording recording { name, rateHz(), static_cast<double> (file.length()) / rateHz(), {}, {} };
        juce::AudioBuffer<float> block;

        for (int c = 0; c < numChannels; ++c)
            bands.emplace_back (rateHz());

        for (juce::int64 piece = 0; piece < numPieces; ++piece)
        {
            throwIfInterrupted();
            const auto begin = file.length() * piece / numPieces;
            const auto n = static_cast<int> (file.length() * (piece + 1) / numPieces - begin);
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
                    recording.outline.push_back (
                        { static_cast<double> (begin) / rateHz(), static_cast<double> (value) });
        }

        recording.bandsDb = meanOf (bands);
        recording.peakDbfs = levels.peakDbfs();
        recording.rmsDbfs = levels.rmsDbfs();
        return recording;
    }

private:
    static std::vector<Point> meanOf (std::list<plot::BandLevels>& channels)
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
            point.y = plot::decibels (std::sqrt (point.y / powerOfFullScaleSine));

        return mean;
    }

    AudioFileReader file;
    const juce::String name;
};

/** The smallest of 1, 2, 5, 10, 20 and so on, also of 0.1 and so on, of which `most` reach as far as the range. */
double roundStep (double range, int most)
{
    const auto least = range / most;
    const auto decade = std::pow (10.0, std::floor (std::log10 (least)));

    for (const auto digit : { 1.0, 2.0, 5.0 })
        if (digit * decade >= least)
            return digit * decade;

    return 10.0 * decade;
}

Chart chartOfOutline (const Recording& recording, double seconds, double highest)
{
    constexpr int mostTimes = 12, mostLevels = 2;
    const auto timeStep = roundStep (seconds, mostTimes), levelStep = roundStep (highest, mostLevels);
    Chart chart;
    chart.heading = recording.name;
    chart.x = Axis::linear ("Time / s", 0.0, std::floor (seconds / timeStep) * timeStep, timeStep);
    chart.x.end = seconds;
    chart.y = Axis::linear ("Sample", -2.0 * levelStep, 2.0 * levelStep, levelStep);
    chart.height = 170.0;
    chart.curves.push_back ({ {}, recording.outline, plot::shade (0.5), false, false, 1.0 });
    return chart;
}

Chart chartOfBands (const Recording& before, const Recording& after, double loudestDb)
{
    constexpr double stepDb = 10.0, shownDb = 90.0;
    const auto top = std::ceil (loudestDb / stepDb) * stepDb;
    Chart chart;
    chart.heading = "Level in thirds of an octave";
    chart.x = Axis::frequency (before.bandsDb.front().x, before.bandsDb.back().x);
    chart.y = Axis::linear ("Level / dBFS", top - shownDb, top, stepDb);
    chart.curves.push_back ({ "before", before.bandsDb, plot::shade (0.2), true });
    chart.curves.push_back ({ "after", after.bandsDb, plot::shade (1.0) });
    return chart;
}

/** In the bands in which there was something to change. */
std::vector<Point> differenceDb (const Recording& before, const Recording& after, double loudestDb)
{
    std::vector<Point> difference;

    for (std::size_t i = 0; i < before.bandsDb.size(); ++i)
        if (std::min (before.bandsDb[i].y, after.bandsDb[i].y) > loudestDb - depthDb)
            difference.push_back ({ before.bandsDb[i].x, after.bandsDb[i].y - before.bandsDb[i].y });

    return difference;
}

Chart chartOfDifference (const std::vector<Point>& difference, const Axis& frequency)
{
    constexpr int mostSteps = 4;
    double farthest = 1.0;

    for (const auto& point : difference)
        farthest = std::max (farthest, std::abs (point.y));

    const auto step = roundStep (farthest, mostSteps);
    const auto end = std::ceil (farthest / step) * step;
    Chart chart;
    chart.heading = "After over before";
    chart.x = frequency;
    chart.y = Axis::linear ("Change / dB", -end, end, step);
    chart.height = 200.0;
    chart.curves.push_back ({ "change", difference, plot::shade (1.0) });
    return chart;
}

void printLevels (const char* which, const Recording& recording)
{
    plot::printFigure (which + juce::String (": peak"), recording.peakDbfs, "dBFS");
    plot::printFigure (which + juce::String (": RMS, 3.01 below a sine's peak"), recording.rmsDbfs, "dBFS");

    const auto loudest = plot::highest (recording.bandsDb);
    plot::printFigure (which + juce::String (": loudest third of an octave, at ")
                           + juce::String (juce::roundToInt (loudest.x)) + " Hz",
                       loudest.y, "dBFS");
}

void printDifference (const std::vector<Point>& difference)
{
    constexpr double centreSlack = 1.01;

    for (const auto hz : referenceHz)
        for (const auto& point : difference)
            if (point.x < hz * centreSlack && hz < point.x * centreSlack)
                plot::printFigure ("change at " + juce::String (juce::roundToInt (hz)) + " Hz", point.y, "dB");
}
} // namespace

void compareRecordings (const CommandLine& line)
{
    OutputFile file (line.outputPath);
    file.refuseSameFileAs (line.inputPath, "the first recording");
    file.refuseSameFileAs (line.comparedPath, "the second recording");
    RecordingReader first (line.inputPath), second (line.comparedPath);

    if (first.rateHz() != second.rateHz())
        throw ToolError ("the recordings have different rates: " + juce::String (first.rateHz()) + " and "
                         + juce::String (second.rateHz()) + " Hz");

    noteTerminationSignals();
    const auto before = first.read(), after = second.read();
    const auto seconds = std::max (before.seconds, after.seconds);
    constexpr double leastHighest = 0.01, mostHighest = 1000.0,
                     leastLoudestDb = -120.0; // pictures of silence, of noise
    double highest = leastHighest, loudestDb = leastLoudestDb;

    for (const auto* const recording : { &before, &after })
    {
        for (const auto& point : recording->outline)
            highest = std::clamp (std::abs (point.y), highest, mostHighest);

        for (const auto& point : recording->bandsDb)
            loudestDb = std::max (loudestDb, point.y);
    }

    const auto difference = differenceDb (before, after, loudestDb);
    const auto bands = chartOfBands (before, after, loudestDb);
    plot::Picture picture { {},
                            "Before and after",
                            { "Above, the lowest and the highest samples of both channels over time. Below, the mean "
                              "levels in bands a third of"
                              " an octave wide;",
                              "0 dBFS is a full-scale sine. The change is shown where both are within "
                                  + juce::String (depthDb) + " dB of the loudest band." } };
    picture.charts = { chartOfOutline (before, seconds, highest), chartOfOutline (after, seconds, highest), bands,
                       chartOfDifference (difference, bands.x) };
    plot::writePicture (file, picture);
    printLevels ("before", before);
    printLevels ("after", after);
    printDifference (difference);
}

} // namespace tarvik
