// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/LatencyDelay.h"

#include <algorithm>
#include <cstddef>

namespace tarvik
{

void LatencyDelay::prepare (int numChannels)
{
    numRows = std::max (0, numChannels);
    buffer.assign (static_cast<std::size_t> (numRows) * 2 * length, 0.0f);
}

void LatencyDelay::process (int channel, float* row, int n, int delay) noexcept
{
    auto* const history = buffer.data() + static_cast<std::size_t> (channel) * 2 * length;
    auto* const fresh = history + length; // after the history, so that the two read as one stretch

    for (int piece = 0; n > 0; row += piece, n -= piece)
    {
        piece = std::min (n, static_cast<int> (length));
        std::copy_n (row, piece, fresh);

        if (delay > 0)
            std::copy_n (fresh - delay, piece, row);

        std::copy (history + piece, fresh + piece, history);
    }
}

} // namespace tarvik
