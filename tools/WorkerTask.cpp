// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/WorkerTask.h"

#include "tools/Interruption.h"
#include "tools/RenderCommand.h"

#include <juce_events/juce_events.h>

#include <sstream>

namespace tarvik
{

namespace
{
juce::String describe (const CommandLine& line, const RenderFigures& figures)
{
    const auto peak = std::isfinite (figures.peakDbfs) ? juce::String (figures.peakDbfs, 2) : juce::String ("-inf");
    auto text = line.inputPath + " -> " + line.outputPath + ", peak " + peak + " dBFS, "
                + juce::String (figures.timesRealTime, 1) + " times real time";

    if (figures.clippedSamples > 0)
        text += ", " + juce::String (figures.clippedSamples) + " samples clipped";

    if (figures.badSamples > 0)
        text += ", " + juce::String (figures.badSamples) + " samples are not numbers";

    return text;
}

juce::String perform (WorkerTask task, const CommandLine& line, const ShowProgress& showProgress)
{
    std::ostringstream report;

    if (task == WorkerTask::render)
        return describe (line, renderFile (line, report, showProgress));

    trySettings (line, report);
    return juce::String (report.str());
}
} // namespace

int performTask (WorkerTask task, const CommandLine& line, const std::function<void (const std::string&)>& send)
{
    const auto sendMessage = [&send] (const juce::String& text) { send ("\n" + text.toStdString()); };
    int numDots = 0;

    try
    {
        const juce::ScopedJuceInitialiser_GUI juceLibrary;
        sendMessage (perform (task, line,
                              [&send, &numDots] (juce::int64 done, juce::int64 total)
                              {
                                  for (; numDots < perCentOf (done, total); ++numDots)
                                      send (".");
                              }));
        return taskSucceeded;
    }
    catch (const std::exception& error)
    {
        sendMessage (error.what());
    }
    catch (const Interrupted& interruption)
    {
        endBySignal (interruption.signalNumber);
    }

    return taskFailed;
}

} // namespace tarvik
