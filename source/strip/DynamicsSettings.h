// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/CompressorCircuit.h"
#include "strip/Expander.h"
#include "strip/ParameterSnapshot.h"

namespace tarvik
{

/** What the dynamics are told, read from the snapshot in one go; independent of the sample rate. */
struct DynamicsSettings
{
    bool isIn = false;
    bool hearsSidechain = false;     ///< compressor and limiter
    bool gateHearsSidechain = false; ///< the gate; the expander never does
    bool isLimiterOn = false;
    bool isNiveauOn = false;
    float highPassHz = 0.0f;
    float sensitivity = 0.0f; ///< linear gain before the detector
    double mix = 0.0;         ///< 0 dry to 1 compressed; 0 while not in
    double inputGain = 0.0;   ///< linear
    double outputGain = 0.0;  ///< linear
    CompressorCircuit::Controls compressor {};
    Expander::Controls expander {};

    bool operator== (const DynamicsSettings&) const = default;
};

/** Any thread. */
DynamicsSettings makeDynamicsSettings (const ParameterSnapshot& snapshot) noexcept;

} // namespace tarvik
