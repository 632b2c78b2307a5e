// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvik
{

/** Checks that a user or a host can run on the machine at hand through juce::UnitTestRunner, category "KVLLib": whether
    the code paths chosen for this processor give what the plain arithmetic gives.
*/
class VBufferTest final : public juce::UnitTest
{
public:
    VBufferTest();
    void runTest() override;
};

/** The same for upsampling to each processing rate and back: 52 samples late, and at its level. */
class PolyphaseTest final : public juce::UnitTest
{
public:
    PolyphaseTest();
    void runTest() override;
};

} // namespace tarvik
