// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/StripTestTools.h"

#include <sstream>
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
        note ("prepare", static_cast<int> (rate), factor, numMain, maxSamples);
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
        note ("pre", n);
        Tarvik41Processor::processPreOversampling (channels, n, side);
    }

    void processChunk (float** channels, int n, int side) override
    {
        side > 0 ? note ("chunk", n, "side", side) : note ("chunk", n);
        sidechainSeen = side > 0 ? channels[2][n - 1] : 0.0f;
        volatile float subnormal = 1e-39f;
        flushesToZero = subnormal * 2.0f == 0.0f;
    }

    void processPostOversampling (float** channels, int n, int side) override
    {
        note ("post", n);
        Tarvik41Processor::processPostOversampling (channels, n, side);
    }

    void processBypassedChunk (int n, int side, int factor) override
    {
        note ("bypassed", n, "side", side, "factor", factor);
    }

    std::vector<std::string> takeLog() { return std::exchange (log, {}); }

    std::function<void()> afterUpdate = [] {}; ///< At the end of the next update.
    bool isLogging = true;                     ///< Off where several threads are at work.
    bool wasSuspendedWhilePreparing = false, flushesToZero = false;
    float sidechainSeen = 0.0f;

private:
    template <typename... Words>
    void note (const char* what, const Words&... words)
    {
        std::ostringstream text (what, std::ios::ate);
        ((text << " " << words), ...);

        if (isLogging)
            log.push_back (text.str());
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
