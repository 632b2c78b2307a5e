// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace tarvik::clicks
{

/** A Butterworth high pass of the 12th order, by the bilinear transform: 72 dB an octave, so that two octaves below its
    edge nothing is left of a tone but what was added to it. 64-bit. */
class SteepHighPass
{
public:
    /** The edge as a part of the sample rate, below a half. */
    explicit SteepHighPass (double edge)
    {
        const auto k = std::tan (std::numbers::pi * edge);

        for (std::size_t i = 0; i < sections.size(); ++i)
        {
            const auto angle =
                std::numbers::pi * static_cast<double> (2 * i + 1) / static_cast<double> (4 * sections.size());
            const auto perQ = 2.0 * std::cos (angle);
            const auto a0 = 1.0 + k * perQ + k * k;
            sections[i] = { 1.0 / a0, 2.0 * (k * k - 1.0) / a0, (1.0 - k * perQ + k * k) / a0 };
        }
    }

    double step (double x) noexcept
    {
        for (auto& s : sections)
        {
            const auto y = s.b * x + s.z1;
            s.z1 = -2.0 * s.b * x - s.a1 * y + s.z2;
            s.z2 = s.b * x - s.a2 * y;
            x = y;
        }

        return x;
    }

private:
    struct Section
    {
        double b = 1.0, a1 = 0.0, a2 = 0.0, z1 = 0.0, z2 = 0.0;
    };

    std::array<Section, 6> sections;
};

} // namespace tarvik::clicks
