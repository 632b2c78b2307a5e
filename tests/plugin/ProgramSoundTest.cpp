// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Instruments.h"
#include "tests/support/StripTestTools.h"

#include <algorithm>
#include <utility>

namespace tarvik
{

using namespace test;

namespace
{
double rmsDb (const Signal& signal) { return 20.0 * std::log10 (rmsOfEnd (signal, signal.size())); }
} // namespace

/** Who steps through the programs finds each at a level to work with: synthetic sounds with peaks at -12 dBFS come out
    at most 8 dB quieter and 6 dB louder. The programs are made to lie close together: none is meant to boost or cut as
    a whole, but the vocal programs cut the bass of a bass, and the kick programs close on a voice's rests.
*/
TEST (ProgramSound, EveryProgramIsHeardOnDrumsBassAndVoice)
{
    const std::pair<const char*, Signal> sounds[] = { { "drums", instruments::drumLoop() },
                                                      { "bass", instruments::bassLine() },
                                                      { "voice", instruments::voice() } };
    const auto strip = makeNoiselessStrip (1);
    strip->prepareToPlay (instruments::sampleRate, 256);

    for (int program = 0; program < strip->getNumPrograms(); ++program)
    {
        strip->setCurrentProgram (program);

        for (const auto& [name, sound] : sounds)
        {
            strip->prepareToPlay (instruments::sampleRate, 256);
            const auto out = firstOf (process (*strip, { sound }, 256));
            const auto changeDb = rmsDb (out) - rmsDb (sound);
            EXPECT_TRUE (changeDb > -8.0 && changeDb < 6.0) << changeDb << " dB, program " << program << ", " << name;
            const auto [lowest, highest] = std::minmax_element (out.begin(), out.end());
            EXPECT_LT (std::max (-*lowest, *highest), 1.0f) << program << ", " << name;
        }
    }
}

/** Under a low sine no two neighbouring samples lie further apart than the sine at the loudest level nearby would have
    them, with a tenth for the saturation's harmonics, one step of two things that change places in 4800, and one of the
    480 in which the tail of the equaliser's old filter fades. One program sets "EQ Post", which exchanges two stages at
    once: the few samples around an exchange, as long as the oversampling's filters are, may jump.
*/
TEST (ProgramSound, AChangeOfProgramWhilePlayingMakesNoStep)
{
    constexpr unsigned seed = 7;
    constexpr int eqPostProgram = 16;
    constexpr std::size_t stretch = 24000; // a change and what the compressor makes of it
    constexpr std::size_t cycle = 512;     // a little more than one
    constexpr double hz = 97.3;
    constexpr auto allowed =
        static_cast<float> (1.1 * instruments::twoPi * hz / instruments::sampleRate + 2.0 / 4800.0 + 1.0 / 480.0);
    constexpr std::size_t aroundExchange = 2 * 52;
    const auto strip = makeNoiselessStrip (1);
    strip->prepareToPlay (instruments::sampleRate, 256);
    std::mt19937 random (seed);
    Signal all;
    std::vector<bool> exchanges; // by change
    bool wasPost = false;

    for (int change = 0; change < 100; ++change)
    {
        // First each to the next, then anywhere.
        const auto program = change < 26 ? change : static_cast<int> (random() % 26);
        const auto isPost = program == eqPostProgram;
        exchanges.push_back (isPost != wasPost);
        wasPost = isPost;
        strip->setCurrentProgram (program);
        Signal tone (stretch);

        for (std::size_t i = 0; i < stretch; ++i)
            tone[i] = 0.1f
                      * static_cast<float> (std::sin (instruments::twoPi * hz * static_cast<double> (all.size() + i)
                                                      / instruments::sampleRate));

        const auto out = firstOf (process (*strip, { tone }, 256));
        all.insert (all.end(), out.begin(), out.end());
    }

    float peak = 0.0f;

    for (std::size_t i = 1; i < all.size(); ++i)
    {
        if (i % (cycle / 4) == 1)
        {
            const auto from = all.begin() + static_cast<std::ptrdiff_t> (i - std::min (i, cycle));
            const auto length = std::min<std::ptrdiff_t> (2 * cycle, all.end() - from);
            const auto [lowest, highest] = std::minmax_element (from, from + length);
            peak = std::max (-*lowest, *highest);
        }

        // Behind the start there is no level yet to go by.
        if (i <= cycle || (exchanges[i / stretch] && i % stretch < aroundExchange))
            continue;

        ASSERT_LT (std::abs (all[i] - all[i - 1]), allowed * peak)
            << "change " << i / stretch << ", sample " << i % stretch << ", seed " << seed;
    }
}

} // namespace tarvik
