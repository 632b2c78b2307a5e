// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/AnalogNoise.h"

#include <juce_core/juce_core.h>

#include <algorithm>
#include <atomic>

namespace tarvik
{
namespace
{
/** Makes a sequence of well mixed 64-bit numbers out of any seed: splitmix64, after Steele, Lea and Flood, "Fast
    splittable pseudorandom number generators", 2014. */
class SeedMixer
{
public:
    explicit SeedMixer (std::uint64_t seed) noexcept : state (seed) {}

    std::uint64_t next() noexcept
    {
        state += 0x9e3779b97f4a7c15u;
        auto z = state;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
        return z ^ (z >> 31);
    }

private:
    std::uint64_t state;
};
} // namespace

void AnalogNoise::prepare (int numChannels, int)
{
    // The clock's tick may be longer than the time between two channels, or two instances, and the same tick taken
    // twice would cancel. The count keeps them apart.
    static std::atomic<std::uint64_t> generatorsSeeded { 0 };

    generators.clear();
    auto seed = fixedSeed.value_or (juce::Time::getMillisecondCounter());

    for (int c = 0; c < numChannels; ++c)
    {
        if (! fixedSeed.has_value())
            seed ^= static_cast<std::uint64_t> (juce::Time::getHighResolutionTicks());

        const auto number = fixedSeed.has_value() ? static_cast<std::uint64_t> (c) : generatorsSeeded.fetch_add (1);
        generators.emplace_back (SeedMixer (seed).next() + number);
    }
}

void AnalogNoise::release() { generators = {}; }

void AnalogNoise::process (float* const* channels, int numChannels, int n) noexcept
{
    const auto count = std::min (static_cast<std::size_t> (std::max (numChannels, 0)), generators.size());

    for (std::size_t c = 0; c < count; ++c)
        generators[c].add (channels[c], range, n);
}

//==============================================================================
AnalogNoise::Generator::Generator (std::uint64_t seed) noexcept
{
    constexpr int bitsPerWord = 32;
    SeedMixer mixer (seed);

    for (std::size_t lane = 0; lane < lanes; ++lane)
        for (std::size_t word = 0; word < state.size(); ++word)
            state[word][lane] = static_cast<std::uint32_t> (mixer.next() >> bitsPerWord);

    for (auto& word : state.back())
        word |= 1; // a state of nothing but zeros would stay there
}

void AnalogNoise::Generator::step() noexcept
{
    // Copies, so that the compiler sees that nothing overlaps.
    const auto w = state[newest];
    newest = (newest + 1) % state.size();
    auto x = state[newest];

    for (std::size_t lane = 0; lane < lanes; ++lane)
    {
        const auto t = x[lane] ^ (x[lane] << 11);
        x[lane] = (w[lane] ^ (w[lane] >> 19)) ^ (t ^ (t >> 8));
    }

    state[newest] = x;
}

void AnalogNoise::Generator::addFrom (std::size_t lane, float* row, float range, std::size_t n) const noexcept
{
    constexpr auto two31 = 2147483648.0f; // the largest magnitude of the words, as signed numbers
    const auto scale = range / two31;
    const auto& outputs = state[newest];

    for (std::size_t i = 0; i < n; ++i)
        row[i] += scale * static_cast<float> (static_cast<std::int32_t> (outputs[lane + i]));
}

void AnalogNoise::Generator::add (float* row, float range, int n) noexcept
{
    auto remaining = static_cast<std::size_t> (std::max (n, 0));

    const auto kept = std::min (lanes - used, remaining);
    addFrom (used, row, range, kept);
    used += kept;
    row += kept;
    remaining -= kept;

    for (; remaining >= lanes; remaining -= lanes, row += lanes)
    {
        step();
        addFrom (0, row, range, lanes);
    }

    if (remaining > 0)
    {
        step();
        addFrom (0, row, range, remaining);
        used = remaining;
    }
}
} // namespace tarvik
