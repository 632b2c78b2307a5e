// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/BiquadCascade.h"

#include <array>
#include <cstddef>
#include <span>

namespace tarvik
{
/** Rows and their cascades, gathered from several owners until enough of them share the time of one, then filtered in
    place. Audio thread. */
class CascadePass
{
public:
    explicit CascadePass (int numSamples) noexcept : n (numSamples) {}

    /** Filters it at once, or with what comes later. */
    void add (BiquadCascade* cascade, float* row) noexcept
    {
        cascades[size] = cascade;
        rows[size] = row;

        if (++size == cascades.size())
            finish();
    }

    /** Filters what still waits. */
    void finish() noexcept
    {
        processSideBySide (std::span (cascades).first (size), rows.data(), n);
        size = 0;
    }

    const int n; ///< samples of each row

private:
    static constexpr std::size_t capacity = 4; // the most that run at once

    std::array<BiquadCascade*, capacity> cascades {};
    std::array<float*, capacity> rows {};
    std::size_t size = 0;
};
} // namespace tarvik
