// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "strip/ParameterSnapshot.h"

namespace tarvik
{

/** The harmonic stage behind the equaliser. It has no content yet and passes audio unchanged. */
class SaturationSection
{
public:
    void prepare (double, int, int) {}

    void reset() noexcept {}

    /** Any thread, one at a time. */
    void update (const ParameterSnapshot&, bool) noexcept {}

    /** Audio thread: one channel of n samples, in place. */
    void process (int, float*, int) noexcept {}
};

} // namespace tarvik
