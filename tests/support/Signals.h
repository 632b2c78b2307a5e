// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

namespace tarvik::test
{

using Signal = std::vector<float>;

inline Signal sine (double hz, double level, double rateHz, double seconds)
{
    Signal signal (static_cast<std::size_t> (std::lround (seconds * rateHz)));

    for (std::size_t i = 0; i < signal.size(); ++i)
        signal[i] =
            static_cast<float> (level * std::sin (2.0 * std::numbers::pi * hz / rateHz * static_cast<double> (i)));

    return signal;
}

inline Signal noise (int numSamples, std::uint_fast32_t seed, float level = 1.0f)
{
    std::mt19937 random (seed);
    std::uniform_real_distribution<float> uniform (-level, level);
    Signal signal (static_cast<std::size_t> (numSamples));

    for (auto& sample : signal)
        sample = uniform (random);

    return signal;
}

/** The spectrum of a signal at one frequency. */
inline std::complex<double> spectrumAt (const Signal& signal, double radiansPerSample)
{
    const auto turn = std::polar (1.0, -radiansPerSample);
    std::complex<double> phase = 1.0, sum = 0.0;

    for (const auto sample : signal)
    {
        sum += static_cast<double> (sample) * phase;
        phase *= turn;
    }

    return sum;
}

/** The level of the last samples of a signal. */
inline double rmsOfEnd (const Signal& signal, std::size_t lastSamples)
{
    double sum = 0.0;

    for (auto i = signal.size() - lastSamples; i < signal.size(); ++i)
        sum += static_cast<double> (signal[i]) * static_cast<double> (signal[i]);

    return std::sqrt (sum / static_cast<double> (lastSamples));
}

/** Calls function (begin, length) for one piece after the other, of the given lengths in turn, up to the total. */
template <typename Function>
void inPieces (std::size_t total, const std::vector<int>& lengths, Function function)
{
    for (std::size_t begin = 0, piece = 0; begin < total; ++piece)
    {
        const auto n = std::min (static_cast<std::size_t> (lengths[piece % lengths.size()]), total - begin);
        function (begin, static_cast<int> (n));
        begin += n;
    }
}

inline bool allFinite (const Signal& signal)
{
    return std::all_of (signal.begin(), signal.end(), [] (float x) { return std::isfinite (x); });
}

} // namespace tarvik::test
