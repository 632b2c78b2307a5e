// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik::stateSchema
{

// The names of a saved project: a document <Tarvik41Channel>, with one attribute per setting under its key, and one
// child per slot with one attribute per parameter under its ID. None of them may ever change. "Version" and "BuildDate"
// are written for people and never read.
inline constexpr const char* root = "Tarvik41Channel";
inline constexpr const char* version = "Version";
inline constexpr const char* buildDate = "BuildDate";
inline constexpr const char* currentSlot = "currentData";

/** In the order of `settingIndex`. */
inline constexpr const char* settingKeys[] = { "Calibration", "Oversampling",       "Analog",
                                               "UIZoom",      "LimiterSensitivity", "MeterMode" };
inline constexpr const char* slotTags[] = { "data0", "data1" }; ///< Of slot A and slot B.

} // namespace tarvik::stateSchema
