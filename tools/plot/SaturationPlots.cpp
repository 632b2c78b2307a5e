// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/HarmonicTable.h"
#include "tools/plot/Plots.h"

#include <algorithm>
#include <array>
#include <numbers>

namespace tarvik::plot
{

namespace
{
constexpr double rateHz = 48000.0;
constexpr int factor = 2;
constexpr double toneHz = 200.0;
constexpr int lowestDb = -38, highestDb = 3;
constexpr std::size_t numHarmonics = 6;

/** From 10 dB above on downwards, the last digits of the 32-bit samples are seen rather than the strip. */
constexpr double lowestShownDb = -160.0;

/** The amplitudes of the 2nd to the 7th harmonic for each level from lowestDb on. */
using Harmonics = std::vector<std::array<double, numHarmonics>>;

Harmonics measureHarmonics (StripUnderTest& strip, double thdDb)
{
    constexpr double secondsPerStep = 1.0, secondsMeasured = 0.5;
    std::vector<ToneStep> steps;

    for (auto level = lowestDb; level <= highestDb; ++level)
        steps.push_back ({ static_cast<double> (level), secondsPerStep });

    strip.set ({ "thd=" + juce::String (thdDb) });
    const auto out = strip.run (makeTone (toneHz, rateHz, steps));
    constexpr auto stepSamples = static_cast<std::size_t> (secondsPerStep * rateHz);
    constexpr auto window = static_cast<std::size_t> (secondsMeasured * rateHz);
    Harmonics harmonics (steps.size());

    for (std::size_t i = 0; i < steps.size(); ++i)
        for (std::size_t h = 0; h < numHarmonics; ++h)
        {
            const auto hz = toneHz * static_cast<double> (h + HarmonicTable::firstHarmonic);
            const auto last = std::span (out).subspan ((i + 1) * stepSamples - window, window);
            harmonics[i][h] = toneAmplitude (last, 2.0 * std::numbers::pi * hz / rateHz);
        }

    return harmonics;
}

double tableLevelDb (std::size_t row)
{
    return HarmonicTable::highestDb - HarmonicTable::dbPerRow * static_cast<double> (row);
}

/** The farthest that a harmonic is from the table's, in its rows, in per cent of the row's 2nd harmonic. */
double largestDeviation (const Harmonics& measured)
{
    constexpr double perCent = 100.0;
    double largest = 0.0;

    for (std::size_t r = 0; r < HarmonicTable::numRows; ++r)
    {
        const auto& row = HarmonicTable::rows[r];
        const auto index = static_cast<std::size_t> (juce::roundToInt (tableLevelDb (r)) - lowestDb);

        for (std::size_t h = 0; h < numHarmonics; ++h)
        {
            const auto wanted = std::abs (static_cast<double> (row.harmonics[h]));
            const auto second = std::abs (static_cast<double> (row.harmonics[0]));
            largest = std::max (largest, perCent * std::abs (measured[index][h] - wanted) / second);
        }
    }

    return largest;
}

Chart plotAt (StripUnderTest& strip, int thdDb)
{
    Chart chart;
    chart.heading = "THD " + juce::String (thdDb) + " dB";
    chart.x = Axis::linear ("Level of the tone / dBFS", -40.0, 5.0, 5.0);
    chart.y = Axis::linear ("Level of the harmonic / dBFS", lowestShownDb, thdDb < 0 ? -100.0 : -20.0,
                            thdDb < 0 ? 10.0 : 20.0);
    chart.height = thdDb < 0 ? 200.0 : 320.0;
    const auto measured = measureHarmonics (strip, thdDb);

    for (std::size_t h = 0; h < numHarmonics; ++h)
    {
        const auto number = h + HarmonicTable::firstHarmonic;
        const auto isOdd = number % 2 != 0;
        Curve curve { juce::String (number)
                          + (isOdd && number == 3 ? "rd"
                             : number == 2        ? "nd"
                                                  : "th"),
                      {},
                      shadeOf (h / 2, numHarmonics / 2),
                      isOdd };

        for (std::size_t i = 0; i < measured.size(); ++i)
            curve.points.push_back (
                { static_cast<double> (lowestDb) + static_cast<double> (i), decibels (measured[i][h]) });

        printFigure ("THD " + juce::String (thdDb) + " dB, -2 dBFS: harmonic " + juce::String (number),
                     decibels (measured[static_cast<std::size_t> (-2 - lowestDb)][h]), "dBFS", 1);
        chart.curves.push_back (std::move (curve));
    }

    if (thdDb == 0)
    {
        printFigure ("THD 0 dB: farthest from the table, in shares of h2", largestDeviation (measured), "%", 3);

        for (std::size_t h = 0; h < numHarmonics; ++h)
        {
            Curve dots { h == 0 ? "table" : "", {}, shadeOf (h / 2, numHarmonics / 2), false, true };

            for (std::size_t r = 0; r < HarmonicTable::numRows; ++r)
                dots.points.push_back (
                    { tableLevelDb (r),
                      decibels (std::abs (static_cast<double> (HarmonicTable::rows[r].harmonics[h]))) });

            chart.curves.push_back (std::move (dots));
        }
    }

    return chart;
}
} // namespace

Pictures plotSaturation (const juce::File& bundle)
{
    StripUnderTest strip (bundle, rateHz, factor);
    Picture picture {
        "saturation-harmonics",
        "Saturation: harmonics over the level of a tone",
        { "A tone of 200 Hz that climbs in steps of 1 dB, even harmonics in full lines, odd ones dashed. The"
          " dots are the table's values. Below",
          "-150 dBFS the last digits of the 32-bit samples begin to be seen.",
          "Measured through the running module at 48 kHz with twofold oversampling, calibration 18 dB, noise"
          " off, equaliser and dynamics out." }
    };

    for (const auto thdDb : { 0, -30, 20 })
        picture.charts.push_back (plotAt (strip, thdDb));

    return { picture };
}

} // namespace tarvik::plot
