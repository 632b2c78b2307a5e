// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string_view>
#include <utility>

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

/** Whether this input is the one in so many that also goes through what takes long. It depends on the input alone, so
    that a finding can be repeated.
*/
inline bool isOneOf (std::string_view input, unsigned howMany)
{
    std::uint32_t hash = 2166136261u; // FNV-1a

    for (const auto byte : input)
        hash = (hash ^ static_cast<unsigned char> (byte)) * 16777619u;

    return (hash >> 8) % howMany == 0;
}

/** Aborts where an input has taken a second of the processor's time. This build is some ten times as slow as a release,
    in which nothing may take more than a tenth of a second.
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

/** What a door has in common: it is given one state after another, as by a host that loads presets. `Strip` is
    the processor or an instance of the module.
*/
template <typename Strip>
class Door
{
public:
    template <typename... Arguments>
    explicit Door (bool shouldPlay, Arguments&&... arguments) : strip (std::forward<Arguments> (arguments)...)
    {
        if (shouldPlay)
            strip.startPlaying();

        initial = kept = strip.saved();
    }

    /** The state is one that can be loaded again, and every value is in range. */
    void check()
    {
        if (auto now = strip.saved(); now != kept) // else it was looked at before
        {
            kept = std::move (now);
            require (strip.allParametersAreInRange(), "every value in range");
            strip.load (kept);
            require (strip.saved() == kept, "the same state after it was saved and loaded");
        }
    }

    void expectThatAGoodStateLoads()
    {
        strip.load (initial);
        kept = strip.saved();
        require (kept == initial, "the next good state");
    }

    Strip strip;
    decltype (std::declval<Strip>().saved()) initial, kept;
};

/** One instance takes all inputs. Another one plays, and takes the few that it has time for, because each change of the
    oversampling prepares it anew.
*/
template <typename Host>
void takeInput (Host& host, std::string_view input)
{
    constexpr unsigned inputsForEachBlock = 16;
    const Stopwatch stopwatch;
    host.take (host.idle, input);

    if (isOneOf (input, inputsForEachBlock))
    {
        host.take (host.playing, input);
        require (std::isfinite (host.playing.strip.play()), "finite audio");
        host.playing.expectThatAGoodStateLoads();
        host.idle.expectThatAGoodStateLoads();
    }
}

} // namespace tarvik::fuzz
