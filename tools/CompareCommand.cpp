// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/CompareCommand.h"

#include "tools/Interruption.h"
#include "tools/ToolError.h"
#include "tools/plot/PictureFile.h"
#include "tools/plot/Plots.h"
#include "tools/plot/RecordingOverview.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarvik
{

namespace
{
using plot::Axis;
using plot::Chart;
using plot::Point;
using plot::RecordingOverview;

/** What is quieter than this, in dB below the loudest band, has no difference worth a figure. */
constexpr int depthDb = 70;

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

Chart chartOfOutline (const RecordingOverview& recording, double highest)
{
    constexpr int mostTimes = 12, mostLevels = 2;
    constexpr double longSeconds = 1.0, millisecondsPerSecond = 1000.0;
    const auto isLong = recording.seconds >= longSeconds;
    const auto scale = isLong ? 1.0 : millisecondsPerSecond;
    const auto end = scale * recording.seconds;
    const auto timeStep = roundStep (end, mostTimes), levelStep = roundStep (highest, mostLevels);
    Chart chart;
    chart.heading = recording.name;
    chart.x = Axis::linear (isLong ? "Time / s" : "Time / ms", 0.0, std::floor (end / timeStep) * timeStep, timeStep);
    chart.x.end = end;
    chart.y = Axis::linear ("Sample", -2.0 * levelStep, 2.0 * levelStep, levelStep);
    chart.height = 170.0;
    auto outline = recording.outline;

    for (auto& point : outline)
        point.x *= scale;

    chart.curves.push_back ({ {}, outline, plot::shade (0.5), false, false, 1.0 });
    return chart;
}

Chart chartOfBands (const RecordingOverview& before, const RecordingOverview& after, double loudestDb)
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

/** No number in the bands in which there was nothing to change, or nothing is left. */
std::vector<Point> differenceDb (const RecordingOverview& before, const RecordingOverview& after, double loudestDb)
{
    std::vector<Point> difference;

    for (std::size_t i = 0; i < before.bandsDb.size(); ++i)
    {
        const auto [hz, beforeDb] = before.bandsDb[i];
        const auto afterDb = after.bandsDb[i].y;
        const auto isHeard = std::min (beforeDb, afterDb) > loudestDb - depthDb;
        difference.push_back ({ hz, isHeard ? afterDb - beforeDb : std::numeric_limits<double>::quiet_NaN() });
    }

    return difference;
}

Chart chartOfDifference (const std::vector<Point>& difference, const Axis& frequency)
{
    constexpr int mostSteps = 4;
    double farthest = 1.0;

    for (const auto& point : difference)
        farthest = std::max (farthest, std::abs (point.y)); // the first argument is kept if there is no number

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

void printLevels (const juce::String& which, const RecordingOverview& recording)
{
    plot::printFigure (which + ": peak", recording.peakDbfs, "dBFS");
    plot::printFigure (which + ": RMS, 3.01 below a sine's peak", recording.rmsDbfs, "dBFS");

    const auto loudest = plot::highest (recording.bandsDb);
    const auto centreHz = juce::String (juce::roundToInt (loudest.x));
    plot::printFigure (which + ": loudest third of an octave, at " + centreHz + " Hz", loudest.y, "dBFS");

    if (recording.badSamples > 0)
        plot::printFigure (which + ": no finite numbers, taken as silence", static_cast<double> (recording.badSamples),
                           "samples", 0);
}

void printDifference (const std::vector<Point>& difference)
{
    constexpr double centreSlack = 1.01;

    for (const auto hz : { 100.0, 1000.0, 10000.0 })
        for (const auto& point : difference)
            if (std::isfinite (point.y) && point.x < hz * centreSlack && hz < point.x * centreSlack)
                plot::printFigure ("change at " + juce::String (juce::roundToInt (hz)) + " Hz", point.y, "dB");
}
} // namespace

void compareRecordings (const CommandLine& line)
{
    OutputFile file (line.outputPath);
    file.refuseSameFileAs (line.inputPath, "the first recording");
    file.refuseSameFileAs (line.comparedPath, "the second recording");
    plot::RecordingReader first (line.inputPath), second (line.comparedPath);

    if (first.sampleRate() != second.sampleRate())
        throw ToolError ("the recordings have different rates: " + juce::String (first.sampleRate()) + " and "
                         + juce::String (second.sampleRate()) + " Hz");

    noteTerminationSignals();
    const auto numSamples = std::max (first.length(), second.length());
    const auto before = first.read (numSamples), after = second.read (numSamples);

    // Silence still has scales, and what is far too loud leaves the paper.
    constexpr double smallestScale = 0.02, largestScale = 1000.0, quietestScaleDb = -120.0;
    double highest = smallestScale, loudestDb = quietestScaleDb;

    for (const auto* const recording : { &before, &after })
    {
        for (const auto& point : recording->outline)
            highest = std::clamp (std::abs (point.y), highest, largestScale);

        for (const auto& point : recording->bandsDb)
            loudestDb = std::max (loudestDb, point.y);
    }

    const auto difference = differenceDb (before, after, loudestDb);
    const auto bands = chartOfBands (before, after, loudestDb);
    plot::Picture picture { {},
                            "Before and after",
                            { "Above, the lowest and the highest samples over time. Below, the mean levels in bands a"
                              " third of an octave wide; 0 dBFS is a full-scale sine.",
                              "The change is shown where both are within " + juce::String (depthDb)
                                  + " dB of the loudest band." } };
    picture.charts = { chartOfOutline (before, highest), chartOfOutline (after, highest), bands,
                       chartOfDifference (difference, bands.x) };
    plot::writePicture (file, picture);
    printLevels ("before", before);
    printLevels ("after", after);
    printDifference (difference);
}

} // namespace tarvik
