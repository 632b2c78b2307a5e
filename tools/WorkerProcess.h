// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/WorkerTask.h"

#include <memory>
#include <optional>
#include <vector>

namespace tarvik
{

/** A piece of work in a process of its own, beside the one that starts it and waits.

    Why not a thread: JUCE's hosting classes make, lay out, load and prepare every module on the one message thread of a
    process, so that workers would queue for all but the audio; a module that crashes would take the other files with
    it; and a process that renders one file does what a render of that file alone does, to the bit. What it costs is
    loading the module once for each file.

    On Linux the process is a copy of this one, which must therefore have no other thread and must not have started JUCE's
    messages: several processes would share their queue. On Windows the program is started again.
*/
class WorkerProcess
{
public:
    /** Does the task on JUCE's message thread of the new process. What it throws as a `std::exception` is told; by
        `Interrupted` the process ends. Signals for termination are noted already. Throws `ToolError` if the system has no
        process to spare.
    */
    WorkerProcess (WorkerTask task, const CommandLine& line);

    /** Ends a process that is still at work, on Linux by the signal that lets it clean up, and waits for that. */
    ~WorkerProcess();

    WorkerProcess (const WorkerProcess&) = delete;
    WorkerProcess& operator= (const WorkerProcess&) = delete;

    int id() const;

    /** Waits until one of them has something to `receive`, or that long, and says for each whether it has. */
    static std::vector<bool> awaitNews (const std::vector<const WorkerProcess*>& processes, int mostMilliseconds);

    /** Takes what has come in, and waits for it if there is nothing. False if that was the last: the work is done, or has
        failed.
    */
    bool receive();

    int perCent() const { return received.indexOfChar ('\n') < 0 ? received.length() : wholePerCent; }

    /** Waits for the process, which has nothing left to say. True if its work is done. */
    bool finish();

    /** What is to be told of the work, or why it failed. Known after `finish`. */
    const juce::String& message() const { return told; }

    /** False if the process ended so suddenly that it could not clean up. */
    bool endedInOrder() const { return isOrderly; }

private:
    struct Process; ///< What the system knows of it.

    const std::unique_ptr<Process> process;
    juce::String received; ///< A dot for each per cent, a line's end, and the message.
    juce::String told;
    bool isOrderly = false;
};

/** Where this program was started again as a worker, does the task that the words name, and returns the process's status.
    Otherwise there is none.
*/
std::optional<int> actAsWorker (const juce::StringArray& words);

} // namespace tarvik
