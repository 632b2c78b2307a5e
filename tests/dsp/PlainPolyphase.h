// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tarvik::plain
{
// The rate conversion as its formulas stand, sums in 64 bits, from rest: what the fast kernels are measured against.
// `taps` is the filter at the high rate, without the gain of the way up.

inline std::vector<double> up (std::span<const float> taps, int factor, std::span<const float> in)
{
    const auto f = static_cast<std::size_t> (factor);
    std::vector<double> out (in.size() * f);

    for (std::size_t i = 0; i < out.size(); ++i)
        for (auto n = i % f; n < taps.size() && n <= i; n += f)
            out[i] += factor * static_cast<double> (taps[n]) * static_cast<double> (in[(i - n) / f]);

    return out;
}

inline std::vector<double> down (std::span<const float> taps, int factor, std::span<const float> in)
{
    const auto f = static_cast<std::size_t> (factor);
    std::vector<double> out (in.size() / f);

    for (std::size_t t = 0; t < out.size(); ++t)
        for (std::size_t n = 0; n < taps.size() && n <= t * f; ++n)
            out[t] += static_cast<double> (taps[n]) * static_cast<double> (in[t * f - n]);

    return out;
}
} // namespace tarvik::plain
