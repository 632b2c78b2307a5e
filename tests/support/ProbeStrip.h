// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/KVLProcessor.h"
#include "plugin/ParameterTable.h"

#include <string>
#include <vector>

namespace tarvik::test
{

/** A strip with all parameters that does nothing but write down what its base asks of it. */
class ProbeStrip final : public KVLProcessor
{
public:
    ProbeStrip()
    {
        for (int index = 0; index < numParameters; ++index)
            addParameter (createParameter (index).release());

        listenToParameters();
    }

    const juce::String getName() const override { return "Probe"; } // NOLINT: JUCE's own signature

    void prepareDsp (double rate, int factor, int numMain, int maxSamples) override
    {
        log.push_back ("prepare " + std::to_string (static_cast<int> (rate)) + " " + std::to_string (factor) + " "
                       + std::to_string (numMain) + " " + std::to_string (maxSamples));
        wasSuspendedWhilePreparing = isSuspended();
    }

    void resetDsp() override { log.push_back ("reset"); }

    void releaseDsp() override { log.push_back ("release"); }

    void updateDsp (bool force) override { log.push_back (force ? "update all" : "update"); }

    bool isSidechainUsed() const override { return isListening; }

    void processPreOversampling (float**, int n, int side) override { note ("pre", n, side); }

    void processPostOversampling (float**, int n, int side) override { note ("post", n, side); }

    void processChunk (float** channels, int n, int side) override
    {
        note ("chunk", n, side);
        mainSeen = channels[0][n - 1];
        sidechainSeen = side > 0 ? channels[2][n - 1] : 0.0f;

        volatile float subnormal = 1e-39f;
        flushesToZero = subnormal * 2.0f == 0.0f;
    }

    void processBypassedChunk (int n, int side, int factor) override
    {
        note ("bypassed", n, side);
        factorWhileBypassed = factor;
    }

    void requestInputGain (double gain) { inputGainRamp.request (gain); }

    std::vector<std::string> log;
    bool isListening = false;
    bool wasSuspendedWhilePreparing = false;
    bool flushesToZero = false;
    int factorWhileBypassed = 0;
    float mainSeen = 0.0f;
    float sidechainSeen = 0.0f;

private:
    void note (const char* what, int n, int side)
    {
        log.push_back (std::string (what) + " " + std::to_string (n)
                       + (side > 0 ? " side " + std::to_string (side) : ""));
    }
};

} // namespace tarvik::test
