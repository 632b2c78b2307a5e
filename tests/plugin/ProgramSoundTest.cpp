// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Instruments.h"
#include "tests/support/StripTestTools.h"

#include <utility>

namespace tarvik
{

using namespace test;

namespace
{
double rmsDb (const Signal& signal)
{
    double sum = 0.0;

    for (const auto sample : signal)
        sum += static_cast<double> (sample) * static_cast<double> (sample);

    return 10.0 * std::log10 (sum / static_cast<double> (signal.size()) + 1e-30);
}

std::unique_ptr<Tarvik41Processor> makeQuietStrip()
{
    auto strip = makeStrip (1);
    strip->analogSetting().setValue (false);
    strip->prepareToPlay (instruments::sampleRate, 256);
    return strip;
}

/** The largest absolute value and the largest step between neighbours of a stretch. */
std::pair<float, float> peakAndStep (const Signal& signal, std::size_t from, std::size_t to)
{
    float peak = 0.0f, step = 0.0f;

    for (auto i = from + 1; i < to; ++i)
    {
        peak = std::max (peak, std::abs (signal[i]));
        step = std::max (step, std::abs (signal[i] - signal[i - 1]));
    }

    return { peak, step };
}
} // namespace

/** A user who steps through the programs finds each at a level to work with. */
TEST (ProgramSound, EveryProgramIsHeardOnDrumsBassAndVoice)
{
    const std::pair<const char*, Signal> sounds[] = { { "drums", instruments::drumLoop() },
                                                      { "bass", instruments::bassLine() },
                                                      { "voice", instruments::voice() } };
    const auto strip = makeQuietStrip();

    for (int program = 0; program < strip->getNumPrograms(); ++program)
    {
        strip->setCurrentProgram (program);

        for (const auto& [name, sound] : sounds)
        {
            strip->prepareToPlay (instruments::sampleRate, 256);
            const auto out = firstOf (process (*strip, { sound }, 256));
            const auto [peak, step] = peakAndStep (out, 0, out.size());
            const auto change = rmsDb (out) - rmsDb (sound);
            ASSERT_TRUE (std::isfinite (change)) << program << ", " << name;
            std::printf ("%d %s %.1f peak %.2f\n", program, name, change, static_cast<double> (peak));
        }
    }
}

TEST (ProgramSound, AChangeOfProgramWhilePlayingDoesNotClick)
{
    const auto strip = makeQuietStrip();
    constexpr std::size_t stretch = 24000;
    std::int64_t position = 0;
    std::mt19937 random (7);

    for (int change = 0; change < 60; ++change)
    {
        // At first from each to the next, then anywhere.
        const auto program = change < 26 ? change : static_cast<int> (random() % 26);
        Signal tone (stretch);

        for (auto& sample : tone)
            sample = 0.1f
                     * static_cast<float> (std::sin (instruments::twoPi * 97.3 * static_cast<double> (position++)
                                                     / instruments::sampleRate));

        const auto before = process (*strip, { tone }, 256)[0];
        for (auto& sample : tone)
            sample = 0.1f
                     * static_cast<float> (std::sin (instruments::twoPi * 97.3 * static_cast<double> (position++)
                                                     / instruments::sampleRate));
        strip->setCurrentProgram (program);
        const auto after = process (*strip, { tone }, 256)[0];
        const auto [p0, s0] = peakAndStep (before, stretch / 2, stretch);
        const auto [p1, s1] = peakAndStep (after, 0, stretch / 2);
        const auto [p2, s2] = peakAndStep (after, stretch / 2, stretch);
        double worst = 0;
        std::size_t at = 0;
        Signal all = before;
        all.insert (all.end(), after.begin(), after.end());
        for (std::size_t i = stretch; i < stretch + stretch / 2; ++i)
        {
            const auto [pl, sl] = peakAndStep (all, i - 500, i + 500);
            (void) sl;
            const auto r = static_cast<double> (std::abs (all[i] - all[i - 1]) / pl);
            if (r > worst)
            {
                worst = r;
                at = i - stretch;
            }
        }
        std::printf ("-> %d: rest %.4f/%.4f=%.4f  during %.4f/%.4f=%.4f local %.4f @%zu after %.4f/%.4f=%.4f\n",
                     program, static_cast<double> (s0), static_cast<double> (p0), static_cast<double> (s0 / p0),
                     static_cast<double> (s1), static_cast<double> (p1), static_cast<double> (s1 / p1), worst, at,
                     static_cast<double> (s2), static_cast<double> (p2), static_cast<double> (s2 / p2));
    }
}

} // namespace tarvik
