// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>

namespace tarvik
{
/** Single conversions between decibels and linear gain, for settings and readings; rows go through DecibelConverter.
    At the floor and below there is silence: a gain of exactly 0. Any thread. */
constexpr double silenceDb = -100.0;

/** 10^(db / 20); exactly 0 at or below -100 dB, and for NaN. */
inline double gainFromDb (double db) noexcept
{
    constexpr double decadesPerDb = 0.05;
    return db > silenceDb ? std::pow (10.0, db * decadesPerDb) : 0.0;
}

/** 20 log10 (gain), at least -100 dB; -100 dB also for gains that have no logarithm (0, negative, NaN). */
inline double dbFromGain (double gain) noexcept
{
    constexpr double dbPerDecade = 20.0;
    return gain > 0.0 ? std::max (silenceDb, dbPerDecade * std::log10 (gain)) : silenceDb;
}

/** The same in the time of a few additions, good to 1e-5 dB: for readings that every slice makes. */
inline float dbFromGain (float gain) noexcept
{
    constexpr auto dbPerOctave = 6.0205999f; // 20 log10 (2)
    return gain > 0.0f ? std::max (static_cast<float> (silenceDb), dbPerOctave * std::log2 (gain))
                       : static_cast<float> (silenceDb);
}
} // namespace tarvik
