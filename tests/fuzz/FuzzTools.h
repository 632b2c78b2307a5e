// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string_view>

namespace tarvik::fuzz
{

/** Ends the program, upon which the fuzzer keeps the input. */
inline void require (bool isSo, const char* what)
{
    if (isSo)
        return;

    std::fprintf (stderr, "not so: %s\n", what);
    std::abort();
}

/** Whether this input is one of the one in so many that also go through what takes long. It depends on the input alone,
    so that a finding can be repeated.
*/
inline bool isOneOf (std::string_view input, unsigned howMany)
{
    std::uint32_t hash = 2166136261u; // FNV-1a

    for (const auto byte : input)
        hash = (hash ^ static_cast<unsigned char> (byte)) * 16777619u;

    return (hash >> 8) % howMany == 0;
}

/** Aborts where an input has taken too long: this build is some ten times as slow as a release, in which nothing may take
    more than a tenth of a second. The processor's time, whatever else the machine does.
*/
class Stopwatch
{
public:
    Stopwatch() = default;
    Stopwatch (const Stopwatch&) = delete;
    Stopwatch& operator= (const Stopwatch&) = delete;

    ~Stopwatch() { require (std::clock() - start < CLOCKS_PER_SEC, "done within a second"); }

private:
    const std::clock_t start = std::clock();
};

/** Nobody's own settings: they would make two runs differ. Before the first instance. */
inline void hideSettings()
{
    auto folder = (std::filesystem::temp_directory_path() / "tarvik-fuzz-XXXXXX").string();
    require (mkdtemp (folder.data()) != nullptr && setenv ("XDG_CONFIG_HOME", folder.c_str(), 1) == 0,
             "a settings folder of its own");
}

/** A square wave of moderate level. */
template <typename Channels>
void fill (Channels&& channels, int numChannels, int numSamples)
{
    for (int c = 0; c < numChannels; ++c)
        for (int i = 0; i < numSamples; ++i)
            channels[c][i] = (i & 16) != 0 ? 0.1f : -0.1f;
}

template <typename Channels>
bool areFinite (Channels&& channels, int numChannels, int numSamples)
{
    for (int c = 0; c < numChannels; ++c)
        for (int i = 0; i < numSamples; ++i)
            if (! std::isfinite (channels[c][i]))
                return false;

    return true;
}

} // namespace tarvik::fuzz
