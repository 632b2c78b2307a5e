// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Commands.h"
#include "tools/Environment.h"
#include "tools/Interruption.h"
#include "tools/System.h"
#include "tools/WorkerProcess.h"

#include <juce_events/juce_events.h>

#include <iostream>
#include <optional>

int main (int argc, char** argv)
{
    constexpr int failure = 2;

    const auto arguments = tarvik::startProgram (argc, argv);

    if (arguments.isEmpty())
    {
        std::cerr << tarvik::usageText();
        return failure;
    }

    try
    {
        if (const auto status = tarvik::actAsWorker (arguments))
            return *status;

        const auto line = tarvik::parseCommandLine (arguments);
        std::optional<juce::ScopedJuceInitialiser_GUI> juceLibrary;

        // No other task opens a window, and neither do the modules that it loads.
        if (line.perform != tarvik::writeWindowPictures)
            tarvik::joinNoScreen();

        // Hosted modules need JUCE's message thread to be known; no loop has to run. A batch loads modules in processes
        // of its own only, and those begin best without what JUCE would share between them.
        if (line.perform != tarvik::renderBatch)
            juceLibrary.emplace();

        line.perform (line);
        return 0;
    }
    catch (const std::exception& error)
    {
        std::cout.flush();
        std::cerr << "tarvik41-render: " << error.what() << std::endl;
        return failure;
    }
    catch (const tarvik::Interrupted& interruption)
    {
        tarvik::endBySignal (interruption.signalNumber);
    }
}
