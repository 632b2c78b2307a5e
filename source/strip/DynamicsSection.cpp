// SPDX-License-Identifier: GPL-3.0-or-later
#include "strip/DynamicsSection.h"

#include "dsp/Decibels.h"
#include "dsp/RampTimes.h"
#include "dsp/RowOperations.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace tarvik
{

namespace
{
/** 106 dB above 0 VU: a thousand times full scale still fits with the section's own gains up; what the strip's gains
    lift higher is cut here. The gate's RMS has lost even that after half a second; the capacitors need what their
    "Release" takes. */
constexpr float loudestKey = 2e5f;

/** Leaves room in a float for every gain of the section. Keys have a limit of their own. */
constexpr float loudestAudio = 1e30f;

/** What the needles' reading is divided by: 10^1.5, close to the gain element's gain without signal. */
constexpr float idleGain = 31.6227766f;
} // namespace

DynamicsSection::DynamicsSection() noexcept
{
    update ({}, true);
    takeSettings();
}

void DynamicsSection::prepare (double rateHz, int numChannels, int maxSamples)
{
    const auto count = static_cast<std::size_t> (numChannels);
    const auto length = static_cast<std::size_t> (maxSamples);

    circuits.compressor.prepare (rateHz);
    circuits.limiter.prepare (rateHz);
    circuits.expander.prepare (rateHz);
    detectorFilters.prepare (rateHz, numChannels, maxSamples);

    for (auto* const ramp : getRamps())
        ramp->prepare (rampSteps (rateHz));

    for (auto* const curve : getCurves())
        curve->assign (length, 0.0f);

    constexpr std::size_t rowsPerChannel = 3;
    areCurvesKept = false;
    loops.assign (count, {});
    needles.assign (count, {});
    sidechainRows.assign (count, nullptr);
    workRows.assign (rowsPerChannel * count, Row (length));
    keyLevels.assign (count * length, 0.0);
    loopRows.clear();
    detectorRows.clear();

    for (std::size_t c = 0; c < count; ++c)
    {
        auto* const own = &workRows[rowsPerChannel * c];
        needles[c].prepare (rateHz);
        loopRows.push_back ({ own[0].data(), own[1].data(), &keyLevels[c * length], own[2].data() });
        detectorRows.push_back (loopRows.back().detector);
    }

    takeSettings();
}

void DynamicsSection::release()
{
    for (auto* const curve : getCurves())
        *curve = {};

    loops = {};
    loopRows = {};
    workRows = {};
    keyLevels = {};
    detectorRows = {};
    sidechainRows = {};
    needles = {};
}

void DynamicsSection::reset() noexcept
{
    takeSettings();

    for (auto* const ramp : getRamps())
        ramp->snap();

    detectorFilters.reset();
    std::fill (loops.begin(), loops.end(), DynamicsChannel {});

    for (auto& needle : needles)
        needle.reset();
}

//==============================================================================
void DynamicsSection::update (const ParameterSnapshot& snapshot, bool force) noexcept
{
    const auto next = makeDynamicsSettings (snapshot);

    if (! force && next == lastSettings)
        return;

    const auto isHighPassNew = force || next.highPassHz != lastSettings.highPassHz;
    lastSettings = next;
    published.getWriteSlot() = next;
    published.publish();

    mixRamp.request (next.mix);
    inputRamp.request (next.inputGain);
    outputRamp.request (next.outputGain);
    detectorFilters.setNiveau (next.isNiveauOn);

    if (isHighPassNew)
        detectorFilters.setHighPass (next.highPassHz);
}

void DynamicsSection::takeSettings() noexcept
{
    if (published.takeNewest())
        applySettings (published.getReadSlot());

    for (auto* const ramp : getRamps())
    {
        areCurvesKept = areCurvesKept && ramp->isIdle();
        ramp->takeRequest();
    }
}

void DynamicsSection::applySettings (const DynamicsSettings& newest) noexcept
{
    // While the expander is off its detector hears nothing and falls to its floor; here it is put there when it comes
    // back.
    const auto wasOff = circuits.expander.getMode() == Expander::Mode::off;

    settings = newest;
    areCurvesKept = false;
    circuits.compressor.set (settings.compressor);
    circuits.limiter.setOn (settings.isLimiterOn);
    circuits.expander.set (settings.expander);

    const auto isOff = circuits.expander.getMode() == Expander::Mode::off;

    for (auto& loop : loops)
    {
        if (wasOff)
            Expander::clearDetector (loop.expander);
        else if (isOff)
            circuits.expander.beginFall (loop.expander);
    }
}

bool DynamicsSection::isIdle() const noexcept
{
    return mixRamp.get().isIdle() && inputRamp.get().isIdle() && outputRamp.get().isIdle();
}

//==============================================================================
/** Of the next n samples, how many the section is in circuit for: all, while it is in or fades; up to the end of the
    moves, where they take it out; none. */
int DynamicsSection::countInCircuit (int n) const noexcept
{
    if (settings.isIn || mixRamp.get().target != 0.0)
        return n;

    const auto remaining =
        std::max ({ mixRamp.get().remaining, inputRamp.get().remaining, outputRamp.get().remaining });
    return static_cast<int> (std::min (static_cast<std::uint32_t> (n), remaining));
}

void DynamicsSection::process (float* const* main, int n, int numSidechain) noexcept
{
    takeSettings();

    if (const auto length = countInCircuit (n); length > 0)
    {
        isHeard = settings.isIn || ! mixRamp.get().isIdle() || mixRamp.get().current != 0.0;
        fillCurves (length);
        const auto* const sidechain = chooseSidechain (main, length, numSidechain);
        makeDetectorRows (main, sidechain, length);
        makeKeys (main, sidechain, length);
        processDynamics (circuits, loops, loopRows, length);
        feedNeedles (length);

        // audio x ((1 - mix) + input x mix x output x gain): dry and wet share one multiplication, so no delay can come
        // between them.
        for (std::size_t c = 0; c < loops.size(); ++c)
            rows::scaleByMix (main[c], loudestAudio, dryCurve.data(), wetCurve.data(), loopRows[c].gains, length);

        n -= length;
    }

    if (n > 0)
    {
        isHeard = false;
        feedNeedles (n);
    }
}

/** The factors that the slice's samples meet; while the ramps are idle the rows keep them from slice to slice. What has
    been asked of the ramps since takeSettings() waits: a ramp that began to move here would run for the whole row at
    once. */
void DynamicsSection::fillCurves (int n) noexcept
{
    if (areCurvesKept)
        return;

    areCurvesKept = isIdle();
    const auto length = areCurvesKept ? static_cast<int> (inputCurve.size()) : n;
    inputRamp.fillTaken (inputCurve.data(), length);
    mixRamp.fillTaken (dryCurve.data(), length);
    outputRamp.fillTaken (wetCurve.data(), length);

    rows::scale (detectorCurve.data(), inputCurve.data(), settings.sensitivity, length);
    rows::multiply (wetCurve.data(), inputCurve.data(), length);
    rows::multiply (wetCurve.data(), dryCurve.data(), length);
    rows::combine (rows::ScalarOperation::subtractFrom, dryCurve.data(), dryCurve.data(), 1.0f, length);
}

/** One row for each main channel. */
const float* const* DynamicsSection::chooseSidechain (const float* const* main, int n, int numSidechain) noexcept
{
    const auto* const* const sidechain = main + loops.size();

    if (numSidechain <= 0)
        return main;

    if (static_cast<std::size_t> (numSidechain) == loops.size())
        return sidechain;

    const auto share = 1.0f / static_cast<float> (numSidechain);
    rows::scale (scratch.data(), sidechain[0], share, n);

    for (int s = 1; s < numSidechain; ++s)
        rows::multiplyAdd (scratch.data(), sidechain[s], share, n);

    std::fill (sidechainRows.begin(), sidechainRows.end(), scratch.data());
    return sidechainRows.data();
}

void DynamicsSection::makeDetectorRows (const float* const* main, const float* const* sidechain, int n) noexcept
{
    const auto* const* const source = settings.hearsSidechain ? sidechain : main;

    for (std::size_t c = 0; c < loops.size(); ++c)
        rows::clampedProduct (detectorRows[c], source[c], detectorCurve.data(), loudestKey, n);

    detectorFilters.process (detectorRows.data(), n);
}

/** The gate's key has the input gain but neither sensitivity nor filters; the expander's is the bare audio. */
void DynamicsSection::makeKeys (const float* const* main, const float* const* sidechain, int n) noexcept
{
    const auto mode = circuits.expander.getMode();

    for (std::size_t c = 0; c < loops.size(); ++c)
    {
        auto* const key = loopRows[c].key;

        if (mode == Expander::Mode::gate)
        {
            const auto* const heard = settings.gateHearsSidechain ? sidechain[c] : main[c];
            rows::clampedProduct (key, heard, inputCurve.data(), loudestKey, n);
        }
        else if (mode == Expander::Mode::expander)
        {
            rows::copy (key, main[c], n);
            rows::clampToFinite (key, loudestKey, n);
        }
    }
}

/** Out of circuit the reading is that of the gain element without signal; also while the loop only runs along, unheard,
    because another control's ramp moves. */
void DynamicsSection::feedNeedles (int n) noexcept
{
    if (! isHeard)
        rows::fill (scratch.data(), idleGain, n);

    for (std::size_t c = 0; c < needles.size(); ++c)
        needles[c].process (isHeard ? loopRows[c].gains : scratch.data(), n);
}

//==============================================================================
bool DynamicsSection::isSettled() noexcept
{
    for (const auto* const ramp : getRamps())
        if (! ramp->isIdle())
            return false;

    // Out of circuit, all but the needles stand still.
    return ! published.hasNewValue()
           && (countInCircuit (1) == 0
               || (std::all_of (loops.begin(), loops.end(),
                                [this] (const auto& loop) { return tarvik::isSettled (circuits, loop); })
                   && detectorFilters.isSettled()));
}

void DynamicsSection::skip (int n) noexcept
{
    const auto isInCircuit = countInCircuit (1) > 0;

    for (std::size_t c = 0; c < loops.size(); ++c)
    {
        const auto before = loops[c].gain;

        if (isInCircuit)
            skipSilence (circuits, loops[c], n);

        needles[c].hold (isHeard ? 0.5 * (before + loops[c].gain) : static_cast<double> (idleGain), n);
    }
}

void DynamicsSection::writeReadOuts (ParameterSnapshot& snapshot) const noexcept
{
    constexpr double lampVolts = 0.1;
    auto smallestGain = idleGain;
    auto limiterVolts = 0.0;
    auto expanderVolts = 0.0;

    for (std::size_t c = 0; c < loops.size(); ++c)
    {
        smallestGain = std::min (smallestGain, needles[c].getReading());
        limiterVolts = std::max (limiterVolts, loops[c].limiterVolts);
        expanderVolts = std::max (expanderVolts, loops[c].expander.volts);
    }

    snapshot.gainReductionDb = dbFromGain (smallestGain / idleGain);
    snapshot.limiterActive = settings.isIn && limiterVolts > lampVolts;
    snapshot.expanderAmount = isHeard ? static_cast<float> (circuits.expander.getActivity (expanderVolts)) : 0.0f;
}

} // namespace tarvik
