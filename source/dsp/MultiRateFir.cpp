// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MultiRateFir.h"

#include "dsp/MultiRateFirKernels.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace tarvik
{
namespace
{
// Outputs that one call of the downsampler's kernel computes; longer blocks are cut. The inputs stay within the innermost
// cache at every factor.
int maxDownPass (const MultiRateFirSpec& spec) noexcept
{
    constexpr int maxInputs = 2048;
    constexpr int maxOutputs = 256;
    return std::clamp (maxInputs / spec.factor, spec.outputsPerGroup, maxOutputs);
}

// The upsampler's scratch memory comes after its inputs and what the kernel reads beyond them, on a vector's boundary.
int upScratchOffset (const MultiRateFirSpec& spec) noexcept
{
    constexpr int alignment = HWY_ALIGNMENT / static_cast<int> (sizeof (float));
    const auto inputs = spec.tapsPerPhase + maxUpPass + spec.upKernel->tile;
    return (inputs + alignment - 1) / alignment * alignment;
}

AlignedFloats zeros (int size)
{
    auto floats = hwy::AllocateAligned<float> (static_cast<std::size_t> (size));
    std::fill_n (floats.get(), size, 0.0f);
    return floats;
}

AlignedFloats aligned (const std::vector<float>& source)
{
    auto floats = zeros (static_cast<int> (source.size()));
    std::copy (source.begin(), source.end(), floats.get());
    return floats;
}

// The tap of one phase, 0 outside the filter.
float tapOf (std::span<const float> taps, int factor, int phase, int j) noexcept
{
    const auto n = phase + factor * j;
    return j >= 0 && n < static_cast<int> (taps.size()) ? taps[static_cast<std::size_t> (n)] : 0.0f;
}

UpMethod bestUpMethod (const MultiRateFirSpec& spec, std::span<const float> taps)
{
    const auto isEven = spec.tapsPerPhase % 2 == 0;

    if (spec.factor == 2 && isEven)
        return UpMethod::pairs;

    if (spec.factor >= spec.upKernel->minFoldedFactor && spec.factor % (2 * upPhasesPerGroup) == 0 && isEven
        && std::equal (taps.begin(), taps.end(), taps.rbegin()))
        return UpMethod::folded;

    return UpMethod::direct;
}

// For every group of four phases (the last may be smaller), tap after tap, the taps of its phases; then the last tap.
std::vector<float> layOutDirect (const MultiRateFirSpec& spec, std::span<const float> taps)
{
    std::vector<float> layout;

    for (int phase = 0; phase < spec.factor; phase += upPhasesPerGroup)
        for (int j = 0; j < spec.tapsPerPhase; ++j)
            for (int p = phase; p < std::min (phase + upPhasesPerGroup, spec.factor); ++p)
                layout.push_back (tapOf (taps, spec.factor, p, j));

    layout.push_back (taps.back());
    return layout;
}

// For every input that a pair of samples needs, the newest first, its taps in both phases of the older sample, then
// of the newer one.
std::vector<float> layOutPairs (const MultiRateFirSpec& spec, std::span<const float> taps)
{
    std::vector<float> layout;

    for (int j = 0; j < spec.tapsPerPhase + 2; ++j)
        for (int age = j - 1; age <= j; ++age)
            for (int p = 0; p < spec.factor; ++p)
                layout.push_back (tapOf (taps, spec.factor, p, age));

    return layout;
}

// For every group of four phases of the first half, tap after tap, half the sum of the taps at equal distance from both
// ends; then the same with the difference. Then the middle phase's taps, of which both ends are equal, and the last
// tap.
std::vector<float> layOutFolded (const MultiRateFirSpec& spec, std::span<const float> taps)
{
    std::vector<float> layout;
    const auto half = spec.tapsPerPhase / 2;
    const auto middlePhase = spec.factor / 2;

    for (int phase = 0; phase < middlePhase; phase += upPhasesPerGroup)
        for (const auto sign : { 0.5f, -0.5f })
            for (int j = 0; j < half; ++j)
                for (int p = phase; p < phase + upPhasesPerGroup; ++p)
                    layout.push_back (0.5f * tapOf (taps, spec.factor, p, j)
                                      + sign * tapOf (taps, spec.factor, p, spec.tapsPerPhase - 1 - j));

    for (int j = 0; j < half; ++j)
        layout.push_back (tapOf (taps, spec.factor, middlePhase, j));

    layout.push_back (taps.back());
    return layout;
}
} // namespace

void MultiRateFirDelay::clear() noexcept
{
    std::fill_n (samples.get(), size, 0.0f);
    position = 0;
}

MultiRateFirSpec makeUpSpec (std::span<const float> taps, int factor)
{
    MultiRateFirSpec spec;
    spec.factor = factor;
    spec.tapsPerPhase = (static_cast<int> (taps.size()) - 1) / factor;
    spec.upKernel = &upKernel();
    spec.upMethod = bestUpMethod (spec, taps);
    spec.delaySize = spec.tapsPerPhase;
    spec.workSize = upScratchOffset (spec) + upScratchSize (spec, spec.upKernel->tile);

    if (spec.upMethod == UpMethod::pairs)
        spec.taps = aligned (layOutPairs (spec, taps));
    else if (spec.upMethod == UpMethod::folded)
        spec.taps = aligned (layOutFolded (spec, taps));
    else
        spec.taps = aligned (layOutDirect (spec, taps));

    return spec;
}

MultiRateFirSpec makeDownSpec (std::span<const float> taps, int factor)
{
    MultiRateFirSpec spec;
    spec.factor = factor;
    spec.tapsPerPhase = (static_cast<int> (taps.size()) - 1) / factor;
    spec.downKernel = &downKernel();

    const auto lanes = spec.downKernel->lanes;
    spec.outputsPerGroup = lanes / std::gcd (lanes, factor);
    spec.planes = spec.outputsPerGroup * factor / lanes;

    const auto newestInput = factor * (spec.tapsPerPhase + spec.outputsPerGroup - 1);
    spec.rowsPerGroup = newestInput / lanes + 1;
    spec.taps = zeros (spec.rowsPerGroup * spec.outputsPerGroup * lanes);

    auto* dst = spec.taps.get();

    for (int plane = 0; plane < spec.planes; ++plane)
        for (int row = plane; row < spec.rowsPerGroup; row += spec.planes)
            for (int output = 0; output < spec.outputsPerGroup; ++output)
                for (int lane = 0; lane < lanes; ++lane)
                    *dst++ = tapOf (taps, 1, 0, factor * (spec.tapsPerPhase + output) - (row * lanes + lane));

    spec.delaySize = newestInput;

    // The signal in its own order, and once more in planes where there are several.
    const auto reach = downReach (spec, spec.outputsPerGroup - 1 + maxDownPass (spec));
    spec.planeSize = reach / spec.planes;
    spec.workSize = spec.planes > 1 ? 2 * reach : reach;
    return spec;
}

MultiRateFirDelay makeDelay (const MultiRateFirSpec& spec)
{
    MultiRateFirDelay delay;
    delay.samples = zeros (spec.delaySize);
    delay.size = spec.delaySize;
    return delay;
}

AlignedFloats makeWork (const MultiRateFirSpec& spec) { return zeros (spec.workSize); }

void runUp (const MultiRateFirSpec& spec, MultiRateFirDelay& delay, float* work, const float* in, float* out,
            int numIn) noexcept
{
    auto* const history = delay.samples.get();
    auto* const input = work + spec.tapsPerPhase;
    auto* const scratch = work + upScratchOffset (spec);

    for (int n = 0; numIn > 0; numIn -= n, in += n, out += n * spec.factor)
    {
        n = std::min (numIn, maxUpPass);
        std::copy_n (history, spec.tapsPerPhase, work);
        std::copy_n (in, n, input);
        spec.upKernel->run (spec, input, scratch, out, n);
        std::copy_n (input + n - spec.tapsPerPhase, spec.tapsPerPhase, history);
    }
}

void runDown (const MultiRateFirSpec& spec, MultiRateFirDelay& delay, float* work, const float* in, float* out,
              int numOut) noexcept
{
    auto* const history = delay.samples.get();
    const auto maxPass = maxDownPass (spec);

    for (int n = 0; numOut > 0; numOut -= n, in += n * spec.factor, out += n)
    {
        n = std::min (numOut, maxPass);

        // The work buffer begins with the oldest input of the current group's first output, and the kernel computes
        // that group anew. Zeros stand for the inputs that are still to come.
        const auto kept = spec.factor * (spec.tapsPerPhase + delay.position);
        const auto fresh = spec.factor * n;
        std::copy_n (history, kept, work);
        std::copy_n (in, fresh, work + kept);
        std::fill (work + kept + fresh, work + downReach (spec, delay.position + n), 0.0f);

        spec.downKernel->run (spec, work, delay.position, out, n);

        const auto newPosition = (delay.position + n) % spec.outputsPerGroup;
        const auto begin = spec.factor * (delay.position + n - newPosition);
        std::copy_n (work + begin, spec.factor * (spec.tapsPerPhase + newPosition), history);
        delay.position = newPosition;
    }
}
} // namespace tarvik
