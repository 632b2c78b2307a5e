// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/BatchCommand.h"
#include "tools/CommandLine.h"
#include "tools/Interruption.h"
#include "tools/ListCommand.h"
#include "tools/PicturesCommand.h"
#include "tools/RenderCommand.h"
#include "tools/ScreenshotCommand.h"
#include "tools/StreamCommand.h"
#include "tools/ToolError.h"

#include <juce_events/juce_events.h>

#include <cstdlib>
#include <iostream>
#include <optional>

namespace
{
constexpr int failure = 2;

int fail (const char* message)
{
    std::cout.flush();
    std::cerr << "tarvik41-render: " << message << std::endl;
    return failure;
}

void perform (const tarvik::CommandLine& line)
{
    using Task = tarvik::CommandLine::Task;

    switch (line.task)
    {
        case Task::render:
            tarvik::renderOneFile (line);
            break;
        case Task::batch:
            tarvik::renderBatch (line);
            break;
        case Task::list:
            tarvik::listModule (line);
            break;
        case Task::stream:
            tarvik::streamRuns (line);
            break;
        case Task::decode:
            tarvik::decodeRecording (line);
            break;
        case Task::pictures:
            tarvik::writeContactSheet (line);
            break;
        case Task::screenshot:
            tarvik::writeScreenshot (line);
            break;
        case Task::help:
            std::cout << tarvik::usageText();
            break;
        case Task::version:
            std::cout << "tarvik41-render " TARVIK_VERSION "\n";
            break;
    }
}

int run (const juce::StringArray& arguments)
{
    try
    {
        const auto line = tarvik::parseCommandLine (arguments);
        std::optional<juce::ScopedJuceInitialiser_GUI> juceLibrary;

        // Hosted modules want JUCE's message thread to be known; no loop has to run. A batch loads modules in processes
        // of its own only, and those begin best without what JUCE would share between them.
        if (line.task != tarvik::CommandLine::Task::batch)
            juceLibrary.emplace();

        perform (line);
        return 0;
    }
    catch (const std::exception& error)
    {
        return fail (error.what());
    }
}
} // namespace

int main (int argc, char** argv)
{
    // It opens no window, and neither do the modules that it loads. JUCE would join a screen all the same, and the
    // process would end with it.
    setenv ("DISPLAY", ":65000", 1);

    juce::StringArray arguments;

    for (int i = 1; i < argc; ++i)
        arguments.add (juce::String::fromUTF8 (argv[i]));

    if (arguments.isEmpty())
    {
        std::cerr << tarvik::usageText();
        return failure;
    }

    try
    {
        return run (arguments);
    }
    catch (const tarvik::Interrupted& interruption)
    {
        tarvik::endBySignal (interruption.signalNumber);
    }
}
