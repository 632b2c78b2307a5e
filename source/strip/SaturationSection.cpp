// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/SaturationSection.h"

#include "strip/ToleranceChannel.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace tarvik
{
namespace
{
constexpr std::size_t channelsPerPass = 2;
} // namespace

void SaturationSection::prepare (double rateHz, int numChannels, int maxSamples)
{
    const auto count = static_cast<std::size_t> (std::max (numChannels, 0));

    while (channelObjects.size() < count)
        channelObjects.push_back (std::make_unique<SaturationChannel>());

    inUse.clear();

    for (std::size_t c = 0; c < count; ++c)
    {
        auto& channel = *channelObjects[c];
        channel.setThd (static_cast<double> (lastThdDb));
        channel.prepare (rateHz, maxSamples);
        inUse.push_back (&channel);
    }
}

void SaturationSection::reset() noexcept
{
    for (auto* const channel : inUse)
        channel->reset();
}

void SaturationSection::update (const ParameterSnapshot& snapshot, bool force) noexcept
{
    const auto thdDb = snapshot.thd.get();
    const auto thdChanges = force || thdDb != lastThdDb;
    lastThdDb = thdDb;

    for (std::size_t c = 0; c < inUse.size(); ++c)
    {
        inUse[c]->setVariant (toleranceChannelOf (snapshot, static_cast<int> (c)));

        if (thdChanges)
            inUse[c]->setThd (static_cast<double> (thdDb));
    }
}

void SaturationSection::process (float* const* channels, int numChannels, int n) noexcept
{
    const auto count = std::min (static_cast<std::size_t> (std::max (numChannels, 0)), inUse.size());

    for (std::size_t c = 0; c < count; c += channelsPerPass)
        SaturationChannel::process (std::span (inUse).subspan (c, std::min (channelsPerPass, count - c)), channels + c,
                                    n);
}
} // namespace tarvik
