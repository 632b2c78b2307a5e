// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvik
{

/** Thrown when the user, or the system, has asked the tool to stop: whoever holds half a file takes it away. */
struct Interrupted
{
    int signalNumber = 0;
};

/** From here on SIGINT, SIGTERM and SIGHUP (on Windows SIGBREAK) are noted instead of ending the process at once. */
void noteTerminationSignals();

/** Throws `Interrupted` if such a signal has come. */
void throwIfInterrupted();

/** Ends the process by the signal's own default, so that the caller sees the truth. */
[[noreturn]] void endBySignal (int signalNumber);

} // namespace tarvik
