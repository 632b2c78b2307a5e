// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Interruption.h"

#include <juce_core/system/juce_TargetPlatform.h>

#include <csignal>
#include <cstdlib>
#include <initializer_list>

namespace tarvik
{

namespace
{
#if JUCE_WINDOWS
constexpr int closingSignal = SIGBREAK; // the console's window goes
#else
constexpr int closingSignal = SIGHUP;
#endif

volatile std::sig_atomic_t notedSignal = 0;

void note (int signalNumber) { notedSignal = signalNumber; }
} // namespace

void noteTerminationSignals()
{
    for (const auto number : { SIGINT, SIGTERM, closingSignal })
        std::signal (number, note);
}

void throwIfInterrupted()
{
    if (notedSignal != 0)
        throw Interrupted { notedSignal };
}

void endBySignal (int signalNumber)
{
    std::signal (signalNumber, SIG_DFL);
    std::raise (signalNumber);
    std::abort(); // not reached: each of the signals ends the process
}

} // namespace tarvik
