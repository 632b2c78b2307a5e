// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/AnalogBiquad.h"
#include "dsp/ComponentTable.h"
#include "dsp/EqualiserNetwork.h"
#include "plugin/ParameterTable.h"
#include "tools/plot/Plots.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <limits>
#include <numbers>
#include <random>

namespace tarvik::plot
{

namespace
{
constexpr int numSettings = 200;
constexpr unsigned seed = 41;
constexpr double lowestHz = 20.0;
constexpr int pointsBelowNyquist = 96;

/** Up to these shares of half the host's rate. */
constexpr std::array shares { 0.5, 0.8, 0.9 };

/** So far below its own highest point a curve still counts as one that has level. */
constexpr double levelDb = 20.0;

/** One random setting: what is told to the module, and the circuit that it must sound like. */
struct Setting
{
    juce::StringArray assignments;
    juce::String channel;
    EqualiserResponse network;
    int highPass = 0;
};

Setting drawSetting (std::mt19937& random, ComponentTable& components)
{
    const auto draw = [&random] (unsigned count) { return static_cast<std::int32_t> (random() % count); };
    constexpr unsigned potSteps = 101;
    const auto drawPot = [&] { return static_cast<float> (draw (potSteps)) * 0.01f; };
    const EQControls controls { draw (3),  draw (11), draw (8),
                                drawPot(), draw (2),  draw (10),
                                drawPot(), draw (3),  draw (ComponentTable::numChannels) };
    const auto at = [] (const char* id, std::int32_t position)
    { return switchAt (id, static_cast<std::size_t> (position)); };

    Setting setting;
    setting.assignments = { at ("highFreq", controls.highFreq),
                            at ("highGain", controls.highGain),
                            at ("midFreq", controls.midFreq),
                            at ("midMode", controls.midMode),
                            at ("lowFreq", controls.lowFreq),
                            at ("highPass", controls.highPass),
                            knobAt ("midGain", static_cast<double> (controls.midGain)),
                            knobAt ("lowGain", static_cast<double> (controls.lowGain)) };
    setting.channel = "TolChannel=" + juce::String (controls.toleranceChannel + 1);
    setting.highPass = controls.highPass;
    components.setActiveChannel (controls.toleranceChannel);
    setting.network = solveEqualiserNetwork (selectElements (components, controls));
    return setting;
}

//==============================================================================
std::complex<double> evaluate (std::span<const double> polynomial, std::complex<double> s)
{
    std::complex<double> value;

    for (const auto coefficient : polynomial)
        value = value * s + coefficient;

    return value;
}

/** |H (j omega)| of high pass, network and make-up gain, in dB. */
double analogueDb (const Setting& setting, double radiansPerSecond)
{
    // The high pass's two positions: corners in rad/s, and their Q.
    struct Corner
    {
        double omega0, q;
    };

    constexpr std::array<Corner, 2> corners { { { 339.29200658769764, 1.04 }, { 684.8671984825748, 1.05 } } };
    constexpr double makeUpDb = 15.42;

    const std::complex<double> s (0.0, radiansPerSecond);
    const auto& [numerator, denominator] = setting.network;
    auto gain = std::abs (evaluate (numerator, s) / evaluate (denominator, s));

    if (setting.highPass > 0)
    {
        const auto& corner = corners[static_cast<std::size_t> (setting.highPass - 1)];
        const auto prototype = AnalogBiquad::make (AnalogBiquad::Type::highPass, corner.q, 1.0, 1.0, corner.omega0);
        gain *= std::abs (evaluate (prototype.numerator, s) / evaluate (prototype.denominator, s));
    }

    return decibels (gain) + makeUpDb;
}

/** The same through the bilinear transform without prewarping: the analogue response, read at the warped frequency. */
double bilinearDb (const Setting& setting, double hz, double processingRateHz)
{
    return analogueDb (setting, 2.0 * processingRateHz * std::tan (std::numbers::pi * hz / processingRateHz));
}

//==============================================================================
/** The largest errors up to each of the shares. */
struct Errors
{
    std::array<double, shares.size()> anywhere {}, withLevel {};

    void add (double share, double error, bool hasLevel)
    {
        for (std::size_t i = 0; i < shares.size(); ++i)
            if (share <= shares[i])
            {
                anywhere[i] = std::max (anywhere[i], error);

                if (hasLevel)
                    withLevel[i] = std::max (withLevel[i], error);
            }
    }
};

juce::String cells (const std::array<double, shares.size()>& errors)
{
    constexpr int decimals = 3;
    juce::String text;

    for (const auto error : errors)
        text << " " << juce::String (error, decimals) << " |";

    return text;
}

juce::String measureRow (const juce::File& bundle, const std::vector<Setting>& settings, double rateHz, int factor)
{
    const auto nyquist = rateHz / 2.0;
    const auto frequencies = logarithmicSteps (lowestHz, shares.back() * nyquist, pointsBelowNyquist);
    StripUnderTest strip (bundle, rateHz, factor);
    ResponseBench bench (strip, frequencies);
    Errors measured, bilinear;

    for (const auto& setting : settings)
    {
        const auto db = bench.measureDb (setting.assignments, { setting.channel });
        std::vector<double> wanted;
        auto top = -std::numeric_limits<double>::infinity();

        for (const auto hz : frequencies)
        {
            wanted.push_back (analogueDb (setting, 2.0 * std::numbers::pi * hz));
            top = std::max (top, wanted.back());
        }

        for (std::size_t i = 0; i < frequencies.size(); ++i)
        {
            const auto share = frequencies[i] / nyquist * (1.0 - 1e-9);
            const auto hasLevel = wanted[i] > top - levelDb;
            measured.add (share, std::abs (db[i] - wanted[i]), hasLevel);
            bilinear.add (share, std::abs (bilinearDb (setting, frequencies[i], rateHz * factor) - wanted[i]),
                          hasLevel);
        }
    }

    constexpr double kilo = 1000.0;
    return "| " + juce::String (rateHz / kilo, 1) + " kHz | " + juce::String (factor) + " |" + cells (measured.anywhere)
           + cells (measured.withLevel) + cells (bilinear.withLevel);
}
} // namespace

void printFilterErrors (const juce::File& bundle)
{
    ComponentTable components (equaliserComponents);
    std::mt19937 random (seed);
    std::vector<Setting> settings;

    for (int i = 0; i < numSettings; ++i)
        settings.push_back (drawSetting (random, components));

    juce::StringArray rows { "| Host | Factor | to 0.5 | to 0.8 | to 0.9 | level, to 0.5 | to 0.8 | to 0.9 | bilinear, "
                             "to 0.5 | to 0.8 | to 0.9 |",
                             "|---|---|---|---|---|---|---|---|---|---|---|" };

    for (const auto rateHz : { 44100.0, 48000.0, 96000.0, 192000.0 })
        for (const auto factor : { 1, 2 })
            rows.add (measureRow (bundle, settings, rateHz, factor));

    std::cout << rows.joinIntoString ("\n") << std::endl;
}

} // namespace tarvik::plot
