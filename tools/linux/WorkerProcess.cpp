// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/WorkerProcess.h"

#include "tools/ToolError.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarvik
{

struct WorkerProcess::Process
{
    pid_t id = -1; ///< Negative: none.
    bool isRunning = false;
    int pipeEnd = -1;
};

namespace
{
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
} // namespace

WorkerProcess::WorkerProcess (WorkerTask task, const CommandLine& line) : process (std::make_unique<Process>())
{
    int ends[2] = {};

    if (::pipe (ends) != 0)
        throw ToolError ("cannot start a process: " + juce::String (std::strerror (errno)));

    // What stands in the buffers must not be written twice.
    std::cout.flush();
    const auto parent = ::getpid();
    process->id = ::fork();

    if (process->id == 0)
    {
        // The parent's death is a wish to stop like another, and must not come as a broken pipe.
        ::prctl (PR_SET_PDEATHSIG, SIGTERM);
        std::signal (SIGPIPE, SIG_IGN);
        ::close (ends[0]);

        // Only the parent prints: what a module says as it is loaded would come once for each file, and into the bar.
        ::dup2 (::open ("/dev/null", O_WRONLY), STDOUT_FILENO);
        ::_exit (::getppid() == parent
                     ? performTask (task, line, [&ends] (const std::string& text) { sendAll (ends[1], text); })
                     : taskFailed);
    }

    ::close (ends[1]);
    process->pipeEnd = ends[0];
    process->isRunning = process->id > 0;

    if (process->id < 0)
    {
        ::close (process->pipeEnd);
        throw ToolError ("cannot start a process: " + juce::String (std::strerror (errno)));
    }
}

WorkerProcess::~WorkerProcess()
{
    if (process->isRunning)
    {
        ::kill (process->id, SIGTERM);
        finish();
    }

    ::close (process->pipeEnd);
}

int WorkerProcess::id() const { return process->id; }

std::vector<bool> WorkerProcess::awaitNews (const std::vector<const WorkerProcess*>& processes, int mostMilliseconds)
{
    std::vector<pollfd> pipes;
    std::vector<bool> haveNews;

    for (const auto* const each : processes)
        pipes.push_back ({ each->process->pipeEnd, POLLIN, 0 });

    ::poll (pipes.data(), pipes.size(), mostMilliseconds);

    for (const auto& pipe : pipes)
        haveNews.push_back (pipe.revents != 0);

    return haveNews;
}

bool WorkerProcess::receive()
{
    constexpr std::size_t most = 4096;
    char bytes[most];
    const auto n = ::read (process->pipeEnd, bytes, most);

    if (n > 0)
        received += juce::String::fromUTF8 (bytes, static_cast<int> (n));

    return n > 0 || (n < 0 && errno == EINTR);
}

bool WorkerProcess::finish()
{
    int status = 0;

    while (::waitpid (process->id, &status, 0) < 0 && errno == EINTR)
        continue;

    process->isRunning = false;
    isOrderly = WIFEXITED (status);
    told = isOrderly ? received.fromFirstOccurrenceOf ("\n", false, false)
                     : "its process was ended by signal " + juce::String (WTERMSIG (status)) + " ("
                           + juce::String (::strsignal (WTERMSIG (status))) + ")";
    return isOrderly && WEXITSTATUS (status) == taskSucceeded;
}

/** A fork is no program started again. */
std::optional<int> actAsWorker (const juce::StringArray&) { return {}; }

} // namespace tarvik
