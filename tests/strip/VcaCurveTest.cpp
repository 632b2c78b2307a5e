// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/VcaCurve.h"

#include "PlainDynamics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tarvik
{
namespace
{
double gainAt (double volts) { return VcaCurve::getSegment (volts).gainAt (volts); }

// The voltage at which the control scale stands at -11 + 0.1 k.
double voltsAtPoint (std::size_t k) { return 12.32 - (9.914435 - 11.0 + 0.1 * static_cast<double> (k)) / 0.087612525; }

TEST (VcaCurve, LinesOfKeptSegmentsAreThePlainInterpolation)
{
    for (auto volts = -5.0; volts < 39.0; volts += 0.00123)
    {
        ASSERT_TRUE (VcaCurve::getSegment (volts).contains (volts)) << volts;
        ASSERT_NEAR (gainAt (volts), plain::Dynamics::curve (volts), 1e-10) << volts;
    }
}

TEST (VcaCurve, EndsGoOnAsStraightLinesAndGainReachesZeroOnlyAtTheCeiling)
{
    const auto ceiling = VcaCurve::getZeroGainVolts();
    EXPECT_NEAR (ceiling, plain::Dynamics::ceiling, 1e-9);
    EXPECT_NEAR (gainAt (ceiling), 0.0, 1e-12);
    EXPECT_GT (gainAt (ceiling - 0.01), 0.0);

    const auto low = voltsAtPoint (24), step = voltsAtPoint (23) - low;
    EXPECT_NEAR (gainAt (low - 3.0 * step), 45.62331 + 3.0 * (45.62331 - 39.25255), 1e-4);
}

TEST (VcaCurve, VoltagesOutOfAllReasonStillFindASegment)
{
    constexpr auto infinity = std::numeric_limits<double>::infinity();

    EXPECT_LT (gainAt (1e300), 0.0);
    EXPECT_GT (gainAt (-1e300), 0.0);
    EXPECT_TRUE (VcaCurve::getSegment (infinity).highestVolts == infinity);
    EXPECT_TRUE (VcaCurve::getSegment (-infinity).lowestVolts == -infinity);
    EXPECT_TRUE (std::isnan (gainAt (std::nan ("")))); // found, and not hidden
}
} // namespace
} // namespace tarvik
