// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/Decibels.h"
#include "plugin/EditorInterface.h"
#include "plugin/KVLProcessor.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarvik
{

namespace
{
constexpr double defaultCalibrationDb = 18.0;
constexpr double lowestCalibrationDb = 16.0;
constexpr double highestCalibrationDb = 24.0;
constexpr double squareRootOf1Point2 = 1.09544511501033;

constexpr int defaultOversampling = 2;
constexpr std::array oversamplingFactors { 1, 2, 4, 8, 16 };

constexpr double defaultZoom = 1.2;
} // namespace

void KVLProcessor::makeSettings()
{
    addSetting<double> (
        defaultCalibrationDb, [] (const double& db) { return db >= lowestCalibrationDb && db <= highestCalibrationDb; },
        [this] (const double& db) { calibrationChanged (db); });

    addSetting<int> (
        defaultOversampling,
        [] (const int& factor) {
            return std::find (oversamplingFactors.begin(), oversamplingFactors.end(), factor)
                   != oversamplingFactors.end();
        },
        [this] (const int& factor) { oversamplingChanged (factor); });

    addSetting<bool> (true, {},
                      [this] (const bool& isOn)
                      {
                          analogOn = isOn;

                          if (isPrepared())
                              requestUpdate();
                      });

    addSetting<double> (
        defaultZoom,
        [] (const double& zoom) { return zoom >= ZoomableEditor::lowestZoom && zoom <= ZoomableEditor::highestZoom; },
        [this] (const double&) { zoomChanged(); });
}

void KVLProcessor::calibrationChanged (double decibels)
{
    const auto gain = static_cast<float> (gainFromDb (decibels) * squareRootOf1Point2);

    // The strip multiplies by this gain and divides by it again. A damaged project may say anything: what cannot be
    // divided by leaves the gain as it was.
    if (! std::isfinite (gain) || gain <= 0.0f)
        return;

    calibrationGain = gain;

    for (auto& slot : slots)
        slot.calibration = static_cast<double> (gain);

    if (isPrepared())
        requestUpdate();
}

void KVLProcessor::oversamplingChanged (int setting)
{
    {
        const juce::ScopedLock lock (preparationLock);

        if (isPrepared())
        {
            // Both calls take the callback lock only to set the flag: blocks that come meanwhile are silent.
            suspendProcessing (true);
            prepareToPlay (preparedSampleRate, maxSliceSize);
            suspendProcessing (false);
        }
        else
        {
            latencyInUse = OversamplerBank::latencyOfFactor (OversamplerBank::usableFactor (setting));
        }
    }

    // Without a lock: a host may answer by restarting the plug-in on another thread, and wait for it.
    setLatencySamples (latencyInUse);

    if (isPrepared())
        updateHostDisplay();
}

void KVLProcessor::zoomChanged()
{
    if (juce::MessageManager::existsAndIsCurrentThread())
        tellEditorOfZoom();
    else
        zoomNotifier.triggerAsyncUpdate();
}

void KVLProcessor::tellEditorOfZoom()
{
    if (auto* const editor = dynamic_cast<ZoomableEditor*> (getActiveEditor()))
        editor->zoomSettingChanged();
}

void KVLProcessor::handleBroadcast (BroadcastMessage message)
{
    switch (message.type)
    {
        case BroadcastMessage::randomChannel:
            randomChannel();
            break;
        case BroadcastMessage::calibration:
            calibrationSetting().setValue (message.value);
            break;
        case BroadcastMessage::oversampling:
            oversamplingSetting().setValue (message.value);
            break;
        case BroadcastMessage::analog:
            analogSetting().setValue (message.value != 0);
            break;
        default:
            break;
    }
}

} // namespace tarvik
