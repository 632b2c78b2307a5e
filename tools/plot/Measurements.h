// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/plot/Chart.h"
#include "tools/plot/StripUnderTest.h"

#include <complex>
#include <span>

namespace tarvik::plot
{

double decibels (double gain) noexcept;
double gainOf (double decibels) noexcept;

/** `count` numbers from start to end, each the same factor above the one before. */
std::vector<double> logarithmicSteps (double start, double end, int count);

/** At each of the frequencies, in radians per sample, the sum of x[n] e^(-j radians n). */
std::vector<std::complex<double>> spectrumAt (std::span<const float> samples, std::span<const double> radians);

//==============================================================================
/** Magnitude responses of the equaliser inside the running strip.

    An impulse goes through the whole strip, so low that the saturation is linear there, once with the equaliser out and
    once with it in: the quotient of the two spectra is free of what the rest of the strip does to the band, its filters
    at 6 Hz and 35 kHz and those of the oversampling.
*/
class ResponseBench
{
public:
    /** `common` are settings that both runs share, the console's channel for one. Frequencies in Hz. */
    ResponseBench (StripUnderTest& stripUnderTest, std::vector<double> frequencies);

    /** In dB over the response without equaliser, at each of the frequencies. The settings need not switch it on. */
    std::vector<double> measureDb (const juce::StringArray& settings, const juce::StringArray& common = {});

    /** The same as a curve over the frequency. */
    std::vector<Point> measure (const juce::StringArray& settings, const juce::StringArray& common = {});

private:
    std::vector<std::complex<double>> spectrum (const juce::StringArray& settings);

    StripUnderTest& strip;
    const std::vector<double> hz;
    std::vector<double> radians; ///< The same, per sample.
    juce::StringArray referenceSettings;
    std::vector<std::complex<double>> reference;
};

//==============================================================================
/** A sine that changes its level in steps; each starts where the one before ends, at the same phase. */
struct ToneStep
{
    double levelDb = 0.0; ///< 0: a peak of full scale.
    double seconds = 0.0;
};

Samples makeTone (double frequencyHz, double sampleRate, const std::vector<ToneStep>& steps);

/** The amplitude of a tone in samples that hold whole periods of it. */
double toneAmplitude (std::span<const float> samples, double radiansPerSample);

/** Gain in dB over the time in seconds, counted from `startSeconds`, one value for each period of the tone. The period
    must be a whole number of samples.
*/
std::vector<Point> gainOverTime (const Samples& in, const Samples& out, double frequencyHz, double sampleRate,
                                 double startSeconds);

/** As many of a curve's points as a picture with logarithmic time needs, from `start` seconds on. */
std::vector<Point> thinnedOverLogTime (const std::vector<Point>& points, double start);

/** When a curve is for the last time farther than `distance` from a value; 0 if it never is. */
double lastTimeFarFrom (const std::vector<Point>& points, double value, double distance);

/** Level out over level in, both in dBFS: a tone of 1 kHz that climbs in steps of 2 dB up to full scale, each held for a
    second and measured over its last fifth.
*/
std::vector<Point> transferCurve (StripUnderTest& strip, double lowestDb);

/** An empty chart for such curves. */
Chart transferChart (const juce::String& heading, double lowestInDb, double lowestOutDb);

} // namespace tarvik::plot
