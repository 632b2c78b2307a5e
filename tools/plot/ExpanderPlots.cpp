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
constexpr double lowestInDb = -70.0, lowestOutDb = -90.0;

/** The compressor stands aside at 1:1. */
juce::StringArray expanderWith (const juce::StringArray& more)
{
    juce::StringArray settings ("compIn=on", "compRatio=1:1");
    settings.addArray (more);
    return settings;
}

//==============================================================================
Curve measureTransfer (StripUnderTest& strip, const juce::String& label, const juce::StringArray& settings,
                       const juce::String& colour)
{
    auto all = expanderWith (settings);
    all.add ("expRelease=0.1");
    strip.set (all);
    return { label, transferCurve (strip, lowestInDb), colour };
}

Chart plotThresholds (StripUnderTest& strip, const juce::String& mode)
{
    auto chart = transferChart (mode + ", by threshold", lowestInDb, lowestOutDb);
    const juce::StringArray thresholds { "-40", "-30", "-20", "-10", "0" };

    for (std::size_t t = 0; t < countOf (thresholds); ++t)
    {
        const auto& threshold = thresholds[static_cast<int> (t)];
        chart.curves.push_back (measureTransfer (strip, threshold + " dB",
                                                 { "expMode=" + mode, "expThreshold=" + threshold },
                                                 shadeOf (t, countOf (thresholds))));
        constexpr double changedByDb = 3.0;
        const auto& points = chart.curves.back().points;
        const auto open =
            std::find_if (points.begin(), points.end(), [] (Point p) { return std::abs (p.y - p.x) < changedByDb; });

        if (open != points.end())
            printFigure (mode.toLowerCase() + ", threshold " + threshold + " dB: within 3 dB of open from", open->x,
                         "dBFS", 0);
    }

    return chart;
}

Chart plotRanges (StripUnderTest& strip)
{
    auto chart = transferChart ("Expander at -20 dB, by range", lowestInDb, lowestOutDb);
    const juce::StringArray ranges { "0", "-5", "-10", "-20" };

    for (std::size_t r = 0; r < countOf (ranges); ++r)
    {
        const auto& range = ranges[static_cast<int> (r)];
        chart.curves.push_back (measureTransfer (strip, range + " dB",
                                                 { "expMode=Expander", "expThreshold=-20", "expRange=" + range },
                                                 shadeOf (r, countOf (ranges))));
        printFigure ("expander, range " + range + " dB: gain at -70 dBFS",
                     chart.curves.back().points.front().y - chart.curves.back().points.front().x, "dB");
    }

    auto inverted = measureTransfer (
        strip, "inverted", { "expMode=Expander", "expThreshold=-20", "expRange=-20", "expInverted=on" }, shade (0.6));
    inverted.isDashed = true;
    chart.curves.push_back (std::move (inverted));
    return chart;
}

//==============================================================================
Chart timeChart (const juce::String& heading, double fromMs, double toMs, double stepMs)
{
    Chart chart;
    chart.heading = heading;
    chart.x = Axis::linear ("Time / ms", fromMs, toMs, stepMs);
    chart.y = Axis::linear ("Gain / dB", -25.0, 5.0, 5.0);
    chart.height = 300.0;
    return chart;
}

/** Gain around the moment at which a tone jumps from one level to another, and after `secondsThere` back. */
std::vector<Point> measureJump (StripUnderTest& strip, const juce::StringArray& settings, double fromDb, double toDb,
                                double secondsThere, const Chart& chart)
{
    constexpr double secondsBefore = 2.0, secondsBehind = 3.0;
    const auto tone = makeTone (timingToneHz, rateHz,
                                { { fromDb, secondsBefore }, { toDb, secondsThere }, { fromDb, secondsBehind } });
    strip.set (expanderWith (settings));
    auto points = gainOverTime (tone, strip.run (tone), timingToneHz, rateHz, secondsBefore);

    for (auto& point : points)
        point.x *= millisecondsPerSecond;

    points.erase (std::remove_if (points.begin(), points.end(),
                                  [&chart] (Point p) { return p.x < chart.x.start || p.x > chart.x.end; }),
                  points.end());
    return points;
}

