// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/Polyphase.h"

#include <algorithm>

namespace tarvik
{
namespace
{
void copySamples (const float* in, float* out, int numSamples) noexcept
{
    if (in != out && numSamples > 0)
        std::copy_n (in, numSamples, out);
}
} // namespace

void PolyphaseChannel::setup (int newFactor)
{
    *this = {};
    factor = newFactor;

    if (factor <= 1)
        return;

    auto taps = designPolyphaseFilter (factor);
    length = static_cast<int> (taps.size());

    downSpec = makeDownSpec (taps, factor);
    downDelay = makeDelay (downSpec);
    downWork = makeWork (downSpec);

    // Interpolation fills the gaps with zeros, which divides the level by the factor.
    for (auto& tap : taps)
        tap *= static_cast<float> (factor);

    upSpec = makeUpSpec (taps, factor);
    upDelay = makeDelay (upSpec);
    upWork = makeWork (upSpec);
}

void PolyphaseChannel::reset() noexcept
{
    upDelay.clear();
    downDelay.clear();
}

void PolyphaseChannel::up (const float* in, float* out, int numIn) noexcept
{
    if (factor > 1)
        runUp (upSpec, upDelay, upWork.get(), in, out, numIn);
    else
        copySamples (in, out, numIn);
}

void PolyphaseChannel::down (const float* in, float* out, int numOut) noexcept
{
    if (factor > 1)
        runDown (downSpec, downDelay, downWork.get(), in, out, numOut);
    else
        copySamples (in, out, numOut);
}

void Polyphase::setup (int channels, int newFactor)
{
    factor = newFactor;
    records.resize (static_cast<std::size_t> (std::max (channels, 0)));
    records.shrink_to_fit();

    for (auto& record : records)
        record.setup (factor);
}

void Polyphase::up (int channel, const float* in, float* out, int numIn) noexcept
{
    records[static_cast<std::size_t> (channel)].up (in, out, numIn);
}

void Polyphase::down (int channel, const float* in, float* out, int numOut) noexcept
{
    records[static_cast<std::size_t> (channel)].down (in, out, numOut);
}
} // namespace tarvik
