// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <ctime>
#include <vector>

// Costs are told in units of Y, so that figures taken on different machines and days can be compared: Y is what six
// plain scalar biquads take per sample and channel, measured in the same run of the same program.
namespace tarvik::benchmarks
{
// Six sections in transposed direct form II, 64-bit state, 32-bit samples, stereo; section after section over the
// block, both channels of a sample in parallel. Deliberately nothing cleverer than that.
class Yardstick
{
public:
    Yardstick()
    {
        constexpr double lowestRadians = 0.01, octavesApart = 1.4, bandwidthSine = 0.7, amplitude = 1.2;

        // Bells that boost and cut alternately: A = sqrt of the centre's gain, H(s) = (s^2 + s A / Q + 1) / (s^2 + s / (A
        // Q) + 1), by the bilinear transform with the centre held.
        for (std::size_t i = 0; i < sections.size(); ++i)
        {
            const auto radians = lowestRadians * std::exp2 (octavesApart * static_cast<double> (i));
            const auto alpha = std::sin (radians) * bandwidthSine;
            const auto a = i % 2 == 0 ? amplitude : 1.0 / amplitude;
            const auto a0 = 1.0 + alpha / a, first = -2.0 * std::cos (radians) / a0;
            const Section section { (1.0 + alpha * a) / a0, first, (1.0 - alpha * a) / a0, first,
                                    (1.0 - alpha / a) / a0 };
            sections[i] = { section, section };
        }
    }

    void process (float* left, float* right, int n) noexcept
    {
        for (auto& [ofLeft, ofRight] : sections)
            for (int i = 0; i < n; ++i)
            {
                left[i] = ofLeft.process (left[i]);
                right[i] = ofRight.process (right[i]);
            }
    }

private:
    struct Section
    {
        double b0 = 1, b1 = 0, b2 = 0, a1 = 0, a2 = 0, z1 = 0, z2 = 0;

        float process (float sample) noexcept
        {
            const double in = static_cast<double> (sample);
            const double out = b0 * in + z1;
            z1 = b1 * in - a1 * out + z2;
            z2 = b2 * in - a2 * out;
            return static_cast<float> (out);
        }
    };

    std::array<std::array<Section, 2>, 6> sections;
};

// CPU seconds that this thread has used.
inline double threadSeconds() noexcept
{
    constexpr double nano = 1e-9;
    std::timespec time {};
    clock_gettime (CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double> (time.tv_sec) + nano * static_cast<double> (time.tv_nsec);
}

// Y in seconds per sample and channel: the median of a few short runs, some milliseconds in all. Taken anew for every
// figure, since a shared machine's speed changes within seconds.
inline double yardstickSeconds()
{
    constexpr int n = 256, blocksPerRun = 200, channels = 2;
    constexpr std::size_t runs = 9;
    std::vector<float> source (n), left (n), right (n);
    std::array<double, runs> seconds {};
    Yardstick yardstick;

    for (std::size_t i = 0; i < n; ++i)
        source[i] = static_cast<float> (std::sin (0.3 * static_cast<double> (i * i % 97))); // anything but silence

    for (auto& run : seconds)
    {
        const auto start = threadSeconds();

        for (int block = 0; block < blocksPerRun; ++block)
        {
            left = source;
            right = source;
            yardstick.process (left.data(), right.data(), n);
            benchmark::DoNotOptimize (left.data());
            benchmark::DoNotOptimize (right.data());
            benchmark::ClobberMemory();
        }

        run = (threadSeconds() - start) / (static_cast<double> (n) * blocksPerRun * channels);
    }

    std::nth_element (seconds.begin(), seconds.begin() + runs / 2, seconds.end());
    return seconds[runs / 2];
}

// Adds two counters to a benchmark whose every iteration works on `samples` samples (channels multiplied in): "seconds"
// is per sample, "Y" the same in yardsticks.
inline void reportPerSample (benchmark::State& state, double samples)
{
    const auto perSample = benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert;
    state.counters["seconds"] = benchmark::Counter (samples, perSample);
    state.counters["Y"] = benchmark::Counter (samples * yardstickSeconds(), perSample);
}
} // namespace tarvik::benchmarks
