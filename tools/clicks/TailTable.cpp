// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/AnalogBiquad.h"
#include "dsp/ConsoleEQ.h"
#include "dsp/EqualiserComponents.h"
#include "dsp/EqualiserNetwork.h"
#include "dsp/RampTimes.h"
#include "tools/clicks/MovedStrip.h"
#include "tools/clicks/SteepHighPass.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarvik::clicks
{

namespace
{
using Design = MZTiCoefs<double, 5, 5>;
using Filter = SmoothedIppIIR<float, Design>;

constexpr double edgeHz = 300.0;

struct Response
{
    Design::Polynomial numerator, denominator;
};

Response network (const EQControls& controls)
{
    const ComponentTable components (equaliserComponents);
    const auto response = solveEqualiserNetwork (components, controls);
    return { response.numerator, response.denominator };
}

/** The equaliser's high pass at "40 Hz", and off. */
Response highPass (bool isOn)
{
    constexpr double omega0 = 339.29200658769764, q = 1.04;
    AnalogBiquad biquad;

    if (isOn)
        biquad = AnalogBiquad::make (AnalogBiquad::Type::highPass, q, 1.0, 1.0, omega0);

    Response response {};
    std::copy (biquad.numerator.begin(), biquad.numerator.end(), response.numerator.begin() + 3);
    std::copy (biquad.denominator.begin(), biquad.denominator.end(), response.denominator.begin() + 3);
    return response;
}

BiquadCascade makeCascade (const Response& response)
{
    BiquadCascade cascade;
    cascade.setTaps (Design::tapsFor (response.numerator, response.denominator, rateHz));
    return cascade;
}

void bringIn (Filter& filter, const Response& response)
{
    filter.setAnalogue (response.numerator, response.denominator);
    filter.bringInCoefficients();
}

/** The largest sample above 300 Hz that the end of the tail makes of a tone (0 Hz: a constant of 1), at this phase of
    the tone. The filter's output, less what both of its banks would make of their inputs if the old one rang on: so the
    corners of the crossfade itself are not in it. */
double peakOfTail (const Response& before, const Response& after, double toneHz, double phase, bool isHurried)
{
    Filter filter;
    filter.setAnalogue (before.numerator, before.denominator);
    filter.prepare (rateHz, 1, 1);
    auto old = makeCascade (before), changed = makeCascade (after);
    SteepHighPass highPass (edgeHz / rateHz);
    // A constant is there for so long that the capacitor, at 3.6 s, is full.
    const auto ramp = static_cast<int> (rampSteps (rateHz)), begin = (toneHz > 0.0 ? 10 : 300) * ramp;
    const auto next = begin + ramp / 2;

    // A waiting change takes over 10 ms after the crossfade. What the steep high pass delays comes after that.
    const auto end = isHurried ? begin + ramp + ramp / 10 : begin + 4 * ramp, heard = end + 1000;
    double peak = 0.0;

    for (int i = 0; i < heard; ++i)
    {
        if (i >= end)
        {
            const auto missing = -old.step (0.0);
            peak = std::max (peak, std::abs (highPass.step (missing * ConsoleEQ::makeupGain)));
            continue;
        }

        if (i == begin)
            bringIn (filter, after);

        if (isHurried && i == next)
            bringIn (filter, before);

        const auto cycles = phase + toneHz * i / rateHz;
        const auto x = static_cast<float> (std::cos (2.0 * std::numbers::pi * cycles));
        const auto share = std::clamp (static_cast<double> (i + 1 - begin) / ramp, 0.0, 1.0);
        const auto both =
            old.step ((1.0 - share) * static_cast<double> (x)) + changed.step (share * static_cast<double> (x));
        auto y = x;
        auto* row = &y;
        filter.process (&row, 1);
        const auto above = highPass.step ((static_cast<double> (y) - both) * ConsoleEQ::makeupGain);
        peak = std::max (peak, std::abs (above));
    }

    return peak;
}

double worstDb (const Response& before, const Response& after, double toneHz, bool isHurried)
{
    constexpr int numPhases = 8;
    double peak = 0.0;

    for (int i = 0; i < (toneHz > 0.0 ? numPhases : 1); ++i)
        peak = std::max (peak, peakOfTail (before, after, toneHz, static_cast<double> (i) / numPhases, isHurried));

    return 20.0 * std::log10 (peak);
}
} // namespace

bool printTailTable (std::FILE* table)
{
    std::fprintf (table, "What fading out the old filter's tail leaves above 300 Hz of a full-scale tone, dBFS of the\n"
                         "largest sample, after the makeup gain: in its own time, and while the next change waits\n\n");

    const auto print = [table] (const char* name, const Response& before, const Response& after, double toneHz)
    {
        std::fprintf (table, "%-36s%8.1f%8.1f\n", name, worstDb (before, after, toneHz, false),
                      worstDb (before, after, toneHz, true));
    };

    const EQControls flat { .lowFreq = 3 }, boost { .lowFreq = 3, .lowGain = 1.0f }, cut { .lowFreq = 4 };
    print ("61 Hz boost to flat, 61 Hz tone", network (boost), network (flat), 61.0);
    print ("40 Hz high pass off, 40 Hz tone", highPass (true), highPass (false), 40.0);
    print ("\"0 dB\" low cut to boost, constant of 1", network (cut), network (flat), 0.0);
    return true;
}

} // namespace tarvik::clicks
