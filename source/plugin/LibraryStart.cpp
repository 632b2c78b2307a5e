// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/LibraryStart.h"

#include "dsp/InstructionSets.h"
#include "dsp/LibrarySelfChecks.h"
#include "plugin/ProductRecord.h"

#include <cstdio>
#include <memory>
#include <mutex>

namespace tarvik
{

namespace
{
/** The one pair of self-checks of the process. */
struct SelfCheckSlots
{
    /** JUCE's list of checks comes into being first, so that at unloading it goes last and the checks can sign off. */
    SelfCheckSlots() { juce::UnitTest::getAllTests(); }

    void renew()
    {
        const std::lock_guard lock (mutex);
        vBufferTest = std::make_unique<VBufferTest>();
        polyphaseTest = std::make_unique<PolyphaseTest>();
    }

    std::mutex mutex;
    std::unique_ptr<VBufferTest> vBufferTest;
    std::unique_ptr<PolyphaseTest> polyphaseTest;
};
} // namespace

void startLibrary()
{
    static SelfCheckSlots slots;

    // One write, so that lines of several instances never mix.
    std::fputs ("Initializing KVLLib...\n", stdout);
    std::fflush (stdout);

    writeProductRecord();
    selectInstructionSet();
    slots.renew();
}

} // namespace tarvik
