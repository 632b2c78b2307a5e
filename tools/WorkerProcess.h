// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/ProgressBar.h"

#include <sys/types.h>

namespace tarvik
{

/** A piece of work in a process of its own, beside the one that starts it and waits.

    Why not a thread: JUCE's hosting classes make, lay out, load and prepare every module on the one message thread of a
    process, so that workers would queue for all but the audio; a module that crashes would take the other files with
    it; and a process that renders one file does what a render of that file alone does, to the bit. What it costs is
    loading the module once for each file.

    The process is a copy of this one, which must therefore have no other thread and must not have started JUCE's
    messages: several processes would share their queue.
*/
class WorkerProcess
{
public:
    /** Does the work on JUCE's message thread of the new process and returns what is to be told of it. What it throws
        as a `std::exception` is told instead; by `Interrupted` the process ends.
    */
    using Work = std::function<juce::String (const ShowProgress&)>;

    /** Starts. Signals for termination are noted already. Throws `ToolError` if the system has no process to spare. */
    explicit WorkerProcess (const Work& work);

    /** Ends a process that is still at work, by the signal that lets it clean up, and waits for that. */
    ~WorkerProcess();

    WorkerProcess (const WorkerProcess&) = delete;
    WorkerProcess& operator= (const WorkerProcess&) = delete;

    pid_t id() const { return process; }

    /** Can be read from, or is at its end, when there is something to `receive`. */
    int descriptor() const { return pipeEnd; }

    /** Takes what has come in. False if that was the last: the work is done, or has failed. */
    bool receive();

    int perCent() const { return received.indexOfChar ('\n') < 0 ? received.length() : wholePerCent; }

    /** Waits for the process, which has nothing left to say. True if its work is done. */
    bool finish();

    /** What is to be told of the work, or why it failed. Known after `finish`. */
    const juce::String& message() const { return told; }

    /** False if the process ended so suddenly that it could not clean up. */
    bool endedInOrder() const { return isOrderly; }

private:
    pid_t process = -1; ///< Negative: none, or waited for.
    int pipeEnd = -1;
    juce::String received; ///< A dot for each per cent, a line's end, and the message.
    juce::String told;
    bool isOrderly = false;
};

} // namespace tarvik
