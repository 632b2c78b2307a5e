// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>

namespace tarvik
{

/** The gain element that compressor, limiter and expander share: control voltage in, linear gain out.

    The curve is a table of gains over the element's own control scale, joined by straight lines; the outer lines go on
    beyond the table's ends. More voltage means less gain. Since the way from voltage to the control scale is straight
    too, each line is kept as gain = offset + slope x volts. Everything here is constant; any thread.
*/
class VcaCurve
{
public:
    /** One line of the curve, good for lowestVolts <= volts < highestVolts; or one for each of several channels. */
    template <typename Number>
    struct Lines
    {
        Number offset {};
        Number slope {};
        Number lowestVolts {};
        Number highestVolts {};
    };

    using Segment = Lines<double>;

    static constexpr std::size_t numPoints = 25;
    static constexpr std::size_t numSegments = numPoints - 1;

    /** The line that a voltage falls on; a NaN counts as very low. */
    static const Segment& getSegment (double volts) noexcept;

    /** Where the line through the two lowest gains reaches 0; beyond it the loop's feedback would change its sign. */
    static double getZeroGainVolts() noexcept;
};

} // namespace tarvik
