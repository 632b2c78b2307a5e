// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/plot/Chart.h"

#include <juce_dsp/juce_dsp.h>

#include <vector>

namespace tarvik::plot
{

/** The mean power of one channel in bands a third of an octave wide, with edges where IEC 61260 has them (base ten),
    from 25 Hz up to 20 kHz or what half the rate has room for.

    Spectra of overlapping pieces under a Hann window are summed up, in which every sample counts alike, the first and
    the last too: what the bands add up to is the power between the lowest and the highest edge.
*/
class BandLevels
{
public:
    explicit BandLevels (double sampleRate);

    /** Takes the next samples of the channel. What is no finite number counts as silence, and what is more than 120 dB
        above full scale as that. */
    void add (const float* samples, int numSamples);

    /** What has been added is all there is. */
    void finish();

    /** The mean power in each band, of which a full-scale sine has 0.5, over the band's centre in Hz. */
    std::vector<Point> powers() const;

private:
    void addPiece();

    const double rate;
    const juce::dsp::FFT transform;
    const std::size_t length, hop; ///< Of a piece, and from one piece to the next, in samples.
    std::vector<float> window, piece, spectrum;
    std::vector<double> power; ///< For each line of the spectrum, summed over the pieces.
    std::size_t numPending = 0;
    juce::int64 numAdded = 0;
};

} // namespace tarvik::plot
