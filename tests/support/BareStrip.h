// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/StripTestTools.h"

#include <string>

namespace tarvik::test
{

/** The real strip without its middle section: what is left is arithmetic that a test can do again exactly. It writes
    down what its base asks of it.
*/
class BareStrip final : public Tarvik41Processor
{
public:
    BareStrip() { analogSetting().setValue (false); }

    void prepareDsp (double rate, int factor, int numMain, int maxSamples) override
    {
        Tarvik41Processor::prepareDsp (rate, factor, numMain, maxSamples);
        note ("prepare " + std::to_string (static_cast<int> (rate)) + " " + std::to_string (factor) + " "
              + std::to_string (numMain) + " " + std::to_string (maxSamples));
        wasSuspendedWhilePreparing = isSuspended();
    }

    void resetDsp() override
    {
        Tarvik41Processor::resetDsp();
        note ("reset");
    }

    void updateDsp (bool force) override
    {
        Tarvik41Processor::updateDsp (force);
        note (force ? "update all" : "update");
        std::exchange (afterUpdate, [] {})();
    }

    void processPreOversampling (float** channels, int n, int side) override
    {
        note ("pre " + std::to_string (n));
        Tarvik41Processor::processPreOversampling (channels, n, side);
    }

    void processChunk (float** channels, int n, int side) override
    {
        note ("chunk " + std::to_string (n) + (side > 0 ? " side " + std::to_string (side) : ""));
        sidechainSeen = side > 0 ? channels[2][n - 1] : 0.0f;

        volatile float subnormal = 1e-39f;
        flushesToZero = subnormal * 2.0f == 0.0f;
    }

    void processPostOversampling (float** channels, int n, int side) override
    {
        note ("post " + std::to_string (n));
        Tarvik41Processor::processPostOversampling (channels, n, side);
    }

    void processBypassedChunk (int n, int side, int factor) override
    {
        note ("bypassed " + std::to_string (n) + " side " + std::to_string (side) + " factor "
              + std::to_string (factor));
    }

    std::vector<std::string> takeLog() { return std::exchange (log, {}); }

    std::function<void()> afterUpdate = [] {}; ///< At the end of the next update.
    bool isLogging = true;                     ///< Off where several threads are at work.
    bool wasSuspendedWhilePreparing = false, flushesToZero = false;
    float sidechainSeen = 0.0f;

private:
    void note (std::string what)
    {
        if (isLogging)
            log.push_back (std::move (what));
    }

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
