// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tarvik
{
/** The console's noise floor at one place of the chain: white, uniform from -range to +range, different on every
    channel and after every start.

    The generator is Marsaglia's xorshift with 128 bits of state ("Xorshift RNGs", 2003), eight of them in parallel for
    each channel, a vector's lanes, which give a sample each in turn. */
class AnalogNoise
{
public:
    /** The two places of the strip: before the gain, and before the fader. In sample values. */
    static constexpr float inputRange = 6.0e-07f;
    static constexpr float outputRange = 4.0e-05f;

    static constexpr std::size_t generatorsPerChannel = 8;

    /** What a channel's generators gave at one step. */
    using Outputs = std::array<std::uint32_t, generatorsPerChannel>;

    /** Without a seed the clock gives one at each prepare(). A fixed one makes every start the same, for tests. */
    explicit AnalogNoise (float rangeToUse, std::optional<std::uint64_t> fixedSeedToUse = std::nullopt) noexcept
        : range (rangeToUse), fixedSeed (fixedSeedToUse)
    {
    }

    // A Stage. There is nothing to reset; released, it adds nothing.
    void prepare (double rateHz, int numChannels, int maxSamples);

    void reset() noexcept {}

    void release() { generators = {}; }

    void process (float* const* channels, int numSamples) noexcept;

private:
    class Generator
    {
    public:
        explicit Generator (std::uint64_t seed) noexcept;

        void add (float* row, float range, int n) noexcept;

    private:
        std::array<Outputs, 4> state {};         ///< of the last four steps, the newest last
        std::size_t used = generatorsPerChannel; ///< of the newest outputs
    };

    float range;
    std::optional<std::uint64_t> fixedSeed;
    std::vector<Generator> generators;
};
} // namespace tarvik
