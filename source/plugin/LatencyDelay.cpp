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
    if (n <= 0)
        return;

    auto* const history = buffer.data() + static_cast<std::size_t> (channel) * 2 * length;
    auto* const fresh = history + length; // behind the history, so that the two read as one stretch

    if (n < length)
    {
        std::copy_n (row, n, fresh);

        if (delay > 0)
            std::copy_n (fresh - delay, n, row);

        std::copy (history + n, fresh + n, history);
    }
    else
    {
        std::copy_n (row + n - length, length, fresh);

        if (delay > 0)
        {
            std::copy_backward (row, row + n - delay, row + n);
            std::copy_n (history + length - delay, delay, row);
        }

        std::copy_n (fresh, length, history);
    }
}

} // namespace tarvik
