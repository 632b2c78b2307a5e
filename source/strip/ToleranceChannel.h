// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/ComponentTable.h"
#include "strip/ParameterSnapshot.h"

#include <algorithm>

namespace tarvik
{

/** The console channel, counted from 0, that an audio channel asks for: the same on every side when linked, otherwise
    neighbours in turn. It may lie one beyond the last; a stage compares this number with the channel it has, and takes
    the usable one, so that the last side shares the last channel.
*/
inline int wantedToleranceChannel (const ParameterSnapshot& snapshot, int audioChannel) noexcept
{
    return snapshot.tolChannel - 1 + (snapshot.tolLink ? 0 : audioChannel);
}

inline int usableToleranceChannel (int wanted) noexcept
{
    return std::clamp (wanted, 0, ComponentTable::numChannels - 1);
}

} // namespace tarvik
