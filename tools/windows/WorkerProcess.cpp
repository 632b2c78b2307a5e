// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/WorkerProcess.h"

#include "tools/Interruption.h"
#include "tools/ToolError.h"

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace tarvik
{

struct WorkerProcess::Process
{
    ~Process()
    {
        for (const auto handle : { process, job, pipeEnd })
            if (handle != nullptr)
                ::CloseHandle (handle);
    }

    HANDLE process = nullptr;
    HANDLE job = nullptr; ///< Ends the process when the last handle goes, so also when this program dies.
    HANDLE pipeEnd = nullptr;
    DWORD id = 0;
    bool isRunning = false;
};

namespace
{
constexpr const char* tryWord = "--worker-trial";
constexpr const char* renderWord = "--worker-render";

/** As a program's run-time library takes a command line apart again: a quotation mark, and each backslash before one, has a
    backslash before it.
*/
juce::String quoted (const juce::String& word)
{
    juce::String text;
    int numBackslashes = 0;

    for (auto c = word.getCharPointer(); ! c.isEmpty(); ++c)
    {
        if (*c == '"')
            text += juce::String::repeatedString ("\\", numBackslashes + 1);

        numBackslashes = *c == '\\' ? numBackslashes + 1 : 0;
        text += *c;
    }

    return "\"" + text + juce::String::repeatedString ("\\", numBackslashes) + "\"";
}

juce::String commandFor (WorkerTask task, const CommandLine& line)
{
    juce::StringArray words { juce::File::getSpecialLocation (juce::File::currentExecutableFile).getFullPathName(),
                              task == WorkerTask::render ? renderWord : tryWord };
    words.addArray (line.renderOptions);
    words.addArray (task == WorkerTask::render ? juce::StringArray { "--", line.inputPath, line.outputPath }
                                               : juce::StringArray { "--", "unused", "unused" });

    for (auto& word : words)
        word = quoted (word);

    return words.joinIntoString (" ");
}

struct Pipe
{
    Pipe()
    {
        SECURITY_ATTRIBUTES inherited { sizeof (SECURITY_ATTRIBUTES), nullptr, TRUE };

        if (::CreatePipe (&readEnd, &writeEnd, &inherited, 0) == 0)
            throw ToolError ("cannot start a process");

        ::SetHandleInformation (readEnd, HANDLE_FLAG_INHERIT, 0);
    }

    ~Pipe() { ::CloseHandle (writeEnd); } // or the other end would never come to its end

    HANDLE readEnd = nullptr, writeEnd = nullptr;
};
} // namespace

WorkerProcess::WorkerProcess (WorkerTask task, const CommandLine& line) : process (std::make_unique<Process>())
{
    const Pipe pipe;
    process->pipeEnd = pipe.readEnd;
    process->job = ::CreateJobObjectW (nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    ::SetInformationJobObject (process->job, JobObjectExtendedLimitInformation, &limits, sizeof (limits));

    STARTUPINFOW start {};
    start.cb = sizeof (start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = pipe.writeEnd;
    start.hStdError = ::GetStdHandle (STD_ERROR_HANDLE);
    PROCESS_INFORMATION started {};
    const auto command = commandFor (task, line);
    std::vector<wchar_t> words (command.toWideCharPointer(), command.toWideCharPointer() + command.length() + 1);

    if (::CreateProcessW (nullptr, words.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr, nullptr, &start,
                          &started)
        == 0)
        throw ToolError ("cannot start a process: error " + juce::String (static_cast<int> (::GetLastError())));

    process->process = started.hProcess;
    process->id = started.dwProcessId;
    process->isRunning = true;
    ::AssignProcessToJobObject (process->job, started.hProcess);
    ::ResumeThread (started.hThread);
    ::CloseHandle (started.hThread);
}

WorkerProcess::~WorkerProcess()
{
    if (process->isRunning)
    {
        ::TerminateProcess (process->process, taskFailed);
        ::WaitForSingleObject (process->process, INFINITE);
    }
}

int WorkerProcess::id() const { return static_cast<int> (process->id); }

/** A pipe cannot be waited for together with others, so each is looked at from time to time. */
std::vector<bool> WorkerProcess::awaitNews (const std::vector<const WorkerProcess*>& processes, int mostMilliseconds)
{
    constexpr DWORD step = 5;
    std::vector<bool> haveNews (processes.size());

    for (int waited = 0; waited <= mostMilliseconds; waited += static_cast<int> (step))
    {
        bool any = false;

        for (std::size_t i = 0; i < processes.size(); ++i)
        {
            DWORD available = 0;
            const auto isOpen =
                ::PeekNamedPipe (processes[i]->process->pipeEnd, nullptr, 0, nullptr, &available, nullptr) != 0;
            haveNews[i] = ! isOpen || available > 0;
            any = any || haveNews[i];
        }

        if (any)
            break;

        ::Sleep (step);
    }

    return haveNews;
}

bool WorkerProcess::receive()
{
    constexpr DWORD most = 4096;
    std::array<char, most> bytes {};
    DWORD n = 0;

    if (::ReadFile (process->pipeEnd, bytes.data(), most, &n, nullptr) == 0)
        return false;

    received += juce::String::fromUTF8 (bytes.data(), static_cast<int> (n));
    return true;
}

bool WorkerProcess::finish()
{
    ::WaitForSingleObject (process->process, INFINITE);
    DWORD status = 0;
    ::GetExitCodeProcess (process->process, &status);
    process->isRunning = false;
    isOrderly = status == taskSucceeded || status == taskFailed;
    told = isOrderly ? received.fromFirstOccurrenceOf ("\n", false, false)
                     : "its process ended with status 0x" + juce::String::toHexString (static_cast<int> (status));
    return status == taskSucceeded;
}

std::optional<int> actAsWorker (const juce::StringArray& words)
{
    if (words[0] != tryWord && words[0] != renderWord)
        return {};

    auto single = words;
    single.remove (0);
    auto line = parseCommandLine (single);
    const auto task = words[0] == renderWord ? WorkerTask::render : WorkerTask::trial;

    if (task == WorkerTask::render)
        line.saveStatePath = {}; // the trial has written it

    // The output is the starter's. What a module says as it is loaded must not come between.
    const auto output = ::_dup (::_fileno (stdout));
    ::_setmode (output, _O_BINARY);
    std::freopen ("NUL", "w", stdout);
    noteTerminationSignals();
    return performTask (task, line,
                        [output] (const std::string& text)
                        { ::_write (output, text.data(), static_cast<unsigned> (text.size())); });
}

} // namespace tarvik
