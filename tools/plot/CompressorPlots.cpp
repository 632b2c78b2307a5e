// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/plot/Plots.h"

#include <algorithm>

namespace tarvik::plot
{

namespace
{
constexpr double rateHz = 48000.0;
constexpr int factor = 2;
constexpr double timingToneHz = 2000.0;
constexpr double millisecondsPerSecond = 1000.0;
constexpr double lowestLevelDb = -50.0;

// A quiet passage, a loud one, and quiet again.
constexpr double quietDb = -40.0, loudDb = -4.0;
constexpr double quietBefore = 0.2, quietBehind = 20.0;

const juce::String howMeasured =
    "Measured through the running module at 48 kHz with twofold oversampling, noise and equaliser off.";

juce::StringArray dynamicsWith (const juce::StringArray& more)
{
    juce::StringArray settings ("compIn=on");
    settings.addArray (more);
    return settings;
}

//==============================================================================
std::vector<Point> measureTransfer (StripUnderTest& strip, const juce::StringArray& settings)
{
    strip.set (dynamicsWith (settings));
    return transferCurve (strip, lowestLevelDb);
}

Picture plotTransfer (StripUnderTest& strip)
{
    Picture picture {
        "compressor-transfer",
        "Compressor and limiter: level out over level in",
        { "A steady tone of 1 kHz that climbs in steps of 2 dB, each held for a second; input and output in"
          " their middle positions.",
          howMeasured }
    };
    picture.numColumns = 2;
    const auto ratios = positionsOf ("compRatio");

    for (const auto* const threshold : { "0", "-10", "-20" })
    {
        auto chart = transferChart ("Threshold " + juce::String (threshold) + " dB", lowestLevelDb, lowestLevelDb);

        for (std::size_t r = 0; r < countOf (ratios); ++r)
        {
            const auto& name = ratios[static_cast<int> (r)];
            auto points = measureTransfer (strip, { "compThreshold=" + juce::String (threshold),
                                                    switchAt ("compRatio", r), "compRelease=100 ms" });
            printFigure ("threshold " + juce::String (threshold) + " dB, " + name + ": out at 0 dBFS in",
                         points.back().y, "dBFS");
            chart.curves.push_back ({ name, std::move (points), shadeOf (r, countOf (ratios)) });
        }

        picture.charts.push_back (std::move (chart));
    }

    auto chart = transferChart ("Limiter, ratio 1:1", lowestLevelDb, lowestLevelDb);

    for (const auto* const state : { "off", "on" })
    {
        auto points = measureTransfer (strip, { "compRatio=1:1", "compLimit=" + juce::String (state) });
        printFigure ("limiter " + juce::String (state) + ": out at 0 dBFS in", points.back().y, "dBFS");
        chart.curves.push_back ({ state, std::move (points), shade (juce::String (state) == "on" ? 1.0 : 0.0) });
    }

    picture.charts.push_back (std::move (chart));
    return picture;
}

//==============================================================================
/** Gain over the time since the loud passage began. */
std::vector<Point> gainSinceBegin (StripUnderTest& strip, const juce::StringArray& settings, double loudSeconds,
                                   double fromDb = quietDb, double toDb = loudDb)
{
    const auto tone = makeTone (timingToneHz, rateHz, { { fromDb, quietBefore }, { toDb, loudSeconds } });
    strip.set (dynamicsWith (settings));
    return gainOverTime (tone, strip.run (tone), timingToneHz, rateHz, quietBefore);
}

/** Gain over the time since the loud passage ended. */
std::vector<Point> gainSinceEnd (StripUnderTest& strip, const juce::StringArray& settings, double loudSeconds)
{
    const auto tone = makeTone (timingToneHz, rateHz,
                                { { quietDb, quietBefore }, { loudDb, loudSeconds }, { quietDb, quietBehind } });
    strip.set (dynamicsWith (settings));
    return gainOverTime (tone, strip.run (tone), timingToneHz, rateHz, quietBefore + loudSeconds);
}

std::vector<Point> after (const std::vector<Point>& points, double seconds)
{
    std::vector<Point> kept;
    std::copy_if (points.begin(), points.end(), std::back_inserter (kept),
                  [seconds] (Point p) { return p.x >= seconds; });
    return kept;
}

constexpr double firstTime = 0.0005; ///< The oversampling's filters ring for that long around a step.
constexpr double shareLeft = 0.1;

Chart timeChart (const juce::String& heading, const juce::String& timeTitle, double endSeconds, double lowestDb)
{
    Chart chart;
    chart.heading = heading;
    chart.x = Axis::time (timeTitle, 0.001, endSeconds);
    chart.y = Axis::linear ("Gain / dB", lowestDb, 0.0, 2.0);
    chart.height = 300.0;
    return chart;
}

const juce::StringArray firm { "compThreshold=-10", "compRatio=5:1" };

juce::StringArray firmWith (const juce::StringArray& more)
{
    auto settings = firm;
    settings.addArray (more);
    return settings;
}

Chart plotAttack (StripUnderTest& strip)
{
    auto chart = timeChart ("Attack", "Time since the loud passage began", 1.0, -12.0);
    const auto attacks = positionsOf ("compAttack");

    for (std::size_t a = 0; a < countOf (attacks); ++a)
    {
        const auto& name = attacks[static_cast<int> (a)];
        constexpr double seconds = 1.0;
        const auto points =
            after (gainSinceBegin (strip, firmWith ({ switchAt ("compAttack", a), "compRelease=400 ms" }), seconds),
                   firstTime);
        const auto settled = points.back().y;
        printFigure ("attack " + name + ": within a tenth of " + juce::String (settled, 1) + " dB after",
                     lastTimeFarFrom (points, settled, shareLeft * std::abs (settled)) * millisecondsPerSecond, "ms");
        chart.curves.push_back ({ name, thinnedOverLogTime (points, firstTime), shadeOf (a, countOf (attacks)) });
    }

    return chart;
}

Chart plotRelease (StripUnderTest& strip)
{
    auto chart = timeChart ("Release, after a second", "Time since the loud passage ended", 10.0, -12.0);
    const auto releases = positionsOf ("compRelease");

    for (std::size_t r = 0; r < countOf (releases); ++r)
    {
        const auto& name = releases[static_cast<int> (r)];
        constexpr double seconds = 1.0;
        const auto points = after (
            gainSinceEnd (strip, firmWith ({ "compAttack=Medium", switchAt ("compRelease", r) }), seconds), firstTime);
        const auto settled = points.back().y, start = points.front().y;
        printFigure ("release " + name + ": nine tenths of " + juce::String (settled - start, 1) + " dB back after",
                     lastTimeFarFrom (points, settled, shareLeft * (settled - start)) * millisecondsPerSecond, "ms", 0);
        const auto isAuto = r + 1 == countOf (releases);
        chart.curves.push_back ({ name, thinnedOverLogTime (points, firstTime),
                                  isAuto ? shade (0.7) : shadeOf (r, countOf (releases) - 1), isAuto });
    }

    return chart;
}

/** What is left of the reduction, so that short and long peaks compare. */
std::vector<Point> shareOfReduction (const std::vector<Point>& gain)
{
    auto share = thinnedOverLogTime (gain, firstTime);
    const auto start = share.front().y, end = share.back().y;
    constexpr double perCent = 100.0;

    for (auto& point : share)
        point.y = perCent * (point.y - end) / (start - end);

    return share;
}

Chart plotAuto (StripUnderTest& strip)
{
    auto chart = timeChart ("AUTO after peaks of four lengths", "Time since the peak ended", 10.0, -12.0);
    chart.y = Axis::linear ("Reduction left / %", 0.0, 100.0, 20.0);
    constexpr double lengths[] = { 0.005, 0.05, 0.5, 5.0 };

    for (const auto* const release : { "AUTO", "200 ms" })
        for (std::size_t i = 0; i < std::size (lengths); ++i)
        {
            const auto isAuto = juce::String (release) == "AUTO";
            auto points = shareOfReduction (gainSinceEnd (
                strip, firmWith ({ "compAttack=Fast", "compRelease=" + juce::String (release) }), lengths[i]));
            const auto ms = juce::String (juce::roundToInt (lengths[i] * millisecondsPerSecond)) + " ms";
            constexpr double perCentLeft = 10.0;
            printFigure (juce::String (release) + " after a peak of " + ms + ": nine tenths back after",
                         lastTimeFarFrom (points, 0.0, perCentLeft) * millisecondsPerSecond, "ms", 0);
            chart.curves.push_back ({ isAuto ? ms : juce::String(), std::move (points),
                                      shadeOf (i, std::size (lengths)), ! isAuto, false, isAuto ? 1.8 : 1.0 });
        }

    chart.curves.push_back ({ "at 200 ms", {}, shade (0.5), true });
    return chart;
}

Chart plotLimiter (StripUnderTest& strip)
{
    Chart chart;
    chart.heading = "Limiter at 0 dBFS, ratio 1:1";
    chart.x = Axis::linear ("Time / ms", -50.0, 250.0, 50.0);
    chart.y = Axis::linear ("Gain / dB", -8.0, 2.0, 2.0);
    chart.height = 300.0;
    constexpr double loudSeconds = 0.1;
    const auto tone = makeTone (timingToneHz, rateHz, { { -20.0, quietBefore }, { 0.0, loudSeconds }, { -20.0, 0.2 } });
    strip.set (dynamicsWith ({ "compRatio=1:1", "compLimit=on" }));
    auto points = gainOverTime (tone, strip.run (tone), timingToneHz, rateHz, quietBefore);
    const auto lowestDb = lowest (points).y;
    printFigure ("limiter at 0 dBFS: lowest gain", lowestDb, "dB");

    for (auto& point : points)
        point.x *= millisecondsPerSecond;

    const auto half =
        std::find_if (points.begin(), points.end(), [lowestDb] (Point p) { return p.y < lowestDb / 2.0; });
    printFigure ("limiter at 0 dBFS: half of that after", half->x, "ms");

    points.erase (std::remove_if (points.begin(), points.end(), [&chart] (Point p) { return p.x < chart.x.start; }),
                  points.end());
    chart.curves.push_back ({ {}, std::move (points), shade (1.0) });
    return chart;
}

Picture plotTimes (StripUnderTest& strip)
{
    Picture picture {
        "compressor-times",
        "Compressor and limiter: gain over time",
        { "A tone of 2 kHz that jumps from -40 to -4 dBFS and back; ratio 5:1, threshold -10 dB. AUTO stands"
          " beside 200 ms (dashed), which",
          "has the same discharging resistor. The limiter's tone jumps from -20 to 0 dBFS for 100 ms.", howMeasured }
    };
    picture.numColumns = 2;
    picture.charts = { plotAttack (strip), plotRelease (strip), plotAuto (strip), plotLimiter (strip) };
    return picture;
}
} // namespace

Pictures plotCompressor (const juce::File& bundle)
{
    StripUnderTest strip (bundle, rateHz, factor);
    return { plotTransfer (strip), plotTimes (strip) };
}

} // namespace tarvik::plot