constexpr double loudDb = -10.0, quietDb = -60.0;

Chart plotClosing (StripUnderTest& strip)
{
    auto chart = timeChart ("Gate closing, by attack", -20.0, 100.0, 20.0);
    const auto attacks = positionsOf ("expAttack");
    const juce::StringArray gate { "expMode=Gate", "expThreshold=-20" };

    for (const auto* const hold : { "off", "on" })
        for (std::size_t a = 0; a < countOf (attacks); ++a)
        {
            const auto isHolding = juce::String (hold) == "on";
            auto settings = gate;
            settings.addArray ({ switchAt ("expAttack", a), "expHold=" + juce::String (hold) });
            auto points = measureJump (strip, settings, loudDb, quietDb, 1.0, chart);
            constexpr double halfClosedDb = -10.0;
            const auto half =
                std::find_if (points.begin(), points.end(), [] (Point p) { return p.x > 0.0 && p.y < halfClosedDb; });

            if (half != points.end())
                printFigure ("gate, attack " + attacks[static_cast<int> (a)] + ", hold " + hold
                                 + ": 10 dB closed after",
                             half->x, "ms", 1);

            chart.curves.push_back ({ isHolding ? juce::String() : attacks[static_cast<int> (a)], std::move (points),
                                      shadeOf (a, countOf (attacks)), isHolding });
        }

    chart.curves.push_back ({ "with hold", {}, shade (0.5), true });
    return chart;
}

Chart plotOpening (StripUnderTest& strip)
{
    auto chart = timeChart ("Gate opening, by release", -200.0, 1000.0, 200.0);
    const juce::StringArray releases { "0.025", "0.1", "0.3", "1.6" };

    for (std::size_t r = 0; r < countOf (releases); ++r)
    {
        const auto& release = releases[static_cast<int> (r)];
        auto points = measureJump (strip, { "expMode=Gate", "expThreshold=-20", "expRelease=" + release }, quietDb,
                                   loudDb, 2.0, chart);
        constexpr double nearlyOpenDb = -3.0;
        const auto open =
            std::find_if (points.begin(), points.end(), [] (Point p) { return p.x > 0.0 && p.y > nearlyOpenDb; });

        if (open != points.end())
            printFigure ("gate, release " + release + " s: within 3 dB of open after", open->x, "ms", 0);

        chart.curves.push_back ({ release + " s", std::move (points), shadeOf (r, countOf (releases)) });
    }

    return chart;
}
} // namespace

Pictures plotExpander (const juce::File& bundle)
{
    StripUnderTest strip (bundle, rateHz, factor);
    const juce::String howMeasured =
        "Measured through the running module at 48 kHz with twofold oversampling, noise and equaliser off.";
    Picture transfer { "expander-transfer",
                       "Expander and gate: level out over level in",
                       { "A steady tone of 1 kHz that climbs in steps of 2 dB, each held for a second; ratio 1:1, range"
                         " -20 dB unless told otherwise.",
                         howMeasured } };
    transfer.numColumns = 2;
    transfer.charts = { plotThresholds (strip, "Expander"), plotThresholds (strip, "Gate"), plotRanges (strip) };

    Picture times {
        "expander-times",
        "Gate: gain over time",
        { "A tone of 2 kHz that jumps between -10 and -60 dBFS at 0 ms; ratio 1:1, threshold -20 dB, range"
          " -20 dB. The detector",
          "is an RMS that has to fall by 50 dB first; with hold the gate follows it in steps of 10 ms. At 0 ms the"
          " oversampling's filters ring.",
          howMeasured }
    };
    times.numColumns = 2;
    times.charts = { plotClosing (strip), plotOpening (strip) };
    return { transfer, times };
}

} // namespace tarvik::plot
