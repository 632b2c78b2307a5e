// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/InstructionSets.h"

#include <benchmark/benchmark.h>
#include <juce_events/juce_events.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>

int main (int argc, char** argv)
{
    // An empty folder, so that the settings of the user at the keyboard do not change the figures.
    const auto scratch = juce::File::createTempFile ("tarvik-benchmarks");
    scratch.createDirectory();
    setenv ("XDG_CONFIG_HOME", scratch.getFullPathName().toRawUTF8(), 1);

    // Without windows the editor is painted into memory. JUCE would join a screen all the same, and wait for one that does
    // not answer.
    if (std::getenv ("TARVIK_SCREEN") == nullptr)
        setenv ("DISPLAY", ":65000", 1);

    const juce::ScopedJuceInitialiser_GUI juceRuntime;
    tarvik::selectInstructionSet();

    benchmark::Initialize (&argc, argv);

    if (benchmark::ReportUnrecognizedArguments (argc, argv))
        return 2;

    // Each instance writes a start line to standard output, thousands of them here: the table gets a way of its own.
    std::ofstream table ("/dev/fd/" + std::to_string (dup (STDOUT_FILENO)));
    const std::unique_ptr<benchmark::BenchmarkReporter> reporter (benchmark::CreateDefaultDisplayReporter());
    reporter->SetOutputStream (&table);

    if (std::freopen ("/dev/null", "w", stdout) == nullptr)
        return 1;

    benchmark::RunSpecifiedBenchmarks (reporter.get());
    benchmark::Shutdown();
    scratch.deleteRecursively();
    return 0;
}
