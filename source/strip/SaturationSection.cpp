// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/SaturationSection.h"

#include "dsp/Decibels.h"
#include "dsp/RowMaths.h"
#include "dsp/RowOperations.h"
#include "strip/ToleranceChannel.h"

#include <algorithm>
#include <cstddef>

namespace tarvik
{
void SaturationSection::prepare (double rateHz, int numChannels, int maxSamples)
{
    const auto count = static_cast<std::size_t> (numChannels);

    while (channelObjects.size() < count)
        channelObjects.push_back (std::make_unique<SaturationChannel>());

    inUse.clear();

    for (std::size_t c = 0; c < count; ++c)
    {
        inUse.push_back (channelObjects[c].get());
        inUse.back()->prepare (rateHz, maxSamples);
    }

    harmonicScale.prepare (rateHz, numChannels, maxSamples);
    overdriveMix.prepare (rateHz, numChannels, maxSamples);
    bent.assign (static_cast<std::size_t> (maxSamples), 0.0f);
}

void SaturationSection::reset() noexcept
{
    harmonicScale.reset();
    overdriveMix.reset();

    for (auto* const channel : inUse)
        channel->reset();
}

void SaturationSection::release()
{
    harmonicScale.release();
    overdriveMix.release();
    bent = {};
}

void SaturationSection::update (const ParameterSnapshot& snapshot, bool force) noexcept
{
    for (std::size_t c = 0; c < inUse.size(); ++c)
        inUse[c]->setVariant (toleranceChannelOf (snapshot, static_cast<int> (c)));

    const auto thdDb = snapshot.thd.get();

    if (! force && thdDb == lastThdDb)
        return;

    // At or below -100 dB the harmonics are off. Both move in straight lines, because a jump of the overdrive would be
    // a jump of the output, even in silence.
    constexpr double overdrivePerGain = 0.002;
    const auto gain = gainFromDb (static_cast<double> (thdDb));
    harmonicScale.request (std::min (gain, 1.0));
    overdriveMix.request (std::max (gain - 1.0, 0.0) * overdrivePerGain);
    lastThdDb = thdDb;
}

void SaturationSection::process (float* const* channels, int numSamples) noexcept
{
    const auto* const scale = harmonicScale.advance (numSamples);
    const auto* const mix = overdriveMix.advance (numSamples);
    SaturationChannel::shape (inUse, channels, scale, numSamples);

    if (! overdriveMix.isConstantly (0.0f))
        for (std::size_t c = 0; c < inUse.size(); ++c)
            overdrive (channels[c], mix, numSamples);

    for (std::size_t c = 0; c < inUse.size() && numSamples > 0; ++c)
        lastBent[c] = channels[c][numSamples - 1];

    SaturationChannel::filter (inUse, channels, numSamples);
}

/** In silence the curves leave a constant, which the high pass holds back. */
bool SaturationSection::isSettled() noexcept
{
    auto isEach = harmonicScale.isSettled() && overdriveMix.isSettled();

    for (std::size_t c = 0; c < inUse.size(); ++c)
        isEach = isEach && inUse[c]->isSettled (static_cast<double> (lastBent[c]));

    return isEach;
}

/** out (1 - k) - tanh (0.5 - out) k, as out + k (tanh (out - 0.5) - out). The bias puts the signal's zero off the middle
    of the curve, which makes even harmonics. */
void SaturationSection::overdrive (float* row, const float* mix, int n) noexcept
{
    constexpr float bias = 0.5f;
    rows::combine (rows::ScalarOperation::add, bent.data(), row, -bias, n);
    rows::tanh (bent.data(), bent.data(), n);
    rows::subtract (bent.data(), row, n);
    rows::multiply (bent.data(), mix, n);
    rows::add (row, bent.data(), n);
}
} // namespace tarvik
