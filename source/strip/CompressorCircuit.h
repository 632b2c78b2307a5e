// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik
{

/** The compressor's side chain: from the rectified signal after the gain element to the voltage that controls it.

         rectifier --> peak memory --> amplifier (ratio) --> Ra --+-- R2 --+
                                                                  |        |
                                                             C1 = Rl       C2

    C1 charges through Ra, faster the larger the error, and discharges through Rl. C2, after R2, takes a share of its
    charge and gives it back later: with "AUTO" release R2 is small, so a long loud passage fills C2 and recovery takes
    longer than after a short peak.

    One sample, with A of the amplifier, D = Rl / (Rl + Ra), and dt the time step:

        rectified  r = |gain x level| x threshold's scale x 11.8
        memory     p = max (p + min (r - 0.5 - p, 230 / rate), p exp (-1 / (0.264 rate)))
        amplifier  s = (p + r - 1.5) A + bias - 0.6
        target     t = (0.25 / (|2 s| + 1) + max (s, 0)) D
        opening    f = exp (-1 / (t - c)), 0 unless t > c
        share      k = (1 - f) (1 - exp (-dt / (Rl C1))) + f (1 - exp (-dt / (Ra C1)))
        charge     c = min (c + k (t - c), ceiling)
        current    i = (c - b) / R2, then with its last value i':
        exchange   c = c - (i + i') dt / (2 C1),  b = b + (i + i') dt / (2 C2)

    where c and b are the voltages on C1 and C2. DynamicsSteps-inl.h says the same in an order in which less waits for the gain.

    The network's time step is that of 44.1 kHz at every sample rate, so its times shrink in proportion at higher ones;
    the peak memory keeps its seconds. One object serves all channels, the state of each is kept outside. Audio thread.
*/
class CompressorCircuit
{
public:
    /** What the front panel sets. Indices beyond a list count as its nearest end, thresholds too. */
    struct Controls
    {
        float thresholdDb; ///< -20 to 0
        int ratio;         ///< 0 "1:1" to 5 "20:1"
        int attack;        ///< 0 slow to 2 fast
        int release;       ///< 0 "25 ms" to 7 "3.2 s", 8 "AUTO"

        bool operator== (const Controls&) const = default;
    };

    /** Of one channel, or of several side by side. */
    template <typename Number>
    struct States
    {
        Number c1Volts {};
        Number c2Volts {};
        Number r2Amps {}; ///< of the last sample
        Number peak {};
    };

    using State = States<double>;

    /** What rate and controls make of the circuit. */
    struct Coefficients
    {
        static constexpr double peakThreshold = 0.5;

        /** Below this error exp (-1 / error) is under 2e-22, which no sum with releaseShare notices. */
        static constexpr double smallestOpening = 0.02;

        double rectifierGain = 0.0;
        double peakRise = 0.0; ///< per sample
        double peakFall = 1.0; ///< factor per sample
        double amplifierGain = 1.0;
        double amplifierOffset = 0.0;
        double kneeVolts = 0.0;
        double divider = 1.0; ///< Rl / (Rl + Ra)
        double attackShare = 0.0;
        double releaseShare = 0.0;
        double releaseKeep = 1.0; ///< 1 - releaseShare
        double r2Siemens = 0.0;
        double networkKeep = 1.0;       ///< of C1's voltage, per sample
        double perNetworkKeep = 1.0;    ///< 1 / networkKeep
        double kneeVoltsPerShare = 0.0; ///< 1 / (networkKeep x releaseShare)
        double c1VoltsPerAmp = 0.0;
        double c2VoltsPerAmp = 0.0;
        double ceilingVolts = 0.0;
    };

    /** The rate is in Hz, above 0. */
    void prepare (double rateHz) noexcept;

    void set (const Controls& controls) noexcept;

    const Coefficients& getCoefficients() const noexcept { return k; }

    /** Whether, without a signal, the amplifier is far from conducting and the attack's resistor stays shut. */
    bool isSettled (const State& state) const noexcept;

    /** n samples without a signal, from a settled state. */
    void skipSilence (State& state, int n) const noexcept;

    /** Without a signal the peak memory halves for ever; this takes it to 0 at the floor. */
    static void settle (State& state) noexcept;

private:
    Coefficients k;
};

} // namespace tarvik
