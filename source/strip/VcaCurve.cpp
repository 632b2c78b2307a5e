// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/VcaCurve.h"

#include <algorithm>
#include <limits>

namespace tarvik
{

namespace
{
// Position in the table, counted in points: ((-9.914435 - (volts - 12.32) * 0.087612525) + 11) * 10.000001. Scale
// and gains are fitted.
constexpr double scaleAtReference = -9.914435;
constexpr double referenceVolts = 12.32;
constexpr double scalePerVolt = 0.087612525;
constexpr double scaleOfFirstPoint = -11.0;
constexpr double pointsPerScale = 10.000001;

constexpr std::array<double, VcaCurve::numPoints> gains {
    0.74419,  0.80251,  0.87547,  0.96114,  1.05755,  1.16275,  1.27479,  1.39049, 1.53093,
    1.74648,  2.02748,  2.40933,  2.92279,  3.6334,   4.67308,  6.23261,  8.2961,  11.36658,
    14.94594, 19.19445, 24.03922, 28.63725, 33.62392, 39.25255, 45.62331,
};

constexpr double positionAtZeroVolts =
    (scaleAtReference + referenceVolts * scalePerVolt - scaleOfFirstPoint) * pointsPerScale;
constexpr double positionPerVolt = -scalePerVolt * pointsPerScale;

constexpr double voltsAtPosition (double position) noexcept
{
    return (position - positionAtZeroVolts) / positionPerVolt;
}

constexpr auto segments = []
{
    constexpr auto infinity = std::numeric_limits<double>::infinity();
    std::array<VcaCurve::Segment, VcaCurve::numSegments> lines;

    for (std::size_t k = 0; k < lines.size(); ++k)
    {
        const auto first = static_cast<double> (k);
        const auto gainPerPoint = gains[k + 1] - gains[k];
        lines[k].offset = gains[k] + (positionAtZeroVolts - first) * gainPerPoint;
        lines[k].slope = positionPerVolt * gainPerPoint;
        lines[k].lowestVolts = k + 1 < lines.size() ? voltsAtPosition (first + 1.0) : -infinity;
        lines[k].highestVolts = k > 0 ? voltsAtPosition (first) : infinity;
    }

    return lines;
}();
} // namespace

const VcaCurve::Segment& VcaCurve::getSegment (double volts) noexcept
{
    constexpr auto last = static_cast<double> (numSegments - 1);
    const auto position = positionAtZeroVolts + positionPerVolt * volts;
    const auto held = position < last ? std::max (position, 0.0) : last; // NaN fails the comparison: last
    return segments[static_cast<std::size_t> (held)];
}

double VcaCurve::getZeroGainVolts() noexcept { return -segments.front().offset / segments.front().slope; }

} // namespace tarvik
