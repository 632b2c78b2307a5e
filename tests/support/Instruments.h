// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace tarvik::test
{

/** Two bars' worth of what is sent through a channel strip: synthetic, the same on every machine, peak at -12 dBFS, which
    at the default calibration is 6 dB above 0 VU.
*/
namespace instruments
{
inline constexpr double sampleRate = 48000.0;
inline constexpr int numSamples = 96000;
inline constexpr double twoPi = 6.283185307179586;

using Sound = std::vector<float>;

inline Sound levelled (Sound sound)
{
    constexpr float peakWanted = 0.25f;
    float peak = 0.0f;

    for (const auto sample : sound)
        peak = std::max (peak, std::abs (sample));

    for (auto& sample : sound)
        sample *= peakWanted / peak;

    return sound;
}

/** Calls voice (secondsSinceItsStart) for each sample of a hit that starts every `interval` seconds. */
template <typename Voice>
void addHits (Sound& sound, double firstAt, double interval, Voice&& voice)
{
    for (std::size_t i = 0; i < sound.size(); ++i)
        if (const auto since = static_cast<double> (i) / sampleRate - firstAt; since >= 0.0)
            sound[i] += static_cast<float> (voice (std::fmod (since, interval)));
}

/** Kick on the beat, snare on the off-beat, hi-hat in eighths, at 120 beats a minute. */
inline Sound drumLoop()
{
    Sound sound (numSamples);
    std::mt19937 random (1);
    const auto hiss = [&random] { return static_cast<double> (random()) / 2147483648.0 - 1.0; };

    // The kick's pitch falls from 160 to 50 Hz with a time constant of 30 ms; its phase is the integral of that.
    addHits (
        sound, 0.0, 1.0,
        [] (double t)
        { return std::exp (-t / 0.15) * std::sin (twoPi * (50.0 * t + 110.0 * 0.03 * (1.0 - std::exp (-t / 0.03)))); });
    addHits (sound, 0.5, 1.0,
             [&] (double t) { return std::exp (-t / 0.08) * (0.5 * hiss() + 0.4 * std::sin (twoPi * 190.0 * t)); });
    addHits (sound, 0.0, 0.25, [&] (double t) { return 0.15 * std::exp (-t / 0.02) * hiss(); });
    return levelled (sound);
}

/** Plucked notes from 41 to 73 Hz with falling brightness. */
inline Sound bassLine()
{
    constexpr double notesHz[] = { 41.2, 55.0, 61.7, 73.4 };
    Sound sound (numSamples);

    for (std::size_t note = 0; note < std::size (notesHz); ++note)
        for (std::size_t i = 0; i < numSamples / 4; ++i)
        {
            const auto t = static_cast<double> (i) / sampleRate;
            double value = 0.0;

            for (int k = 1; k <= 12; ++k)
                value += std::exp (-t * 1.5 * k) * std::sin (twoPi * notesHz[note] * k * t) / k;

            sound[note * (numSamples / 4) + i] = static_cast<float> (value * std::min (1.0, t / 0.005));
        }

    return levelled (sound);
}

/** An "a" sung at 220 Hz with vibrato: harmonics under three formants, rests between the phrases. */
inline Sound voice()
{
    struct Formant
    {
        double hz, width, strength;
    };

    constexpr Formant formants[] = { { 800.0, 80.0, 1.0 }, { 1150.0, 90.0, 0.6 }, { 2900.0, 120.0, 0.25 } };
    Sound sound (numSamples);
    double phase = 0.0;

    for (std::size_t i = 0; i < sound.size(); ++i)
    {
        const auto t = static_cast<double> (i) / sampleRate;
        const auto pitch = 220.0 * (1.0 + 0.01 * std::sin (twoPi * 5.5 * t));
        phase += twoPi * pitch / sampleRate;
        double value = 0.0;

        for (int k = 1; k <= 20; ++k)
            for (const auto& [hz, width, strength] : formants)
                value += strength / (1.0 + std::pow ((k * pitch - hz) / width, 2.0)) * std::sin (k * phase);

        // Phrases of 0.7 s with 0.3 s of rest.
        const auto inPhrase = std::fmod (t, 1.0);
        sound[i] =
            static_cast<float> (value * std::clamp (std::min (inPhrase / 0.05, (0.7 - inPhrase) / 0.1), 0.0, 1.0));
    }

    return levelled (sound);
}
} // namespace instruments

} // namespace tarvik::test
