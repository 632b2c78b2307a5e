// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/Signals.h"

#include <algorithm>

namespace tarvik::test
{

/** Two bars' worth of what is sent through a channel strip: synthetic, the same on every machine, peak at -12 dBFS,
    which at the default calibration is 6 dB above 0 VU.
*/
namespace instruments
{
inline constexpr double sampleRate = 48000.0;
inline constexpr std::size_t numSamples = 96000;
inline constexpr double twoPi = 2.0 * std::numbers::pi;

/** A sound of what voice (seconds) gives, at its level. */
template <typename Voice>
Signal soundOf (Voice&& voice)
{
    constexpr float peakWanted = 0.25f;
    Signal sound (numSamples);
    float peak = 0.0f;

    for (std::size_t i = 0; i < numSamples; ++i)
    {
        sound[i] = static_cast<float> (voice (static_cast<double> (i) / sampleRate));
        peak = std::max (peak, std::abs (sound[i]));
    }

    for (auto& sample : sound)
        sample *= peakWanted / peak;

    return sound;
}

/** Kick on the beat, snare on the off-beat, hi-hat in eighths, at 120 beats a minute. */
inline Signal drumLoop()
{
    std::mt19937 random (1);

    return soundOf (
        [&random] (double t)
        {
            const auto sinceKick = std::fmod (t, 1.0), sinceSnare = std::fmod (t + 0.5, 1.0);
            const auto hiss = static_cast<double> (random()) / 2147483648.0 - 1.0;

            // The kick's pitch falls from 160 to 50 Hz with a time constant of 30 ms; its phase is the integral.
            const auto cycles = 50.0 * sinceKick + 110.0 * 0.03 * (1.0 - std::exp (-sinceKick / 0.03));
            return std::exp (-sinceKick / 0.15) * std::sin (twoPi * cycles)
                   + std::exp (-sinceSnare / 0.08) * (0.5 * hiss + 0.4 * std::sin (twoPi * 190.0 * sinceSnare))
                   + 0.15 * std::exp (-std::fmod (t, 0.25) / 0.02) * hiss;
        });
}

/** A plucked note of 55 Hz at every beat, of harmonics that die away the sooner the higher they are. */
inline Signal bassLine()
{
    return soundOf (
        [] (double seconds)
        {
            const auto t = std::fmod (seconds, 0.5);
            double value = 0.0;

            for (int k = 1; k <= 12; ++k)
                value += std::exp (-t * 1.5 * k) * std::sin (twoPi * 55.0 * k * t) / k;

            return value * std::min (1.0, t / 0.005);
        });
}

/** An "a" sung at 220 Hz: harmonics under two formants, rests of 0.3 s between the phrases. */
inline Signal voice()
{
    return soundOf (
        [] (double t)
        {
            const auto inPhrase = std::fmod (t, 1.0);
            double value = 0.0;

            for (const auto hz : { 800.0, 1150.0 })
                for (int k = 1; k <= 20; ++k)
                    value += std::sin (twoPi * 220.0 * k * t) / (1.0 + std::pow ((k * 220.0 - hz) / 90.0, 2.0));

            return value * std::clamp (std::min (inPhrase / 0.05, (0.7 - inPhrase) / 0.1), 0.0, 1.0);
        });
}
} // namespace instruments

} // namespace tarvik::test
