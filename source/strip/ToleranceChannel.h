// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/ComponentTable.h"
#include "strip/ParameterSnapshot.h"

#include <algorithm>

namespace tarvik
{

/** The console channel, counted from 0, that an audio channel is: the same on every side when linked, otherwise
    neighbours, where the last side shares the last channel.
*/
inline int toleranceChannelOf (const ParameterSnapshot& snapshot, int audioChannel) noexcept
{
    const auto wanted = snapshot.tolChannel - 1 + (snapshot.tolLink ? 0 : audioChannel);
    return std::clamp (wanted, 0, ComponentTable::numChannels - 1);
}

} // namespace tarvik
