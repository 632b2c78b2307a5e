// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "strip/AnalogNoise.cpp" // this file, compiled once for each instruction set

#include "strip/AnalogNoise.h"

#include "dsp/Dispatch.h"

#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>
#include <juce_core/juce_core.h>

#include <algorithm>
#include <atomic>

HWY_BEFORE_NAMESPACE();

namespace tarvik::noise::HWY_NAMESPACE
{
namespace
{
namespace hn = hwy::HWY_NAMESPACE;

/** Takes all generators `steps` further, and adds their outputs, scaled as signed numbers, to the row, one sample of
    each generator per step. The same bits with vectors of every length. */
void addSteps (AnalogNoise::Outputs* state, float* row, float scale, std::size_t steps)
{
    const hn::CappedTag<std::uint32_t, AnalogNoise::generatorsPerChannel> d;
    const hn::RebindToSigned<decltype (d)> asSigned;
    const hn::RebindToFloat<decltype (d)> asFloat;
    const auto factor = hn::Set (asFloat, scale);

    for (std::size_t first = 0; first < AnalogNoise::generatorsPerChannel; first += hn::Lanes (d))
    {
        auto oldest = hn::LoadU (d, state[0].data() + first), older = hn::LoadU (d, state[1].data() + first);
        auto old = hn::LoadU (d, state[2].data() + first), newest = hn::LoadU (d, state[3].data() + first);

        for (std::size_t i = 0; i < steps; ++i)
        {
            auto* const samples = row + i * AnalogNoise::generatorsPerChannel + first;
            const auto t = hn::Xor (oldest, hn::ShiftLeft<11> (oldest));
            oldest = older;
            older = old;
            old = newest;
            newest = hn::Xor (hn::Xor (newest, hn::ShiftRight<19> (newest)), hn::Xor (t, hn::ShiftRight<8> (t)));

            const auto number = hn::ConvertTo (asFloat, hn::BitCast (asSigned, newest));
            hn::StoreU (hn::Add (hn::LoadU (asFloat, samples), hn::Mul (factor, number)), asFloat, samples);
        }

        hn::StoreU (oldest, d, state[0].data() + first);
        hn::StoreU (older, d, state[1].data() + first);
        hn::StoreU (old, d, state[2].data() + first);
        hn::StoreU (newest, d, state[3].data() + first);
    }
}
} // namespace
} // namespace tarvik::noise::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tarvik
{
namespace noise
{
HWY_EXPORT (addSteps);
}

namespace
{
/** From a word as a signed number, of at most 2^31, to a sample between -1 and 1. */
constexpr auto unit = 1.0f / 2147483648.0f;

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

void AnalogNoise::prepare (double, int numChannels, int)
{
    // The clock's tick may be longer than the time between two channels or two instances, and the same tick taken
    // twice cancels. The count keeps them apart.
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

void AnalogNoise::process (float* const* channels, int numSamples) noexcept
{
    for (std::size_t c = 0; c < generators.size(); ++c)
        generators[c].add (channels[c], range, numSamples);
}

//==============================================================================
AnalogNoise::Generator::Generator (std::uint64_t seed) noexcept
{
    constexpr int bitsPerWord = 32;
    SeedMixer mixer (seed);

    for (std::size_t lane = 0; lane < generatorsPerChannel; ++lane)
        for (std::size_t word = 0; word < state.size(); ++word)
            state[word][lane] = static_cast<std::uint32_t> (mixer.next() >> bitsPerWord);

    for (auto& word : state.back())
        word |= 1; // a state of zeros alone would stay there
}

void AnalogNoise::Generator::add (float* row, float range, int n) noexcept
{
    const auto scale = range * unit;
    auto remaining = static_cast<std::size_t> (std::max (n, 0));

    for (; used < generatorsPerChannel && remaining > 0; --remaining)
        *row++ += scale * static_cast<float> (static_cast<std::int32_t> (state.back()[used++]));

    const auto steps = remaining / generatorsPerChannel;
    TARVIK_DISPATCH (noise::addSteps) (state.data(), row, scale, steps);
    row += steps * generatorsPerChannel;
    remaining -= steps * generatorsPerChannel;

    if (remaining == 0)
        return;

    std::array<float, generatorsPerChannel> last {};
    TARVIK_DISPATCH (noise::addSteps) (state.data(), last.data(), scale, 1);
    used = remaining;

    for (std::size_t i = 0; i < remaining; ++i)
        row[i] += last[i];
}
} // namespace tarvik

#endif
