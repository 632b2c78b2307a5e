// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/CompressorCircuit.h"
#include "strip/Expander.h"
#include "strip/Limiter.h"
#include "strip/VcaCurve.h"

namespace tarvik
{

/** The parts that all channels have in common: coefficients only. */
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

/** One channel's rows of a slice, all but `gains` only read and finite. */
struct DynamicsRows
{
    const float* detector = nullptr;        ///< what compressor and limiter hear, before the gain element
    const float* gateKey = nullptr;         ///< read in gate mode: what the gate hears, before the gain element
    const double* attenuationsDb = nullptr; ///< read in expander mode: what the expander wants
    float* gains = nullptr;                 ///< goes out: the gain element's gain, about 31.6 at rest
};

/** Audio thread: runs the feedback loops of one or two channels over n samples, sample by sample. Two channels take
    little longer than one, since each waits for its own gain most of the time. */
void processDynamics (const DynamicsCircuits& circuits, DynamicsChannel* const* channels, const DynamicsRows* rows,
                      int numChannels, int n) noexcept;

} // namespace tarvik
