// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/plot/BandLevels.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

namespace tarvik::plot
{

namespace
{
/** Long enough for a few lines within the lowest band, which is 6 Hz wide. */
constexpr double leastSecondsPerPiece = 0.5;

/** With four of them over every sample, the squares of Hann's window add up to a constant. */
constexpr std::size_t piecesOverASample = 4;
constexpr double sumOfSquaredWindows = 1.5;

/** Centres of the bands are 1000 Hz times a whole power of 10^0.1. */
constexpr int lowestBand = -16, highestBand = 13;
constexpr double bandsPerDecade = 10.0;

double bandHz (double band) { return 1000.0 * std::pow (10.0, band / bandsPerDecade); }

int orderFor (double sampleRate)
{
    constexpr double shortest = 2.0, longest = 1 << 18;
    return static_cast<int> (std::ceil (std::log2 (std::clamp (sampleRate * leastSecondsPerPiece, shortest, longest))));
}
} // namespace

BandLevels::BandLevels (double sampleRate)
    : rate (sampleRate), transform (orderFor (sampleRate)), length (static_cast<std::size_t> (transform.getSize())),
      hop (length / piecesOverASample), window (length), piece (length), spectrum (2 * length), power (length / 2 + 1)
{
    for (std::size_t i = 0; i < length; ++i)
        window[i] = static_cast<float> (
            0.5 - 0.5 * std::cos (2.0 * std::numbers::pi * static_cast<double> (i) / static_cast<double> (length)));
}

void BandLevels::add (const float* samples, int numSamples)
{
    numAdded += numSamples;

    for (int i = 0; i < numSamples; ++i)
    {
        constexpr float highest = 1e6f; // whose powers still fit
        piece[length - hop + numPending] =
            std::isfinite (samples[i]) ? std::clamp (samples[i], -highest, highest) : 0.0f;

        if (++numPending == hop)
            addPiece();
    }
}

void BandLevels::finish()
{
    const auto numSamples = numAdded;
    const std::vector<float> silence (hop);

    for (std::size_t i = 0; i < piecesOverASample; ++i)
        add (silence.data(), static_cast<int> (hop));

    numAdded = numSamples;
}

void BandLevels::addPiece()
{
    std::transform (piece.begin(), piece.end(), window.begin(), spectrum.begin(), std::multiplies<>());
    std::fill (spectrum.begin() + static_cast<std::ptrdiff_t> (length), spectrum.end(), 0.0f);
    transform.performFrequencyOnlyForwardTransform (spectrum.data());

    for (std::size_t k = 0; k < power.size(); ++k)
        power[k] += static_cast<double> (spectrum[k]) * static_cast<double> (spectrum[k]);

    std::copy (piece.begin() + static_cast<std::ptrdiff_t> (hop), piece.end(), piece.begin());
    numPending = 0;
}

std::vector<Point> BandLevels::powers() const
{
    // By Parseval's theorem; the negative frequencies count as much as the others.
    const auto samples = static_cast<double> (length);
    const auto scale =
        2.0 / (samples * sumOfSquaredWindows * static_cast<double> (std::max<juce::int64> (1, numAdded)));
    const auto lineHz = rate / samples;
    std::vector<Point> points;

    for (auto band = lowestBand; band <= highestBand && bandHz (band + 0.5) <= rate / 2.0; ++band)
    {
        // Each line is as wide as its distance from the next one.
        const auto low = bandHz (band - 0.5) / lineHz, high = bandHz (band + 0.5) / lineHz;
        double sum = 0.0;

        for (auto k = static_cast<std::size_t> (low); k < power.size() && static_cast<double> (k) < high + 0.5; ++k)
        {
            const auto line = static_cast<double> (k);
            const auto share = std::min (line + 0.5, high) - std::max (line - 0.5, low);
            sum += std::max (0.0, share) * power[k];
        }

        points.push_back ({ bandHz (band), scale * sum });
    }

    return points;
}

} // namespace tarvik::plot
