// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/EqualiserComponents.h"
#include "dsp/EqualiserNetwork.h"
#include "tests/support/StripTestTools.h"

#include <complex>
#include <numeric>

namespace tarvik
{

using namespace test;

namespace
{
std::unique_ptr<Tarvik41Processor> makeEqualiserStrip (int factor)
{
    auto strip = makeNoiselessStrip (2, factor);
    setPlain (*strip, "compIn", 0.0f);
    return strip;
}

void drawSettings (Tarvik41Processor& strip, std::mt19937& random)
{
    for (const auto* const id : { "highFreq", "highGain", "midFreq", "midGain", "midMode", "lowFreq", "lowGain",
                                  "highPass", "TolChannel", "TolLink" })
        parameter (strip, id).setValueNotifyingHost (static_cast<float> (random() % 1001) / 1000.0f);
}

/** The circuit's own answer: high pass, network and make-up gain of one side. */
double expectedGain (const ParameterSnapshot& snapshot, int side, double hz)
{
    static const ComponentTable nominal (equaliserComponents);
    auto table = nominal;
    table.setActiveChannel (snapshot.tolChannel - 1 + (snapshot.tolLink ? 0 : side)); // held at the last one

    const auto network = solveEqualiserNetwork (table, { .highFreq = snapshot.highFreq,
                                                         .highGain = snapshot.highGain,
                                                         .midFreq = snapshot.midFreq,
                                                         .midGain = snapshot.midGain,
                                                         .midMode = snapshot.midMode,
                                                         .lowFreq = snapshot.lowFreq,
                                                         .lowGain = snapshot.lowGain });
    const std::complex<double> s (0.0, juce::MathConstants<double>::twoPi * hz);
    const auto valueAt = [s] (const auto& polynomial)
    {
        return std::accumulate (polynomial.begin(), polynomial.end(), 0.0 * s,
                                [s] (auto value, double coefficient) { return value * s + coefficient; });
    };
    auto gain = std::abs (valueAt (network.numerator) / valueAt (network.denominator)) * std::pow (10.0, 0.771);

    if (snapshot.highPass > 0)
    {
        const auto omega0 = snapshot.highPass == 1 ? 339.29200658769764 : 684.8671984825748;
        const auto q = snapshot.highPass == 1 ? 1.04 : 1.05;
        gain *= std::abs (s * s / (s * s + s * (omega0 / q) + omega0 * omega0));
    }

    return gain;
}
} // namespace

TEST (EqualiserSound, TheRunningStripIsItsCircuitOnBothSides)
{
    constexpr double lowestHz = 80.0; // the coupling capacitor rings for longer than the measurement lasts
    std::mt19937 random (3);

    for (const auto& [rate, factor] : { std::pair (44100.0, 1), { 96000.0, 1 }, { 48000.0, 2 } })
    {
        const auto strip = makeEqualiserStrip (factor);
        Signal impulse (static_cast<std::size_t> (0.75 * rate));
        impulse.at (0) = 1e-4f; // too quiet for the saturation

        // Half of the processing rate's Nyquist frequency, or where the sampler's pass band ends.
        const auto highestHz = factor == 1 ? 0.25 * rate : 0.4 * rate;

        for (int setting = 0; setting < 50; ++setting)
        {
            drawSettings (*strip, random);
            std::vector<Signal> responses[2];

            // The rest of the strip, whose components differ by console channel too, is divided out.
            for (const auto isIn : { 0u, 1u })
            {
                setPlain (*strip, "equalizer", static_cast<float> (isIn));
                strip->prepareToPlay (rate, 512);
                process (*strip, std::vector<Signal> (2, Signal (24000)), 512);
                responses[isIn] = process (*strip, { impulse, impulse }, 512);
            }

            for (int i = 0; i < 48; ++i)
            {
                const auto side = i % 2 == 0 ? 0u : 1u;
                const auto hz = lowestHz * std::pow (highestHz / lowestHz, i / 47.0);
                const auto at = [&] (const auto& response)
                { return spectrumAt (response[side], juce::MathConstants<double>::twoPi * hz / rate); };
                const auto expected = expectedGain (strip->currentSnapshot(), static_cast<int> (side), hz);

                // 0.03 dB for each of the two designs, and what rounding to float adds where little is left.
                ASSERT_NEAR (20.0 * std::log10 (std::abs (at (responses[1]) / at (responses[0])) / expected), 0.0,
                             0.06 + 20.0 * std::log10 (1.0 + 1e-4 / expected))
                    << hz << " Hz, side " << side << ", rate " << rate << ", factor " << factor << ", " << setting;
            }
        }
    }
}

TEST (EqualiserSound, NoControlClicksUnderASine)
{
    constexpr float level = 0.1f;
    constexpr int blockLength = 250, blocksToChange = 48; // a crossfade and what rings on after it
    constexpr std::size_t stretch = blockLength * blocksToChange;
    PlainValues changes; // places on their travels

    for (const auto* const id : { "highFreq", "highGain", "midFreq", "midGain", "midMode", "lowFreq", "lowGain",
                                  "equalizer", "highPass", "TolChannel", "TolLink" })
        for (const auto place : { 1.0f, 0.1f, 0.6f })
            changes.emplace_back (id, place);

    // A constant, and tones of which a crossfade is not a whole number of cycles, so that nothing cancels by luck.
    for (const auto hz : { 0.0, 37.3, 1003.1 })
    {
        const auto strip = makeEqualiserStrip (1);
        setPlain (*strip, { { "midGain", 0.6f }, { "lowGain", 0.6f } });
        strip->prepareToPlay (48000.0, 256);
        const auto radians = juce::MathConstants<double>::twoPi * hz / 48000.0;
        Signal tone ((changes.size() + 2) * stretch); // it begins with two without a change

        for (std::size_t i = 0; i < tone.size(); ++i)
            tone[i] = level * static_cast<float> (std::cos (radians * static_cast<double> (i)));

        std::size_t block = 0;
        const auto change = [&]
        {
            if (const auto done = block++ / blocksToChange; block % blocksToChange == 1 && done > 1)
                parameter (*strip, changes[done - 2].first).setValueNotifyingHost (changes[done - 2].second);

            return blockLength;
        };
        const auto out = firstOf (process (*strip, { tone, tone }, change));

        for (std::size_t i = 0; i < changes.size(); ++i)
        {
            auto peak = 0.0f, step = 0.0f;

            for (auto k = (i + 1) * stretch + 1; k < (i + 3) * stretch; ++k)
            {
                peak = std::max (peak, std::abs (out[k]));
                step = std::max (step, std::abs (out[k] - out[k - 1]));
            }

            // Two filters change places in 4800 steps: the steepest slope of the sine at the loudest that is heard, what
            // one step of the fade moves of it, and of the old filter's tail, less than twice as loud as the tone.
            const auto slope = 2.0f * static_cast<float> (std::sin (radians / 2.0));
            EXPECT_LT (step, peak * (1.05f * slope + 2.0f / 4800.0f) + 2.0f * 1.58f * level / 4800.0f)
                << changes[i].first << " to " << changes[i].second << ", " << hz << " Hz";
        }
    }
}

TEST (EqualiserSound, PreparingAgainBeginsAnewOnTheNewestSettings)
{
    std::mt19937 random (9);
    const std::vector<Signal> input { noise (2000, 3, 0.1f), noise (2000, 4, 0.1f) };
    const auto used = makeEqualiserStrip (2);

    // At rates that make no sense, too: nothing of them may remain.
    for (const auto rate : { 44100.0, 0.0, std::nan (""), 1e300, 96000.0 })
    {
        drawSettings (*used, random);
        used->prepareToPlay (rate, 512);
        const auto heard = process (*used, input, 200);
        const auto atCommonestRate = makeEqualiserStrip (2);
        atCommonestRate->applySnapshot (used->currentSnapshot());
        atCommonestRate->prepareToPlay (44100.0, 512);
        const auto isUsable = rate > 0.0 && rate != 44100.0;
        EXPECT_TRUE (isUsable || heard == process (*atCommonestRate, input, 200)) << rate;
        ASSERT_TRUE (std::all_of (heard[0].begin(), heard[0].end(), [] (float x) { return std::abs (x) < 100.0f; }));

        drawSettings (*used, random);
        const auto fresh = makeEqualiserStrip (2);
        fresh->applySnapshot (used->currentSnapshot());
        used->prepareToPlay (48000.0, 512);
        fresh->prepareToPlay (48000.0, 512);
        EXPECT_EQ (process (*used, input, 512), process (*fresh, input, 512)) << "after rate " << rate;
    }
}

} // namespace tarvik
