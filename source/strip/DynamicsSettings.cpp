// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/DynamicsSettings.h"

#include "dsp/Decibels.h"

#include <algorithm>

namespace tarvik
{

namespace
{
/** Gain of an input or output potentiometer, 0 to 5: a law of 34 dB, which below 1 falls to nothing in a straight line.
    In the middle the two, with the make-up of the output, take off the 30 dB that the gain element gives.
*/
double potentiometerGain (double position) noexcept
{
    constexpr double fullPosition = 5.0;
    constexpr double lawDb = 34.0;
    return std::min (position, 1.0) * gainFromDb (lawDb * (position / fullPosition - 1.0));
}

float sensitivityGain (int index) noexcept
{
    constexpr double midDb = -7.0;
    constexpr double lowDb = -15.0;

    switch (index)
    {
        case 1:
            return static_cast<float> (gainFromDb (midDb));
        case 2:
            return static_cast<float> (gainFromDb (lowDb));
        default:
            return 1.0f;
    }
}
} // namespace

DynamicsSettings makeDynamicsSettings (const ParameterSnapshot& snapshot) noexcept
{
    constexpr double smashInputGain = 10.0;
    constexpr double smashOutputGain = 0.5;
    constexpr double makeUpDb = 4.0;

    DynamicsSettings settings;
    settings.isIn = snapshot.compIn;
    settings.hearsSidechain = snapshot.compExtSideChain;
    settings.gateHearsSidechain = snapshot.expExtSideChain;
    settings.isLimiterOn = snapshot.compLimit;
    settings.isNiveauOn = snapshot.compNiveau;
    settings.highPassHz = snapshot.compHPF;
    settings.sensitivity = sensitivityGain (snapshot.limiterSensitivity);
    settings.compressor = { snapshot.compThreshold, snapshot.compRatio, snapshot.compAttack, snapshot.compRelease };
    settings.expander = { snapshot.expThreshold, snapshot.expRange, snapshot.expAttack,  snapshot.expRelease,
                          snapshot.expMode,      snapshot.expHold,  snapshot.expInverted };

    // Smash drives the loop harder and turns its output down; at "1:1" it does nothing.
    const auto isSmashing = snapshot.compNuke && settings.compressor.ratio > 0;
    settings.mix = settings.isIn ? static_cast<double> (snapshot.compMix) : 0.0;
    settings.inputGain =
        potentiometerGain (static_cast<double> (snapshot.compInput)) * (isSmashing ? smashInputGain : 1.0);
    settings.outputGain = potentiometerGain (static_cast<double> (snapshot.compOutput)) * gainFromDb (makeUpDb)
                          * (isSmashing ? smashOutputGain : 1.0);
    return settings;
}

} // namespace tarvik
