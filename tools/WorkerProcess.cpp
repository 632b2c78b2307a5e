// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/WorkerProcess.h"

#include "tools/Interruption.h"
#include "tools/ToolError.h"

#include <juce_events/juce_events.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <sys/prctl.h>
#include <sys/wait.h>

namespace tarvik
{

namespace
{
constexpr int succeeded = 0, failed = 2;

void sendAll (int pipe, const std::string& text)
{
    for (std::size_t numSent = 0; numSent < text.size();)
    {
        const auto n = ::write (pipe, text.data() + numSent, text.size() - numSent);

        if (n < 0 && errno != EINTR)
            return; // nobody listens any more

        numSent += static_cast<std::size_t> (std::max<ssize_t> (n, 0));
    }
}

int work (int pipe, const WorkerProcess::Work& task)
{
    const auto sendMessage = [pipe] (const juce::String& text) { sendAll (pipe, "\n" + text.toStdString()); };
    int numDots = 0;

    try
    {
        const juce::ScopedJuceInitialiser_GUI juceLibrary;
        sendMessage (task (
            [pipe, &numDots] (juce::int64 done, juce::int64 total)
            {
                for (; numDots < perCentOf (done, total); ++numDots)
                    sendAll (pipe, ".");
            }));
        return succeeded;
    }
    catch (const std::exception& error)
    {
        sendMessage (error.what());
    }
    catch (const Interrupted& interruption)
    {
        endBySignal (interruption.signalNumber);
    }

    return failed;
}
} // namespace

WorkerProcess::WorkerProcess (const Work& task)
{
    int ends[2] = {};

    if (::pipe (ends) != 0)
        throw ToolError ("cannot start a process: " + juce::String (std::strerror (errno)));

    // What stands in the buffers must not be written twice.
    std::cout.flush();
    const auto parent = ::getpid();
    process = ::fork();

    if (process == 0)
    {
        // The parent's death is a wish to stop like another, and must not come as a broken pipe.
        ::prctl (PR_SET_PDEATHSIG, SIGTERM);
        std::signal (SIGPIPE, SIG_IGN);
        ::close (ends[0]);

        // Only the parent prints: what a module says as it is loaded would come once for each file, and into the bar.
        ::dup2 (::open ("/dev/null", O_WRONLY), STDOUT_FILENO);
        ::_exit (::getppid() == parent ? work (ends[1], task) : failed);
    }

    ::close (ends[1]);
    pipeEnd = ends[0];

    if (process < 0)
    {
        ::close (pipeEnd);
        throw ToolError ("cannot start a process: " + juce::String (std::strerror (errno)));
    }
}

WorkerProcess::~WorkerProcess()
{
    if (process > 0)
    {
        ::kill (process, SIGTERM);
        finish();
    }

    ::close (pipeEnd);
}

bool WorkerProcess::receive()
{
    constexpr std::size_t most = 4096;
    char bytes[most];
    const auto n = ::read (pipeEnd, bytes, most);

    if (n > 0)
        received += juce::String::fromUTF8 (bytes, static_cast<int> (n));

    return n > 0 || (n < 0 && errno == EINTR);
}

bool WorkerProcess::finish()
{
    int status = 0;

    while (::waitpid (process, &status, 0) < 0 && errno == EINTR)
        continue;

    process = -1;
    isOrderly = WIFEXITED (status);
    told = isOrderly ? received.fromFirstOccurrenceOf ("\n", false, false)
                     : "its process was ended by signal " + juce::String (WTERMSIG (status)) + " ("
                           + juce::String (::strsignal (WTERMSIG (status))) + ")";
    return isOrderly && WEXITSTATUS (status) == succeeded;
}

} // namespace tarvik
