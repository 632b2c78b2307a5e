// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "strip/DynamicsChannel.cpp" // this file, compiled once for each instruction set

#include "strip/DynamicsChannel.h"

#include "dsp/Dispatch.h"
#include "dsp/StateFloor.h"

// foreach_target.h comes before highway.h.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>

HWY_BEFORE_NAMESPACE();

// No vectors here: the newer instruction sets only spare the copies that two-operand instructions need. Every variant
// gives the same bits.
namespace tarvik::dynamics::HWY_NAMESPACE
{
namespace
{
/** What becomes of the expander's voltage. */
enum class Expansion
{
    none,
    falling, ///< switched off, and the capacitor isn't empty yet
    expander,
    gate
};

template <Expansion expansion>
HWY_INLINE double step (const DynamicsCircuits& circuits, DynamicsChannel& channel, const DynamicsRows& rows, int i)
{
    const auto& [compressor, limiter, expander] = circuits;
    const auto level = std::abs (static_cast<double> (rows.detector[i]));

    // Expander or gate, limiter, compressor: the largest voltage wins.
    auto expanderVolts = 0.0;

    if constexpr (expansion == Expansion::falling)
        expanderVolts = 0.5 * Expander::fall (channel.expander);

    if constexpr (expansion == Expansion::expander)
        expanderVolts = 0.5 * expander.charge (channel.expander, rows.attenuationsDb[i]);

    if constexpr (expansion == Expansion::gate)
    {
        const auto key = static_cast<double> (rows.key[i]);
        const auto attenuationDb = expander.gateAttenuation (channel.expander, channel.gain, key);
        expanderVolts = 0.5 * expander.charge (channel.expander, attenuationDb);
    }

    const auto limiterVolts = limiter.step (channel.limiterVolts, channel.gain * level);
    constexpr double offsetVolts = 1.288849;          // the two are fitted: they match expander and limiter
    constexpr double voltsPerVolt = 1.0 / 0.95376545; // to the control voltage of the gain element
    const auto otherVolts = (std::max (expanderVolts, limiterVolts) - offsetVolts) * voltsPerVolt;
    auto volts = compressor.step (channel.compressor, channel.gain, level);

    // The same one wins for a while. A jump, unlike a choice of values, lets the processor go on with the likely one.
    if (otherVolts > volts) [[unlikely]]
        volts = otherVolts;

    // The voltage seldom leaves the curve's segment, so the next gain doesn't wait for the search.
    auto gain = channel.segment->gainAt (volts);

    if (! channel.segment->contains (volts))
    {
        channel.segment = &VcaCurve::getSegment (volts);
        gain = channel.segment->gainAt (volts);
    }

    return std::max (gain, 0.0); // the first argument is kept if it is a NaN
}

template <Expansion expansion, std::size_t numChannels>
HWY_NOINLINE void run (const DynamicsCircuits& circuits, DynamicsChannel* channels, const DynamicsRows* rows, int n)
{
    // Copies whose address nobody takes, and no array of them, so that they stay in registers.
    const auto localCircuits = circuits;
    constexpr auto last = numChannels - 1;
    const auto firstRows = rows[0], lastRows = rows[last];
    auto first = channels[0], lastChannel = channels[last];

    for (int i = 0; i < n; ++i)
    {
        first.gain = step<expansion> (localCircuits, first, firstRows, i);
        firstRows.gains[i] = static_cast<float> (first.gain);

        if constexpr (last > 0)
        {
            lastChannel.gain = step<expansion> (localCircuits, lastChannel, lastRows, i);
            lastRows.gains[i] = static_cast<float> (lastChannel.gain);
        }
    }

    channels[0] = first;

    if constexpr (last > 0)
        channels[last] = lastChannel;
}

template <std::size_t numChannels>
void runInMode (const DynamicsCircuits& circuits, DynamicsChannel* channels, const DynamicsRows* rows, int n)
{
    switch (circuits.expander.getMode())
    {
        case Expander::Mode::expander:
            return run<Expansion::expander, numChannels> (circuits, channels, rows, n);
        case Expander::Mode::gate:
            return run<Expansion::gate, numChannels> (circuits, channels, rows, n);
        case Expander::Mode::off:
            break;
    }

    // Where the capacitor is empty both of these do the same, the second with less work.
    if (channels[0].expander.volts > 0.0 || channels[numChannels - 1].expander.volts > 0.0)
        run<Expansion::falling, numChannels> (circuits, channels, rows, n);
    else
        run<Expansion::none, numChannels> (circuits, channels, rows, n);
}

void process (const DynamicsCircuits& circuits, std::span<DynamicsChannel> channels, const DynamicsRows* rows, int n)
{
    if (channels.size() == 2)
        runInMode<2> (circuits, channels.data(), rows, n);
    else
        runInMode<1> (circuits, channels.data(), rows, n);
}
} // namespace
} // namespace tarvik::dynamics::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tarvik
{
namespace dynamics
{
HWY_EXPORT (process);
}

void processDynamics (const DynamicsCircuits& circuits, std::span<DynamicsChannel> channels,
                      std::span<const DynamicsRows> rows, int n) noexcept
{
    if (circuits.expander.getMode() == Expander::Mode::expander)
    {
        std::array<Expander::Rows, 2> expanderRows;

        for (std::size_t c = 0; c < channels.size(); ++c)
            expanderRows[c] = { &channels[c].expander, rows[c].key, rows[c].attenuationsDb };

        circuits.expander.makeAttenuations (std::span (expanderRows).first (channels.size()), n);
    }

    TARVIK_DISPATCH (dynamics::process) (circuits, channels, rows.data(), n);

    for (auto& channel : channels)
    {
        CompressorCircuit::settle (channel.compressor);
        Expander::settle (channel.expander);

        if (channel.limiterVolts < stateFloor)
            channel.limiterVolts = 0.0;
    }
}
} // namespace tarvik

#endif
