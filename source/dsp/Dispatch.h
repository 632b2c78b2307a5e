// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <hwy/targets.h>

namespace tarvik
{
/** Where Highway keeps the choice that selectInstructionSet() makes. Asked for once: its own macro asks at every call,
    which costs as much as a short row's arithmetic. */
inline const hwy::ChosenTarget& chosenInstructionSet = hwy::GetChosenTarget();
} // namespace tarvik

/** The function that HWY_EXPORT (function) has named, on the chosen instruction set. Any thread. */
#if (HWY_TARGETS & (HWY_TARGETS - 1)) == 0
#define TARVIK_DISPATCH(function) HWY_DYNAMIC_DISPATCH (function)
#else
#define TARVIK_DISPATCH(function) (*HWY_DISPATCH_TABLE (function)[tarvik::chosenInstructionSet.GetIndex()])
#endif
