// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/Expander.h"

#include <gtest/gtest.h>

namespace tarvik
{
namespace
{
TEST (Expander, ActivityIsAShareOfTheRange)
{
    const auto activity = [] (Expander::Mode mode, float rangeDb)
    {
        Expander expander;
        expander.set ({ -20.0f, rangeDb, 1, 0.3f, static_cast<int> (mode), false, false });
        return expander.getActivity (5.0);
    };

    EXPECT_DOUBLE_EQ (activity (Expander::Mode::gate, -8.0f), 0.625);
    EXPECT_DOUBLE_EQ (activity (Expander::Mode::expander, -4.0f), 1.25) << "not limited to 1";
    EXPECT_EQ (activity (Expander::Mode::expander, 0.0f), 0.0);
    EXPECT_EQ (activity (Expander::Mode::off, -20.0f), 0.0);
}
} // namespace
} // namespace tarvik
