// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace tarvik
{
/** The positions of the equaliser's switches and pots on one channel; at first all neutral, as on a new strip. */
struct EQControls
{
    std::int32_t highFreq = 1;         ///< 0 to 2: "6 kHz", "10 kHz", "14 kHz"
    std::int32_t highGain = 5;         ///< 0 to 10: "-10 dB" to "10 dB" in steps of 2; 0 to 4 cut, 6 to 10 boost
    std::int32_t midFreq = 4;          ///< 0 to 7: "700 Hz" to "6000 Hz"
    float midGain = 0.0f;              ///< pot, 0 to 1
    std::int32_t midMode = 1;          ///< 0 "Cut", 1 "Boost"
    std::int32_t lowFreq = 4;          ///< 0 to 3: boost at "300 Hz" to "60 Hz"; 4 to 9: cut from "0 dB" to "-15 dB"
    float lowGain = 0.0f;              ///< pot, 0 to 1; without effect on a low cut
    std::int32_t highPass = 0;         ///< 0 "OFF", 1 "40 Hz", 2 "80 Hz"
    std::int32_t toleranceChannel = 0; ///< 0 to 31: whose components
};
} // namespace tarvik
