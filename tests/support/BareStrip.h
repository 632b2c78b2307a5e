// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/Decibels.h"
#include "strip/ChannelStrip.h"
#include "tests/support/StripTestTools.h"

#include <string>

namespace tarvik::test
{

/** The real strip without its middle section: what is left is arithmetic that a test can do again exactly. It writes
    down what its base asks of it.
*/
class BareStrip final : public KVLProcessor
{
public:
    BareStrip()
    {
        for (int index = 0; index < numParameters; ++index)
            addParameter (createParameter (index).release());

        listenToParameters();
        analogSetting().setValue (false);
    }

    const juce::String getName() const override { return "Bare"; } // JUCE's own signature

    void prepareDsp (double rate, int factor, int numMain, int maxSamples) override
    {
        strip.prepare (rate, factor, numMain, maxSamples);
        note ("prepare " + std::to_string (static_cast<int> (rate)) + " " + std::to_string (factor) + " "
              + std::to_string (numMain) + " " + std::to_string (maxSamples));
        wasSuspendedWhilePreparing = isSuspended();
    }

    void resetDsp() override
    {
        strip.reset();
        note ("reset");
    }

    void releaseDsp() override { strip.release(); }

    void updateDsp (bool force) override
    {
        const auto& snapshot = currentSnapshot();
        inputGainRamp.request (gainFromDb (static_cast<double> (snapshot.inLevel)));
        outputGainRamp.request (gainFromDb (static_cast<double> (snapshot.outLevel)));
        strip.update (snapshot, force);
        note (force ? "update all" : "update");
    }

    bool isSidechainUsed() const override { return isListening; }

    void processPreOversampling (float** channels, int n, int) override
    {
        note ("pre " + std::to_string (n));
        strip.processPre (channels, n, analogOn);
    }

    void processChunk (float** channels, int n, int side) override
    {
        note ("chunk " + std::to_string (n) + (side > 0 ? " side " + std::to_string (side) : ""));
        sidechainSeen = side > 0 ? channels[2][n - 1] : 0.0f;

        volatile float subnormal = 1e-39f;
        flushesToZero = subnormal * 2.0f == 0.0f;
    }

    void processPostOversampling (float** channels, int n, int) override
    {
        note ("post " + std::to_string (n));
        strip.processPost (channels, n, analogOn, currentSnapshot());
    }

    std::vector<std::string> takeLog() { return std::exchange (log, {}); }

    bool isLogging = true; ///< Off where several threads are at work.
    bool isListening = false;
    bool wasSuspendedWhilePreparing = false;
    bool flushesToZero = false;
    float sidechainSeen = 0.0f;

private:
    void note (std::string what)
    {
        if (isLogging)
            log.push_back (std::move (what));
    }

    ChannelStrip strip;
    std::vector<std::string> log;
};

/** With a main width, the side chain off, and an oversampling factor. */
inline std::unique_ptr<BareStrip> makeBareStrip (int mainChannels = 2, int factor = 1)
{
    auto strip = makeStrip<BareStrip> (mainChannels);
    strip->isLogging = false;
    strip->oversamplingSetting().setValue (factor);
    return strip;
}

} // namespace tarvik::test
