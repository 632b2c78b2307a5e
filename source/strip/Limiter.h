// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>

namespace tarvik
{

/** Turns peaks of the detector into a voltage for the gain element: a capacitor that charges through a diode and always
    leaks. It has no gain element of its own; its voltage competes with the compressor's and the expander's.

    One object serves all channels, the voltage of each is kept outside. Audio thread.
*/
class Limiter
{
public:
    /** The rate is in Hz, above 0. */
    void prepare (double rateHz) noexcept
    {
        constexpr double chargeSeconds = 0.004;
        constexpr double leakSeconds = 0.05;
        const auto stepSeconds = 1.0 / rateHz;
        chargeShare = stepSeconds / (stepSeconds + chargeSeconds);
        leakShare = stepSeconds / (stepSeconds + leakSeconds);
    }

    /** Off, the voltage only leaks away. */
    void setOn (bool isOn) noexcept { amplification = isOn ? amplificationWhenOn : 0.0; }

    /** One sample: `level` is the absolute value of what the detector hears after the gain element; updates and
        returns the channel's voltage, 0 or above. */
    double step (double& volts, double level) const noexcept
    {
        const auto drive = (std::max (level, thresholdLevel) - thresholdLevel) * amplification;
        volts = std::max (volts + (drive - volts) * chargeShare, volts) - volts * leakShare;
        return volts;
    }

private:
    static constexpr double thresholdLevel = 3.37; ///< fitted, as the other is
    static constexpr double amplificationWhenOn = 50.0;

    double amplification = 0.0;
    double chargeShare = 0.0; ///< per sample
    double leakShare = 0.0;   ///< per sample
};

} // namespace tarvik
