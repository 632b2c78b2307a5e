// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "strip/DynamicsChannel.cpp" // this file, compiled once for each instruction set

#include "strip/DynamicsChannel.h"

#include "dsp/Dispatch.h"
#include "dsp/RowMaths.h"
#include "dsp/StateFloor.h"

// foreach_target.h comes before highway.h.
// clang-format off
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
#include "strip/DynamicsSteps-inl.h"
// clang-format on

#include <algorithm>
#include <cstddef>
#include <span>
#include <type_traits>

HWY_BEFORE_NAMESPACE();

namespace tarvik::dynamics::HWY_NAMESPACE
{
namespace
{
/** What becomes of the expander's voltage. */
enum class Expansion
{
    none,
    falling, ///< switched off, and the capacitor isn't empty yet
    expander,
    gate
};

/** Calls a function with every number of these, one of each. */
template <typename Function, typename... Loops>
HWY_INLINE void forEachNumber (Function function, Loops&... loops)
{
    function (loops.gain...);
    function (loops.compressor.c1Volts...);
    function (loops.compressor.c2Volts...);
    function (loops.compressor.r2Amps...);
    function (loops.compressor.peak...);
    function (loops.limiterVolts...);
    function (loops.expander.rms...);
    function (loops.expander.anchorDb...);
    function (loops.expander.perAnchor...);
    function (loops.expander.heldDb...);
    function (loops.expander.holdSeconds...);
    function (loops.expander.volts...);
    function (loops.expander.fallVolts...);
    function (loops.line.offset...);
    function (loops.line.slope...);
    function (loops.line.lowestVolts...);
    function (loops.line.highestVolts...);
}

template <Expansion expansion, typename Number>
HWY_INLINE void step (const DynamicsCircuits& circuits, DynamicsLoops<Number>& loop, const DynamicsRows& first,
                      const DynamicsRows& second, int i)
{
    const auto& expander = circuits.expander.getCoefficients();
    const auto level = abs (load<Number> (first.detector + i, second.detector + i));

    // Expander or gate, limiter, compressor: the largest voltage wins. Of the expander's it is half; what it meets is
    // doubled instead, which changes no bit and keeps a multiplication away from the voltage that comes last.
    constexpr auto scale = expansion == Expansion::none ? 1.0 : 2.0;
    auto otherVolts = scale * step (circuits.limiter.getCoefficients(), loop.limiterVolts, loop.gain * level);

    if constexpr (expansion == Expansion::falling)
        otherVolts = max (fall (loop.expander), otherVolts);

    if constexpr (expansion == Expansion::expander)
    {
        constexpr double dbPerDecade = 20.0;
        const auto levelDb = load<Number> (first.keyLevels + i, second.keyLevels + i) * dbPerDecade;
        const auto attenuationDb = holdAndInvert (expander, loop.expander, attenuationFor (expander, levelDb));
        otherVolts = max (charge (expander, loop.expander.volts, attenuationDb), otherVolts);
    }

    if constexpr (expansion == Expansion::gate)
    {
        const auto key = load<Number> (first.key + i, second.key + i);
        const auto attenuationDb = gateAttenuation (expander, loop.expander, loop.gain, key);
        otherVolts = max (charge (expander, loop.expander.volts, attenuationDb), otherVolts);
    }

    const auto compressorVolts = step (circuits.compressor.getCoefficients(), loop.compressor, loop.gain, level);
    loop.gain = gainFor (loop.line, compressorVolts, controlVolts (otherVolts, scale));
    store (loop.gain, first.gains + i, second.gains + i);
}

/** The expander's first step: leaves the RMS of sample i's key in the work rows. */
template <typename Number>
HWY_INLINE void followKey (const Expander::Coefficients& expander, DynamicsLoops<Number>& loop,
                           const DynamicsRows& first, const DynamicsRows& second, int i)
{
    const auto key = load<Number> (first.key + i, second.key + i);
    store (followLevel (expander, loop.expander.rms, key), first.keyLevels + i, second.keyLevels + i);
}

/** All channels: those of one loop or, where there are no lanes for two, those of two loops. */
template <Expansion expansion, typename Number, std::size_t numLoops>
HWY_NOINLINE void run (const DynamicsCircuits& circuits, DynamicsChannel* channels, const DynamicsRows* rows, int n)
{
    constexpr auto isMono = numLoops == 1 && std::is_same_v<Number, double>;
    constexpr auto last = isMono ? 0 : 1;
    constexpr auto hasTwoLoops = numLoops == 2;

    // Copies whose address nobody takes, and no array of them, so that they stay in registers.
    const auto localCircuits = circuits;
    const auto firstRows = rows[0], secondRows = rows[last];
    DynamicsLoops<Number> firstLoop, secondLoop;

    const auto take = [] (Number& number, double a, double b) HWY_ATTR { number = load<Number> (&a, &b); };
    forEachNumber (take, firstLoop, channels[0], channels[last]);

    if constexpr (hasTwoLoops)
        forEachNumber (take, secondLoop, channels[last], channels[last]);

    const auto stepAll = [&] (int i) HWY_ATTR
    {
        step<expansion> (localCircuits, firstLoop, firstRows, secondRows, i);

        if constexpr (hasTwoLoops)
            step<expansion> (localCircuits, secondLoop, secondRows, secondRows, i);
    };

    if constexpr (expansion == Expansion::expander)
    {
        // The RMS is a chain of divisions that needs no gain. It runs some samples ahead, in the time that the other
        // chain spends waiting, and its logarithm is taken a piece at a time.
        constexpr int ahead = 32;

        const auto followKeys = [&] (int i) HWY_ATTR
        {
            followKey (localCircuits.expander.getCoefficients(), firstLoop, firstRows, secondRows, i);

            if constexpr (hasTwoLoops)
                followKey (localCircuits.expander.getCoefficients(), secondLoop, secondRows, secondRows, i);
        };

        for (int i = 0; i < std::min (n, ahead); ++i)
            followKeys (i);

        for (int begin = 0; begin < n; begin += ahead)
        {
            const auto end = std::min (n, begin + ahead);
            rows::log10 (firstRows.keyLevels + begin, firstRows.keyLevels + begin, end - begin);

            if constexpr (! isMono)
                rows::log10 (secondRows.keyLevels + begin, secondRows.keyLevels + begin, end - begin);

            for (int i = begin; i < end; ++i)
            {
                if (i + ahead < n)
                    followKeys (i + ahead);

                stepAll (i);
            }
        }
    }
    else
    {
        for (int i = 0; i < n; ++i)
            stepAll (i);
    }

    const auto putBack = [] (Number number, double& a, double& b) HWY_ATTR { store (number, &a, &b); };
    forEachNumber (putBack, firstLoop, channels[0], channels[last]);

    if constexpr (hasTwoLoops)
        forEachNumber (putBack, secondLoop, channels[last], channels[last]);
}

template <typename Number, std::size_t numLoops>
void runInMode (const DynamicsCircuits& circuits, DynamicsChannel* channels, std::size_t numChannels,
                const DynamicsRows* rows, int n)
{
    switch (circuits.expander.getMode())
    {
        case Expander::Mode::expander:
            return run<Expansion::expander, Number, numLoops> (circuits, channels, rows, n);
        case Expander::Mode::gate:
            return run<Expansion::gate, Number, numLoops> (circuits, channels, rows, n);
        case Expander::Mode::off:
            break;
    }

    // Where the capacitor is empty both of these do the same, the second with less work.
    if (channels[0].expander.volts > 0.0 || channels[numChannels - 1].expander.volts > 0.0)
        run<Expansion::falling, Number, numLoops> (circuits, channels, rows, n);
    else
        run<Expansion::none, Number, numLoops> (circuits, channels, rows, n);
}

void process (const DynamicsCircuits& circuits, std::span<DynamicsChannel> channels, const DynamicsRows* rows, int n)
{
    if (channels.size() != 2)
        return runInMode<double, 1> (circuits, channels.data(), channels.size(), rows, n);

#if HWY_TARGET == HWY_SCALAR
    runInMode<double, 2> (circuits, channels.data(), channels.size(), rows, n);
#else
    runInMode<Pair, 1> (circuits, channels.data(), channels.size(), rows, n);
#endif
}
} // namespace
} // namespace tarvik::dynamics::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tarvik
{
namespace dynamics
{
HWY_EXPORT (process);
}

void processDynamics (const DynamicsCircuits& circuits, std::span<DynamicsChannel> channels,
                      std::span<const DynamicsRows> rows, int n) noexcept
{
    TARVIK_DISPATCH (dynamics::process) (circuits, channels, rows.data(), n);

    for (auto& channel : channels)
    {
        CompressorCircuit::settle (channel.compressor);
        Expander::settle (channel.expander);

        if (channel.limiterVolts < stateFloor)
            channel.limiterVolts = 0.0;
    }
}
} // namespace tarvik

#endif
