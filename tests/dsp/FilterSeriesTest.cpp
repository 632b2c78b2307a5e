// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/FilterSeries.h"

#include "dsp/AnalogBiquad.h"
#include "dsp/SmoothedIppIIR.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

namespace tarvik
{
namespace
{
using Filter = SmoothedIppIIR<float, MZTiCoefs<double, 2, 2>>;
using Series = FilterSeries<Filter, Filter>;
using test::noise;

constexpr double rate = 48000.0;
constexpr int longestBlock = 256;

void change (Filter& filter, unsigned omega0)
{
    const auto lowPass = AnalogBiquad::make (AnalogBiquad::Type::lowPass, 2.0, 1.0, 1.0, 100.0 + omega0);
    filter.setAnalogue (lowPass.numerator, lowPass.denominator);
    filter.bringInCoefficients();
}

TEST (FilterSeries, ChannelsTogetherGiveTheBitsOfEachAloneCutAnywhere)
{
    Series wide; // two channels in one object, with the changes of the first side
    std::array<Series, 2> together, alone;
    const std::array pointers { &together[0], &together[1] };
    std::mt19937 random (3);
    wide.prepare (rate, 2, longestBlock);

    for (std::size_t side = 0; side < 2; ++side)
        for (auto* const series : { &together[side], &alone[side] })
            series->prepare (rate, 1, longestBlock);

    for (int block = 0; block < 2000; ++block)
    {
        // A crossfade takes some 40 of these blocks: at times nothing moves, at times one filter, at times all.
        if (const auto chance = random() % 200; chance < 4)
        {
            const auto omega0 = static_cast<unsigned> (random() % 3000);
            const auto turns = random() % 4 == 0, isOn = random() % 2 == 0;
            const auto side = chance % 2;

            for (auto* const series : { &together[side], &alone[side], &wide })
                if (auto& filter = chance < 2 ? series->first : series->second; series != &wide || side == 0)
                    turns ? filter.setOn (isOn) : change (filter, omega0);
        }

        const auto n = static_cast<int> (random() % (longestBlock + 1));
        std::array rows { noise (n, random()), noise (n, random()) };
        auto expected = rows, wideRows = rows;
        Series::process (pointers, std::identity(), std::array { rows[0].data(), rows[1].data() }.data(), n);
        wide.process (std::array { wideRows[0].data(), wideRows[1].data() }.data(), n);

        // One after the other and cut elsewhere: what is heard depends on when a change comes, not on the blocks.
        for (std::size_t side = 0; side < 2; ++side)
            test::inPieces (expected[side].size(), { 37, 1, 100 },
                            [&] (std::size_t begin, int length)
                            { alone[side].process (std::array { expected[side].data() + begin }.data(), length); });

        ASSERT_EQ (rows, expected) << block;
        ASSERT_EQ (wideRows[0], expected[0]) << block;
    }
}
} // namespace
} // namespace tarvik
