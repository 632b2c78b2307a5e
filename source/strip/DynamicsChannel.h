// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/CompressorCircuit.h"
#include "strip/Expander.h"
#include "strip/Limiter.h"
#include "strip/VcaCurve.h"

#include <span>

namespace tarvik
{

/** What all channels have in common: coefficients only. */
struct DynamicsCircuits
{
    CompressorCircuit compressor;
    Limiter limiter;
    Expander expander;
};

/** What the loop of one channel, or of several side by side, remembers from sample to sample. Channels are not linked. */
template <typename Number>
struct DynamicsLoops
{
    Number gain {}; ///< of the gain element, after the last sample
    CompressorCircuit::States<Number> compressor;
    Number limiterVolts {};
    Expander::States<Number> expander;
    VcaCurve::Lines<Number> line; ///< where the last voltage fell; at first nowhere
};

struct DynamicsChannel : DynamicsLoops<double>
{
    DynamicsChannel() noexcept
    {
        gain = 1.0;
        expander = Expander::makeState();
    }
};

/** One channel's rows of a slice, finite. */
struct DynamicsRows
{
    float* detector = nullptr;   ///< what compressor and limiter hear, before the gain element
    float* key = nullptr;        ///< what expander or gate hears, the latter before the gain element
    double* keyLevels = nullptr; ///< work row of the expander
    float* gains = nullptr;      ///< goes out: the gain element's gain, about 31.6 without signal
};

/** Audio thread: runs the feedback loops of one or two channels over their rows of n samples, sample by sample. Two
    take little longer than one, since they go side by side. Every instruction set gives the same bits. */
void processDynamics (const DynamicsCircuits& circuits, std::span<DynamicsChannel> channels,
                      std::span<const DynamicsRows> rows, int n) noexcept;

/** Audio thread: whether, without a signal, nothing but capacitors moves in a channel. */
bool isSettled (const DynamicsCircuits& circuits, const DynamicsChannel& channel) noexcept;

/** Audio thread: where a settled channel stands after n samples of silence, n above 0 and at most some hundredths of a
    second, in the time that a few samples take. Within 1e-7 of the gain that processDynamics() comes to. */
void skipSilence (const DynamicsCircuits& circuits, DynamicsChannel& channel, int n) noexcept;

} // namespace tarvik
