// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <hwy/targets.h>

namespace tarvik
{
/** Where Highway keeps the choice that selectInstructionSet() makes. Asked for once: its own macro asks at every call,
    and a slice makes some twenty. Not from static initialisers. */
inline const hwy::ChosenTarget& chosenInstructionSet = hwy::GetChosenTarget();
} // namespace tarvik

/** The function that HWY_EXPORT (function) has named, on the chosen instruction set. Any thread. */
#if (HWY_TARGETS & (HWY_TARGETS - 1)) == 0 // compiled for a single set, whose function is the table's only one
#define TARVIK_DISPATCH(function) (*HWY_DISPATCH_TABLE (function)[0])
#else
#define TARVIK_DISPATCH(function) (*HWY_DISPATCH_TABLE (function)[tarvik::chosenInstructionSet.GetIndex()])
#endif
