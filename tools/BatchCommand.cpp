// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/BatchPlan.h"
#include "tools/Commands.h"
#include "tools/Interruption.h"
#include "tools/OutputFile.h"
#include "tools/ParameterArguments.h"
#include "tools/ToolError.h"
#include "tools/WorkerProcess.h"

#include <iostream>
#include <list>
#include <memory>
#include <thread>

namespace tarvik
{

namespace
{
class Batch
{
public:
    explicit Batch (const CommandLine& commandLine) : line (commandLine), plan (planBatch (commandLine)) {}

    void perform()
    {
        prepare();

        for (const auto& path : plan.kept)
            std::cout << path << " is there already and is kept\n";

        for (const auto& item : plan.items)
            totalBytes += item.numBytes;

        const auto numCores = std::max (static_cast<int> (std::thread::hardware_concurrency()), 1);
        const auto numWorkers = static_cast<std::size_t> (line.numJobs > 0 ? line.numJobs : numCores);

        while (next < plan.items.size() || ! workers.empty())
        {
            throwIfInterrupted();

            while (next < plan.items.size() && workers.size() < numWorkers)
                start (plan.items[next++]);

            showProgress();
            receive();
        }

        bar.erase();
        std::cout << numRendered << " rendered, " << plan.kept.size() << " kept, " << numFailed << " failed\n";

        if (numFailed > 0)
            throw ToolError (juce::String (numFailed) + " of " + juce::String (plan.items.size()) + " files failed");
    }

private:
    struct Worker
    {
        BatchItem item;
        std::unique_ptr<WorkerProcess> process;
    };

    /** What can go wrong before the first file. Leaves no new folder if it does. */
    void prepare()
    {
        parseParameterSettings (line.assignments); // mistakes in them need no module
        const auto folder = fileAt (line.outputPath);
        const auto isNew = ! folder.exists();

        if (folder.createDirectory().failed())
            throw ToolError ("cannot make the folder '" + line.outputPath + "'");

        try
        {
            std::cout << tryOut();
        }
        catch (...)
        {
            if (isNew)
                folder.deleteFile(); // only if it is empty

            throw;
        }
    }

    /** Tries the settings in a process of its own and returns its report. Throws `ToolError` or `Interrupted`, and then
        nothing of the process is left.
    */
    juce::String tryOut() const
    {
        WorkerProcess trial (WorkerTask::trial, line);

        while (trial.receive())
            throwIfInterrupted();

        throwIfInterrupted();
        const auto id = trial.id();
        const auto isDone = trial.finish();

        if (! trial.endedInOrder() && line.saveStatePath.isNotEmpty())
            OutputFile (line.saveStatePath).removeLeftOver (id);

        if (! isDone)
            throw ToolError (trial.message());

        return trial.message();
    }

    void start (const BatchItem& item)
    {
        auto single = line;
        single.inputPath = item.inputPath;
        single.outputPath = item.outputPath;
        single.saveStatePath = {}; // written already

        workers.push_back ({ item, std::make_unique<WorkerProcess> (WorkerTask::render, single) });
    }

    /** Waits until a process has written something, or a signal comes, and takes what there is. */
    void receive()
    {
        constexpr int pollMilliseconds = 200; // a signal that comes in the wrong moment waits so long
        std::vector<const WorkerProcess*> processes;

        for (const auto& worker : workers)
            processes.push_back (worker.process.get());

        const auto haveNews = WorkerProcess::awaitNews (processes, pollMilliseconds);
        throwIfInterrupted();
        auto worker = workers.begin();

        for (const auto hasNews : haveNews)
        {
            const auto isAtWork = ! hasNews || worker->process->receive();

            if (! isAtWork)
                tell (*worker);

            worker = isAtWork ? std::next (worker) : workers.erase (worker);
        }
    }

    void tell (Worker& worker)
    {
        auto& process = *worker.process;
        const auto id = process.id();
        const auto isDone = process.finish();
        bar.erase();

        if (isDone)
            std::cout << process.message() << std::endl;
        else
            std::cerr << "tarvik41-render: " << worker.item.inputPath << ": " << process.message() << std::endl;

        if (! process.endedInOrder())
            OutputFile (worker.item.outputPath).removeLeftOver (id);

        ++(isDone ? numRendered : numFailed);
        bytesDone += worker.item.numBytes;
    }

    void showProgress()
    {
        auto bytes = bytesDone;

        for (const auto& worker : workers)
            bytes += worker.item.numBytes * worker.process->perCent() / wholePerCent;

        bar.show (perCentOf (bytes, totalBytes),
                  juce::String (numRendered + numFailed) + " of " + juce::String (plan.items.size()) + " files");
    }

    const CommandLine line;
    const BatchPlan plan;
    ProgressBar bar;
    std::list<Worker> workers;
    std::size_t next = 0;
    int numRendered = 0, numFailed = 0;
    juce::int64 bytesDone = 0, totalBytes = 0;
};
} // namespace

void renderBatch (const CommandLine& line)
{
    noteTerminationSignals();
    Batch (line).perform();
}

} // namespace tarvik
