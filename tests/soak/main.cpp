// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/soak/Crew.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <malloc.h>
#include <random>
#include <string_view>
#include <unistd.h>

namespace tarvik::soak
{

namespace
{
constexpr int numInstances = 64;
constexpr int badAudioEvery = 8; ///< One instance in so many gets bad audio.
constexpr double rateHz = 48000.0;
constexpr int blockLength = 480;
constexpr double allowedDeviation = 1.0e-6;

// A sanitizer keeps what was freed, so there the memory says nothing; AddressSanitizer tells what was lost by itself.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double allowedGrowthMiB = 1.0e9;
#else
constexpr double allowedGrowthMiB = 32.0;
#endif

double residentMiB()
{
    malloc_trim (0);
    double total = 0.0, resident = 0.0;
    std::ifstream ("/proc/self/statm") >> total >> resident;
    return resident * static_cast<double> (sysconf (_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

/** A second from those settings, the same each time. */
std::vector<float> soundOf (Seat& seat, const juce::MemoryBlock& settings)
{
    juce::AudioBuffer<float> block (Seat::numChannels, blockLength);
    block.clear();
    seat.prepare (rateHz, blockLength);
    seat.process (block); // brings in what was set last, which would else undo the settings
    seat.instance->setStateInformation (settings.getData(), static_cast<int> (settings.getSize()));
    seat.process (block); // leaves the bypass, by a fade that preparing ends
    seat.prepare (rateHz, blockLength);
    juce::Random random (1);
    std::vector<float> sound;

    while (sound.size() < static_cast<std::size_t> (2.0 * rateHz))
    {
        fillWithAudio (block, random);
        seat.process (block);

        for (int c = 0; c < 2; ++c)
            sound.insert (sound.end(), block.getReadPointer (c), block.getReadPointer (c) + blockLength);
    }

    return sound;
}

/** Infinite where one of them is not a number. */
double largestDifference (const std::vector<float>& a, const std::vector<float>& b)
{
    double largest = 0.0;

    for (std::size_t i = 0; i < a.size(); ++i)
    {
        const auto difference = std::abs (static_cast<double> (a[i] - b[i]));
        largest = std::max (largest, std::isnan (difference) ? std::numeric_limits<double>::infinity() : difference);
    }

    return largest;
}

/** Prints a figure beside what it has to be; returns whether it is. */
bool report (bool isGood, const juce::String& text)
{
    std::cout << (isGood ? "        " : "FAILED: ") << text << std::endl;
    return isGood;
}

int run (double seconds, int seed)
{
    report (true,
            juce::String (numInstances) + " instances, " + juce::String (seconds) + " s, seed " + juce::String (seed));

    juce::VST3PluginFormat format;
    juce::OwnedArray<juce::PluginDescription> found;
    const auto bundle = juce::File (TARVIK_MODULE).getParentDirectory().getParentDirectory().getParentDirectory();
    format.findAllTypesForFile (found, bundle.getFullPathName());

    if (found.isEmpty())
        return report (false, "cannot load " + bundle.getFullPathName()) ? EXIT_SUCCESS : EXIT_FAILURE;

    const auto makeSeat = [&] (bool getsBadAudio)
    {
        juce::String error;
        auto seat = std::make_unique<Seat> (
            format.createInstanceFromDescription (*found[0], rateHz, blockLength, error), getsBadAudio);
        seat->prepare (rateHz, blockLength);
        return seat;
    };

    Seats seats;

    while (seats.size() < numInstances)
        seats.push_back (makeSeat (seats.size() % badAudioEvery == 0));

    std::vector<double> memory { residentMiB() };
    Crew crew (seats, seed);
    crew.work (seconds, [&memory] { memory.push_back (residentMiB()); });

    // The settings of an instance that nobody has used, but for the noise, which is never the same twice.
    const auto fresh = makeSeat (false);
    auto settings = fresh->save();
    const auto document =
        juce::AudioProcessor::getXmlFromBinary (settings.getData(), static_cast<int> (settings.getSize()));
    document->setAttribute ("Analog", 0);
    fresh->load (blockOf (*document));
    fresh->instance->getStateInformation (settings);
    const auto expected = soundOf (*fresh, settings);
    std::vector<double> deviations;

    for (const auto& seat : seats)
        deviations.push_back (largestDifference (soundOf (*seat, settings), expected));

    const auto worst = std::max_element (deviations.begin(), deviations.end());

    auto isGood = true;

    for (const auto* const count :
         { &crew.samples, &crew.blocks, &crew.badBlocks, &crew.automations, &crew.parameters, &crew.programs,
           &crew.slots, &crew.loads, &crew.saves, &crew.preparations, &crew.openings })
        isGood &= report (count->number > 0, juce::String (count->name) + ": " + juce::String (count->number));

    isGood &= report (crew.brokenBlocks == 0,
                      "blocks with samples that are not numbers: " + juce::String (crew.brokenBlocks));
    isGood &= report (memory[2] - memory[1] <= allowedGrowthMiB,
                      "resident memory in MiB: " + juce::String (memory[0], 1) + " at the start, "
                          + juce::String (memory[1], 1) + " when warm, " + juce::String (memory[2], 1)
                          + " at the end; may grow by " + juce::String (allowedGrowthMiB) + " from warm");
    isGood &= report (*worst <= allowedDeviation, "largest deviation from a fresh instance: " + juce::String (*worst)
                                                      + " of full scale, at most " + juce::String (allowedDeviation)
                                                      + "; of instance "
                                                      + juce::String (static_cast<int> (worst - deviations.begin())));
    isGood &= report (*std::max_element (expected.begin(), expected.end()) > 0.1f, "the fresh instance is heard");
    return isGood ? EXIT_SUCCESS : EXIT_FAILURE;
}
} // namespace

} // namespace tarvik::soak

int main (int argc, char** argv)
{
    auto seconds = 60.0;
    auto seed = static_cast<int> (std::random_device()() >> 1);

    for (int i = 1; i < argc; ++i)
    {
        const auto isSeed = juce::StringRef (argv[i]) == juce::StringRef ("--seed") && i + 1 < argc;
        const juce::String number (argv[i += isSeed ? 1 : 0]);

        if (number.isEmpty() || ! number.containsOnly ("0123456789"))
        {
            std::cerr << "usage: tarvik41-soak [SECONDS] [--seed N]\n";
            return EXIT_FAILURE;
        }

        if (isSeed)
            seed = number.getIntValue();
        else
            seconds = number.getDoubleValue();
    }

    // Whoever is not done by now stands still.
    std::signal (SIGALRM,
                 [] (int)
                 {
                     constexpr std::string_view text = "FAILED: a thread stands still\n";
                     [[maybe_unused]] const auto written = write (STDOUT_FILENO, text.data(), text.size());
                     std::abort(); // so that a debugger or the kernel keeps the stacks
                 });
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr unsigned forTheRest = 1200;
#else
    constexpr unsigned forTheRest = 240;
#endif
    alarm (2 * static_cast<unsigned> (seconds) + forTheRest);

    // Not the user's own settings.
    const auto scratch = juce::File::createTempFile ("tarvik-soak");
    scratch.createDirectory();
    setenv ("XDG_CONFIG_HOME", scratch.getFullPathName().toRawUTF8(), 1);

    const juce::ScopedJuceInitialiser_GUI juceRuntime;
    const auto result = tarvik::soak::run (seconds, seed);
    scratch.deleteRecursively();
    return result;
}
