// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/plot/Measurements.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace tarvik::plot
{

namespace
{
constexpr double dbPerDecade = 20.0;
constexpr double twoPi = 2.0 * std::numbers::pi;
} // namespace

double decibels (double gain) noexcept { return dbPerDecade * std::log10 (gain); }

double gainOf (double db) noexcept { return std::pow (10.0, db / dbPerDecade); }

std::vector<double> logarithmicSteps (double start, double end, int count)
{
    std::vector<double> steps;

    for (int i = 0; i < count; ++i)
        steps.push_back (start * std::pow (end / start, i / (count - 1.0)));

    return steps;
}

std::vector<std::complex<double>> spectrumAt (std::span<const float> samples, std::span<const double> radians)
{
    // Horner's rule from the last sample on, for a few frequencies side by side, which the compiler makes vectors of.
    constexpr std::size_t atOnce = 8;
    using Lanes = std::array<double, atOnce>;
    std::vector<std::complex<double>> sums;

    for (std::size_t first = 0; first < radians.size(); first += atOnce)
    {
        const auto count = std::min (atOnce, radians.size() - first);
        Lanes stepRe {}, stepIm {}, sumRe {}, sumIm {};

        for (std::size_t k = 0; k < count; ++k)
        {
            stepRe[k] = std::cos (radians[first + k]);
            stepIm[k] = -std::sin (radians[first + k]);
        }

        for (auto i = samples.size(); i-- > 0;)
            for (std::size_t k = 0; k < atOnce; ++k)
            {
                const auto re = sumRe[k] * stepRe[k] - sumIm[k] * stepIm[k] + static_cast<double> (samples[i]);
                sumIm[k] = sumRe[k] * stepIm[k] + sumIm[k] * stepRe[k];
                sumRe[k] = re;
            }

        for (std::size_t k = 0; k < count; ++k)
            sums.emplace_back (sumRe[k], sumIm[k]);
    }

    return sums;
}

//==============================================================================
ResponseBench::ResponseBench (StripUnderTest& stripUnderTest, std::vector<double> frequencies)
    : strip (stripUnderTest), hz (std::move (frequencies)), radians (hz)
{
    for (auto& angle : radians)
        angle *= twoPi / strip.rateHz();
}

std::vector<std::complex<double>> ResponseBench::spectrum (const juce::StringArray& settings)
{
    // Before the impulse, room for the oversampling's filters, which ring in front of it too; behind it, time for the
    // slowest response. The impulse stays far below the level at which harmonics rise; half the difference between it
    // and its mirror image is free of even powers, and of the small constant that the saturation makes of silence.
    constexpr std::size_t before = 256;
    constexpr double secondsBehind = 2.0;
    constexpr float impulse = 1.0f / 1024.0f;

    Samples input (before + static_cast<std::size_t> (secondsBehind * strip.rateHz()));
    strip.set (settings);
    input[before] = impulse;
    auto response = strip.run (input);
    input[before] = -impulse;
    const auto mirrored = strip.run (input);

    for (std::size_t i = 0; i < response.size(); ++i)
        response[i] = (response[i] - mirrored[i]) / 2.0f;

    return spectrumAt (response, radians);
}

std::vector<double> ResponseBench::measureDb (const juce::StringArray& settings, const juce::StringArray& common)
{
    if (reference.empty() || referenceSettings != common)
    {
        reference = spectrum (common);
        referenceSettings = common;
    }

    juce::StringArray all ("equalizer=on");
    all.addArray (common);
    all.addArray (settings);
    const auto values = spectrum (all);
    std::vector<double> db;

    for (std::size_t i = 0; i < values.size(); ++i)
        db.push_back (decibels (std::abs (values[i]) / std::abs (reference[i])));

    return db;
}

std::vector<Point> ResponseBench::measure (const juce::StringArray& settings, const juce::StringArray& common)
{
    const auto db = measureDb (settings, common);
    std::vector<Point> points;

    for (std::size_t i = 0; i < db.size(); ++i)
        points.push_back ({ hz[i], db[i] });

    return points;
}

//==============================================================================
Samples makeTone (double frequencyHz, double sampleRate, const std::vector<ToneStep>& steps)
{
    Samples tone;

    for (const auto& step : steps)
    {
        const auto amplitude = gainOf (step.levelDb);
        const auto end = tone.size() + static_cast<std::size_t> (std::llround (step.seconds * sampleRate));

        while (tone.size() < end)
            tone.push_back (static_cast<float> (
                amplitude * std::sin (twoPi * frequencyHz * static_cast<double> (tone.size()) / sampleRate)));
    }

    return tone;
}

double toneAmplitude (std::span<const float> samples, double radiansPerSample)
{
    return 2.0 * std::abs (spectrumAt (samples, { &radiansPerSample, 1 }).front())
           / static_cast<double> (samples.size());
}

std::vector<Point> gainOverTime (const Samples& in, const Samples& out, double frequencyHz, double sampleRate,
                                 double startSeconds)
{
    const auto period = static_cast<std::size_t> (std::llround (sampleRate / frequencyHz));
    const auto radians = twoPi / static_cast<double> (period);
    std::vector<Point> points;

    for (std::size_t i = 0; i + period <= in.size(); i += period)
    {
        const auto middle = static_cast<double> (i) + static_cast<double> (period) / 2.0;
        points.push_back ({ middle / sampleRate - startSeconds,
                            decibels (toneAmplitude (std::span (out).subspan (i, period), radians)
                                      / toneAmplitude (std::span (in).subspan (i, period), radians)) });
    }

    return points;
}

std::vector<Point> thinnedOverLogTime (const std::vector<Point>& points, double start)
{
    constexpr double ratio = 1.02;
    std::vector<Point> kept;

    for (const auto& point : points)
        if (point.x >= start && (kept.empty() || point.x >= ratio * kept.back().x))
            kept.push_back (point);

    return kept;
}

double lastTimeFarFrom (const std::vector<Point>& points, double value, double distance)
{
    double last = 0.0;

    for (const auto& point : points)
        if (std::abs (point.y - value) > distance)
            last = std::max (last, point.x);

    return last;
}

std::vector<Point> transferCurve (StripUnderTest& strip, double lowestDb)
{
    constexpr double frequencyHz = 1000.0, stepDb = 2.0, secondsPerStep = 1.0;
    std::vector<ToneStep> steps;

    for (auto level = lowestDb; level <= 0.0; level += stepDb)
        steps.push_back ({ level, secondsPerStep });

    const auto rate = strip.rateHz();
    const auto out = strip.run (makeTone (frequencyHz, rate, steps));
    const auto stepSamples = std::llround (secondsPerStep * rate);
    const auto period = std::llround (rate / frequencyHz);
    constexpr long long shareMeasured = 5;
    const auto window = stepSamples / shareMeasured / period * period;
    std::vector<Point> points;

    for (std::size_t i = 0; i < steps.size(); ++i)
    {
        const auto end = static_cast<long long> (i + 1) * stepSamples;
        const auto last =
            std::span (out).subspan (static_cast<std::size_t> (end - window), static_cast<std::size_t> (window));
        points.push_back ({ steps[i].levelDb, decibels (toneAmplitude (last, twoPi * frequencyHz / rate)) });
    }

    return points;
}

Chart transferChart (const juce::String& heading, double lowestInDb, double lowestOutDb)
{
    constexpr double stepDb = 10.0;
    Chart chart;
    chart.heading = heading;
    chart.x = Axis::linear ("Level in / dBFS", lowestInDb, 0.0, stepDb);
    chart.y = Axis::linear ("Level out / dBFS", lowestOutDb, 0.0, stepDb);
    chart.height = 330.0;
    return chart;
}

} // namespace tarvik::plot
