// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "PlainDynamics.h"
#include "strip/DynamicsSection.h"
#include "tests/support/Signals.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace tarvik::test
{
// Noise whose level swells and falls by 60 dB below `loudest`, in stretches of 5 to 100 ms.
inline Signal bursts (unsigned seed, double loudest, double rateHz, double seconds)
{
    std::mt19937 random (seed);
    std::uniform_real_distribution<double> uniform (0.0, 1.0);
    Signal signal (static_cast<std::size_t> (seconds * rateHz));
    auto level = loudest;
    std::size_t left = 0;

    for (auto& sample : signal)
    {
        if (left-- == 0)
        {
            level = loudest * std::pow (10.0, -3.0 * uniform (random));
            left = static_cast<std::size_t> ((0.005 + 0.095 * uniform (random)) * rateHz);
        }

        sample = static_cast<float> (level * (2.0 * uniform (random) - 1.0));
    }

    return signal;
}

// A section at rest on its settings.
struct PreparedSection
{
    PreparedSection (const ParameterSnapshot& snapshot, double rateHz, int numMain) : main (numMain)
    {
        section.prepare (rateHz, numMain, blockLength);
        section.update (snapshot, true);
        section.reset();
    }

    // Whole channels, main ones first, in slices of the given lengths in turn; the main ones come back changed.
    std::vector<Signal> process (std::vector<Signal> channels, const std::vector<int>& slices = { blockLength })
    {
        inPieces (channels.front().size(), slices,
                  [&] (std::size_t begin, int n)
                  {
                      std::vector<float*> rows;

                      for (auto& channel : channels)
                          rows.push_back (channel.data() + begin);

                      section.process (rows.data(), n, static_cast<int> (channels.size()) - main);
                  });
        channels.resize (static_cast<std::size_t> (main));
        return channels;
    }

    ParameterSnapshot readOuts() const
    {
        ParameterSnapshot snapshot;
        section.writeReadOuts (snapshot);
        return snapshot;
    }

    static constexpr int blockLength = 256;
    int main;
    DynamicsSection section;
};

// Every setting of the dynamics by chance, but for the detector's filters, which stay out.
inline ParameterSnapshot randomSettings (std::mt19937& random)
{
    const auto real = [&] (double low, double high)
    { return static_cast<float> (std::uniform_real_distribution<double> (low, high) (random)); };
    const auto index = [&] (int size) { return std::uniform_int_distribution<int> (0, size - 1) (random); };
    const auto flag = [&] { return index (2) == 1; };

    ParameterSnapshot s;
    s.compMix = flag() ? 1.0f : real (0.0, 1.0);
    s.compThreshold = real (-20.0, 0.0);
    s.compRatio = index (6);
    s.compAttack = index (3);
    s.compRelease = index (9);
    s.compInput = real (0.0, 5.0);
    s.compOutput = real (0.0, 5.0);
    s.compLimit = flag();
    s.compNuke = flag();
    s.compExtSideChain = flag();
    s.limiterSensitivity = index (3);
    s.expThreshold = real (-40.0, 10.0);
    s.expRange = flag() ? -20.0f : real (-20.0, 0.0);
    s.expAttack = index (3);
    s.expRelease = real (0.025, 1.6);
    s.expMode = index (3);
    s.expHold = flag();
    s.expInverted = index (4) == 0;
    s.expExtSideChain = flag();
    return s;
}
} // namespace tarvik::test
