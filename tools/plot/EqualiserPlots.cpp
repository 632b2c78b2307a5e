// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/plot/Plots.h"

#include <algorithm>

namespace tarvik::plot
{

namespace
{
constexpr double rateHz = 48000.0;
constexpr int factor = 2;
constexpr double lowestHz = 10.0, highestHz = 20000.0;
constexpr double highestOfLowHz = 2000.0;
constexpr int pointsPerCurve = 601;

const juce::StringArray howMeasured {
    "Measured by an impulse through the running module at 48 kHz with twofold oversampling, noise off, divided by the",
    "response with the equaliser out: the saturation's own filters and those of the oversampling are not in the curves."
};

juce::StringArray caption (const juce::StringArray& first)
{
    auto lines = first;
    lines.addArray (howMeasured);
    return lines;
}

Chart chartOver (const juce::String& heading, double lowestDb, double highestDb, double stepDb, double fromHz,
                 double toHz = highestHz)
{
    Chart chart;
    chart.heading = heading;
    chart.x = Axis::frequency (fromHz, toHz);
    chart.y = Axis::linear ("Gain / dB", lowestDb, highestDb, stepDb);
    return chart;
}

//==============================================================================
Picture plotHigh (ResponseBench& bench)
{
    Picture picture { "eq-high", "High section: eleven positions at each frequency",
                      caption ({ "The switch moves from -10 dB (lightest) to 10 dB (darkest)." }) };
    const auto gains = positionsOf ("highGain");
    const auto frequencies = positionsOf ("highFreq");

    for (std::size_t f = 0; f < static_cast<std::size_t> (frequencies.size()); ++f)
    {
        const auto& name = frequencies[static_cast<int> (f)];
        auto chart = chartOver (name, -20.0, 15.0, 5.0, 200.0);

        for (std::size_t g = 0; g < static_cast<std::size_t> (gains.size()); ++g)
        {
            auto points = bench.measure ({ switchAt ("highFreq", f), switchAt ("highGain", g) });
            const auto& gain = gains[static_cast<int> (g)];
            printFigure ("high " + name + ", " + gain + ": at 20 kHz", points.back().y, "dB");
            chart.curves.push_back ({ gain, std::move (points), shadeOf (g, static_cast<std::size_t> (gains.size())) });
        }

        picture.charts.push_back (std::move (chart));
    }

    return picture;
}

Chart plotMidFrequencies (ResponseBench& bench, const juce::String& mode, double lowestDb, double highestDb)
{
    auto chart = chartOver (mode + ", fully up", lowestDb, highestDb, 5.0, 100.0);
    const auto frequencies = positionsOf ("midFreq");

    for (std::size_t f = 0; f < static_cast<std::size_t> (frequencies.size()); ++f)
    {
        const auto& name = frequencies[static_cast<int> (f)];
        auto points = bench.measure ({ switchAt ("midFreq", f), "midMode=" + mode, knobAt ("midGain", 1.0) });
        const auto isBoost = mode == "Boost";
        const auto resonance = isBoost ? highest (points) : lowest (points);
        printFigure ("mid " + mode.toLowerCase() + " " + name + ": at " + juce::String (juce::roundToInt (resonance.x))
                         + " Hz",
                     resonance.y, "dB");
        chart.curves.push_back (
            { name, std::move (points), shadeOf (f, static_cast<std::size_t> (frequencies.size())) });
    }

    return chart;
}

Chart plotMidPot (ResponseBench& bench)
{
    auto chart = chartOver ("2000 Hz, the potentiometer in five places", -20.0, 20.0, 5.0, 100.0);
    constexpr double places[] = { 0.0, 0.25, 0.5, 0.75, 1.0 };

    for (const auto* const mode : { "Cut", "Boost" })
        for (std::size_t p = 0; p < std::size (places); ++p)
            chart.curves.push_back ({ juce::String (mode) + " " + juce::String (places[p], 2),
                                      bench.measure ({ "midFreq=2000 Hz", "midMode=" + juce::String (mode),
                                                       knobAt ("midGain", places[p]) }),
                                      shadeOf (p, std::size (places)), juce::String (mode) == "Cut" });

    for (std::size_t p = 0; p < std::size (places); ++p)
    {
        const auto place = " 2000 Hz at " + juce::String (places[p], 2) + ": ";
        printFigure ("cut" + place + "lowest", lowest (chart.curves[p].points).y, "dB");
        printFigure ("boost" + place + "highest", highest (chart.curves[p + std::size (places)].points).y, "dB");
    }

    printFigure ("mid at 0, Boost over Cut",
                 chart.curves[std::size (places)].points.front().y - chart.curves.front().points.front().y, "dB", 3);
    return chart;
}

Picture plotMid (ResponseBench& bench)
{
    Picture picture { "eq-mid", "Mid section: boost, cut, and the way of the potentiometer",
                      caption ({ "The frequency switch moves from 700 Hz (lightest) to 6000 Hz (darkest)." }) };
    picture.charts.push_back (plotMidFrequencies (bench, "Boost", -5.0, 20.0));
    picture.charts.push_back (plotMidFrequencies (bench, "Cut", -25.0, 5.0));
    picture.charts.push_back (plotMidPot (bench));
    return picture;
}

//==============================================================================
Chart plotHighPass (ResponseBench& bench)
{
    auto chart = chartOver ("High pass", -30.0, 5.0, 5.0, lowestHz, highestOfLowHz);
    const auto positions = positionsOf ("highPass");

    for (std::size_t i = 0; i < static_cast<std::size_t> (positions.size()); ++i)
    {
        const auto& name = positions[static_cast<int> (i)];
        auto points = bench.measure ({ switchAt ("highPass", i) });

        if (i > 0)
        {
            constexpr double cornerDb = -3.0;
            const auto corner = std::find_if (points.begin(), points.end(), [] (Point p) { return p.y > cornerDb; });
            printFigure ("high pass " + name + ": -3 dB at", corner->x, "Hz", 1);
        }

        chart.curves.push_back ({ name, std::move (points), shadeOf (i, static_cast<std::size_t> (positions.size())) });
    }

    return chart;
}

Picture plotLow (ResponseBench& bench)
{
    Picture picture { "eq-low", "Low section: four boosts, six cuts; and the high pass",
                      caption ({ "Boost with the potentiometer at 1, 0.75, 0.5 and 0.25 (lighter the lower)." }) };
    constexpr std::size_t numBoosts = 4;
    constexpr double places[] = { 0.25, 0.5, 0.75, 1.0 };
    const auto positions = positionsOf ("lowFreq");

    for (std::size_t f = 0; f < numBoosts; ++f)
    {
        const auto& name = positions[static_cast<int> (f)];
        auto chart = chartOver ("Boost, " + name, -5.0, 20.0, 5.0, lowestHz, highestOfLowHz);

        for (std::size_t p = 0; p < std::size (places); ++p)
        {
            auto points = bench.measure ({ switchAt ("lowFreq", f), knobAt ("lowGain", places[p]) });
            const auto peak = highest (points);

            if (p + 1 == std::size (places))
                printFigure ("low boost " + name + ": at " + juce::String (juce::roundToInt (peak.x)) + " Hz", peak.y,
                             "dB");

            chart.curves.push_back (
                { juce::String (places[p], 2), std::move (points), shadeOf (p, std::size (places)) });
        }

        picture.charts.push_back (std::move (chart));
    }

    auto cuts = chartOver ("The six cuts", -30.0, 5.0, 5.0, lowestHz, highestOfLowHz);
    const auto numCuts = static_cast<std::size_t> (positions.size()) - numBoosts;

    for (std::size_t f = 0; f < numCuts; ++f)
    {
        const auto& name = positions[static_cast<int> (f + numBoosts)];
        auto points = bench.measure ({ switchAt ("lowFreq", f + numBoosts) });
        constexpr double fiftyHz = 50.0;
        const auto place = std::find_if (points.begin(), points.end(), [] (Point p) { return p.x >= fiftyHz; });
        printFigure ("low cut " + name + ": at " + juce::String (juce::roundToInt (place->x)) + " Hz", place->y, "dB");
        cuts.curves.push_back ({ name, std::move (points), shadeOf (f, numCuts) });
    }

    picture.charts.push_back (std::move (cuts));
    picture.charts.push_back (plotHighPass (bench));
    picture.numColumns = 2;
    return picture;
}

Picture plotChannels (ResponseBench& bench)
{
    Picture picture { "eq-channels", "One setting on the console's 32 channels",
                      caption ({ "Low boost at 60 Hz and mid boost at 2000 Hz fully up, high boost of 8 dB at 10 kHz,"
                                 " high pass at 40 Hz. Channel 1,",
                                 "with the nominal parts, is drawn dark; below, the others against it." }) };
    const juce::StringArray bold { "lowFreq=60 Hz", knobAt ("lowGain", 1.0), "midFreq=2000 Hz", knobAt ("midGain", 1.0),
                                   "midMode=Boost", "highFreq=10 kHz",       "highGain=8 dB",   "highPass=40 Hz" };
    constexpr int numChannels = 32;
    auto chart = chartOver ("Response", -5.0, 20.0, 5.0, lowestHz);
    auto differences = chartOver ("Difference from channel 1", -1.5, 1.5, 0.5, lowestHz);
    double largest = 0.0;
    std::vector<Curve> all;

    for (int c = 0; c < numChannels; ++c)
    {
        auto points = bench.measure (bold, { "TolChannel=" + juce::String (c + 1) });
        all.push_back ({ {},
                         std::move (points),
                         shade (c == 0 ? 1.0 : 0.15 + 0.4 * c / numChannels),
                         false,
                         false,
                         c == 0 ? 1.8 : 0.8 });
    }

    for (std::size_t c = all.size(); c-- > 0;)
    {
        auto difference = all[c];

        for (std::size_t i = 0; i < difference.points.size(); ++i)
        {
            difference.points[i].y -= all.front().points[i].y;
            largest = std::max (largest, std::abs (difference.points[i].y));
        }

        differences.curves.push_back (std::move (difference));
        chart.curves.push_back (all[c]); // the nominal one last, on top
    }

    printFigure ("channels: farthest from channel 1", largest, "dB");
    picture.charts.push_back (std::move (chart));
    picture.charts.push_back (std::move (differences));
    return picture;
}
} // namespace

Pictures plotEqualiser (const juce::File& bundle)
{
    StripUnderTest strip (bundle, rateHz, factor);
    ResponseBench bench (strip, logarithmicSteps (lowestHz, highestHz, pointsPerCurve));
    return { plotHigh (bench), plotMid (bench), plotLow (bench), plotChannels (bench) };
}

} // namespace tarvik::plot
