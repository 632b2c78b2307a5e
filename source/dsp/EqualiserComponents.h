// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/ComponentTable.h"

#include <array>

namespace tarvik
{
/** The components of the equaliser: ohms, farads and henries. A switch picks one of several rows of the same name.

    "lowInductor" and "inductorRes" keep a place in the list, but no design reads them: on every channel the inductor of
    the low boost is 10 H and the loss of the mid inductor 1 ohm. */
inline constexpr std::array<Component, 50> equaliserComponents { {
    { "lowCutShunt", 180e3, 0.01 },    // 0
    { "outputShunt", 5.1e3, 0.01 },    // 1
    { "lowGainPot", 50e3, 0.01 },      // 2
    { "lowInductor", 10.0, 0.05 },     // 3
    { "lowCutCap", 22e-9, 0.05 },      // 4, lowFreq 9: row and position run against each other
    { "lowCutCap", 33e-9, 0.05 },      // 5
    { "lowCutCap", 47e-9, 0.05 },      // 6
    { "lowCutCap", 68e-9, 0.05 },      // 7
    { "lowCutCap", 110e-9, 0.05 },     // 8
    { "lowCutCap", 20e-6, 0.05 },      // 9, lowFreq 4
    { "lowBoostCap", 680e-9, 0.05 },   // 10, lowFreq 3
    { "lowBoostCap", 180e-9, 0.05 },   // 11
    { "lowBoostCap", 47e-9, 0.05 },    // 12
    { "lowBoostCap", 22e-9, 0.05 },    // 13, lowFreq 0
    { "seriesRes", 22e3, 0.01 },       // 14
    { "cutArmRes", 470.0, 0.01 },      // 15
    { "midGainPot", 25e3, 0.01 },      // 16
    { "inductorRes", 1.0, 0.05 },      // 17
    { "midInductor", 0.68, 0.05 },     // 18, midFreq 0
    { "midInductor", 0.68, 0.05 },     // 19
    { "midInductor", 0.68, 0.05 },     // 20
    { "midInductor", 0.22, 0.05 },     // 21
    { "midInductor", 0.22, 0.05 },     // 22
    { "midInductor", 0.22, 0.05 },     // 23
    { "midInductor", 0.22, 0.05 },     // 24
    { "midInductor", 0.22, 0.05 },     // 25, midFreq 7
    { "midCap", 78e-9, 0.05 },         // 26, midFreq 0
    { "midCap", 36e-9, 0.05 },         // 27
    { "midCap", 18e-9, 0.05 },         // 28
    { "midCap", 32e-9, 0.05 },         // 29
    { "midCap", 12e-9, 0.05 },         // 30
    { "midCap", 10e-9, 0.05 },         // 31
    { "midCap", 4.7e-9, 0.05 },        // 32
    { "midCap", 3.3e-9, 0.05 },        // 33, midFreq 7
    { "highCutCap", 10e-9, 0.05 },     // 34, highGain 0
    { "highCutCap", 8.2e-9, 0.05 },    // 35
    { "highCutCap", 6.8e-9, 0.05 },    // 36
    { "highCutCap", 4.3e-9, 0.05 },    // 37
    { "highCutCap", 2.2e-9, 0.05 },    // 38
    { "highCutCap", 1e-12, 0.05 },     // 39, highGain 5: "0 dB" leaves a trace of it
    { "highBoostCap", 560e-12, 0.05 }, // 40, highGain 6
    { "highBoostCap", 1e-9, 0.05 },    // 41
    { "highBoostCap", 1.5e-9, 0.05 },  // 42
    { "highBoostCap", 2.2e-9, 0.05 },  // 43
    { "highBoostCap", 3.3e-9, 0.05 },  // 44, highGain 10
    { "highBoostRes", 56e3, 0.01 },    // 45, highGain 6
    { "highBoostRes", 33e3, 0.01 },    // 46
    { "highBoostRes", 15e3, 0.01 },    // 47
    { "highBoostRes", 8.2e3, 0.01 },   // 48
    { "highBoostRes", 3.3e3, 0.01 },   // 49, highGain 10
} };
} // namespace tarvik
