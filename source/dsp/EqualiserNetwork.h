// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/ComponentTable.h"
#include "dsp/EQControls.h"

#include <array>

namespace tarvik
{
/** H(s) = numerator / denominator of the equaliser's network, coefficients of s^5 to s^0. Coefficients of powers beyond
    the network's order are exactly 0; all others are sums of products of element values, each 0 or above. Where the
    wiring has a factor in common between numerator and denominator, as around a mid pot at 0, it stays in both. */
struct EqualiserResponse
{
    std::array<double, 6> numerator {};
    std::array<double, 6> denominator {};
};

/** Solves the network: output voltage without load over input voltage, with the components of the table's active channel;
    the table is made from equaliserComponents. Positions outside a control's range are limited to it, and a pot at NaN
    counts as 0: whatever comes in, the coefficients are finite. Any thread; well below a microsecond.

    low cut      in o---- lowCutCap ----+---- series arm ----+----o out
                                        |                    |
                                   lowCutShunt           shunt arm
                                        |                    |
                                       gnd                  gnd

    low boost    in o------------------------ series arm ----+----o out
                                                             |
                                                         shunt arm
                                                             |
                                                            gnd

    mid branch   inductorRes + midInductor + midCap in series
    mid pot      the part across which the mid branch lies, in series with the rest
    series arm   mid boost: the mid pot; mid cut: seriesRes. Across it, for a high boost, highBoostRes + highBoostCap;
                 for a low boost, the low gain pot + lowInductor + lowBoostCap.
    shunt arm    outputShunt. Across it, for a high cut, highCutCap; for a mid cut, cutArmRes + the mid pot. */
EqualiserResponse solveEqualiserNetwork (const ComponentTable& table, const EQControls& controls) noexcept;
} // namespace tarvik
