// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/EqualiserSection.h"

#include "dsp/ConsoleEQ.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace tarvik
{
namespace
{
constexpr double rate = 8000.0;
constexpr float fadeLength = 800.0f;

/** The section as it runs, cut into blocks, and its equaliser by itself, which never stops. */
struct Pair
{
    explicit Pair (int lengthOfBlocks) : blockLength (lengthOfBlocks)
    {
        section.prepare (rate, 1, 256);
        alone.prepare (rate, 256);
        update();
    }

    void update()
    {
        section.update (snapshot, false);
        alone.update (equaliserControls (snapshot, 0), false);
    }

    /** A low tone goes on; returns what both make of it. */
    std::array<test::Signal, 2> process (double seconds)
    {
        test::Signal tone (static_cast<std::size_t> (seconds * rate));

        for (auto& sample : tone)
            sample = std::sin (0.05f * static_cast<float> (position++));

        std::array both { tone, tone };
        auto& [heard, wet] = both;

        for (std::size_t done = 0; done < tone.size(); done += static_cast<std::size_t> (blockLength))
        {
            auto* const row = heard.data() + done;
            section.process (&row, std::min (blockLength, static_cast<int> (tone.size() - done)));
        }

        for (std::size_t done = 0; done < tone.size(); done += 256)
            alone.process (wet.data() + done, std::min (256, static_cast<int> (tone.size() - done)));

        return both;
    }

    const int blockLength;
    ParameterSnapshot snapshot;
    EqualiserSection section;
    ConsoleEQ alone;
    std::uint32_t position = 0;
};

TEST (EqualiserSection, ComesBackAsIfItHadNeverStoppedOrAfterARestClear)
{
    for (const auto blockLength : { 256, 100 })
        for (const auto secondsOut : { 4.9, 5.2 })
        {
            Pair pair (blockLength);
            auto& snapshot = pair.snapshot;
            const auto turn = [&] (bool isIn)
            {
                snapshot.equalizer = isIn;
                pair.update();
            };
            snapshot.lowFreq = 3;
            turn (true);
            pair.process (0.3);
            turn (false);
            const auto dry = pair.process (0.1 + secondsOut)[0];
            EXPECT_EQ (dry.back(), std::sin (0.05f * static_cast<float> (pair.position - 1)));
            snapshot.lowGain = 0.8f;
            turn (true);

            if (secondsOut > 5.0)
                pair.alone.reset();

            const auto start = pair.position;
            const auto [heard, wet] = pair.process (0.3);

            for (std::size_t i = 0; i < heard.size(); ++i)
            {
                constexpr auto makeupGain = static_cast<float> (ConsoleEQ::makeupGain);
                const auto share = std::min (1.0f, static_cast<float> (i + 1) / fadeLength);
                const auto tone = std::sin (0.05f * static_cast<float> (start + i));
                ASSERT_NEAR (heard[i], share * makeupGain * wet[i] + (1.0f - share) * tone, 2e-6f)
                    << i << " after " << secondsOut << " s, blocks of " << blockLength;
            }
        }
}
} // namespace
} // namespace tarvik
