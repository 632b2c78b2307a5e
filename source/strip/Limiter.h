// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik
{

/** Turns peaks of the detector into a voltage for the gain element: a capacitor that charges through a diode and always
    leaks. It has no gain element of its own; its voltage competes with the compressor's and the expander's.

    One object serves all channels, the voltage of each is kept outside. Audio thread.
*/
class Limiter
{
public:
    struct Coefficients
    {
        static constexpr double thresholdLevel = 3.37; ///< fitted, as the amplification is
        double amplification = 0.0;
        double chargeShare = 0.0; ///< per sample
        double leakShare = 0.0;   ///< per sample
    };

    /** The rate is in Hz, above 0. */
    void prepare (double rateHz) noexcept
    {
        constexpr double chargeSeconds = 0.004;
        constexpr double leakSeconds = 0.05;
        const auto stepSeconds = 1.0 / rateHz;
        k.chargeShare = stepSeconds / (stepSeconds + chargeSeconds);
        k.leakShare = stepSeconds / (stepSeconds + leakSeconds);
    }

    /** Off, the voltage only leaks away. */
    void setOn (bool isOn) noexcept { k.amplification = isOn ? amplificationWhenOn : 0.0; }

    const Coefficients& getCoefficients() const noexcept { return k; }

private:
    static constexpr double amplificationWhenOn = 50.0;

    Coefficients k;
};

} // namespace tarvik
