// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/ParameterSnapshot.h"

namespace tarvik
{

/** Compressor, limiter and expander. It has no content yet: it passes audio unchanged and reports no gain reduction. */
class DynamicsSection
{
public:
    void prepare (double, int, int) {}

    void release() {}

    void reset() noexcept {}

    /** Any thread, one at a time. */
    void update (const ParameterSnapshot&, bool) noexcept {}

    /** Audio thread: main channels first, numSidechain side chain channels behind them, n samples each; the main
       channels are changed in place.
    */
    void process (float* const*, int, int) noexcept {}

    /** Audio thread: the section's read-outs go into their fields. */
    void writeReadOuts (ParameterSnapshot&) const noexcept {}
};

} // namespace tarvik
