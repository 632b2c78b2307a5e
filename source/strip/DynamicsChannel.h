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

/** What one channel's loop remembers from sample to sample. Channels are not linked. */
struct DynamicsChannel
{
    double gain = 1.0; ///< of the gain element, after the last sample
    CompressorCircuit::State compressor;
    double limiterVolts = 0.0;
    Expander::State expander;
    const VcaCurve::Segment* segment = &VcaCurve::getSegment (0.0); ///< where the last voltage fell
};

/** One channel's rows of a slice, finite. */
struct DynamicsRows
{
    float* detector = nullptr;        ///< what compressor and limiter hear, before the gain element
    float* key = nullptr;             ///< what expander or gate hears, the latter before the gain element
    double* attenuationsDb = nullptr; ///< work row of the expander
    float* gains = nullptr;           ///< goes out: the gain element's gain, about 31.6 without signal
};

/** Audio thread: runs the feedback loops of one or two channels over their rows of n samples, sample by sample. Two
    take little longer than one, since each waits for its own gain most of the time. */
void processDynamics (const DynamicsCircuits& circuits, std::span<DynamicsChannel> channels,
                      std::span<const DynamicsRows> rows, int n) noexcept;

} // namespace tarvik
