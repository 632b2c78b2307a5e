// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/Polyphase.h"

#include "dsp/MultiRateFirKernels.h"
#include "dsp/SharedTables.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace tarvik
{
struct PolyphaseFilters
{
    MultiRateFirSpec up, down;
};

namespace
{
PolyphaseFilters makeFilters (int factor)
{
    auto taps = designPolyphaseFilter (factor);
    auto down = makeDownSpec (taps, factor);

    // Interpolation fills the gaps with zeros, which divides the level by the factor.
    for (auto& tap : taps)
        tap *= static_cast<float> (factor);

    return { makeUpSpec (taps, factor), std::move (down) };
}

/** For the best instruction set that is enabled now. */
std::shared_ptr<const PolyphaseFilters> sharedFilters (int factor)
{
    static SharedTables<std::tuple<int, const UpKernel*, const DownKernel*>, PolyphaseFilters> all;
    return all.get ({ factor, &upKernel(), &downKernel() }, [=] { return makeFilters (factor); });
}

void copySamples (const float* in, float* out, int numSamples) noexcept
{
    if (in != out && numSamples > 0)
        std::copy_n (in, numSamples, out);
}
} // namespace

void Polyphase::setup (int channels, int newFactor)
{
    *this = {};
    factor = newFactor;
    records.resize (static_cast<std::size_t> (std::max (channels, 0)));

    if (factor <= 1)
        return;

    filters = sharedFilters (factor);
    work = makeWork (filters->up.workSize > filters->down.workSize ? filters->up : filters->down);

    for (auto& record : records)
        record = { makeDelay (filters->up), makeDelay (filters->down) };
}

void Polyphase::reset (int channel) noexcept
{
    auto& record = records[static_cast<std::size_t> (channel)];
    record.upDelay.clear();
    record.downDelay.clear();
}

void Polyphase::up (int channel, const float* in, float* out, int numIn) noexcept
{
    if (factor > 1)
        runUp (filters->up, records[static_cast<std::size_t> (channel)].upDelay, work.get(), in, out, numIn);
    else
        copySamples (in, out, numIn);
}

void Polyphase::down (int channel, const float* in, float* out, int numOut) noexcept
{
    if (factor > 1)
        runDown (filters->down, records[static_cast<std::size_t> (channel)].downDelay, work.get(), in, out, numOut);
    else
        copySamples (in, out, numOut);
}
} // namespace tarvik
