// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/soak/Crew.h"
#include "tools/ScratchSettings.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <malloc.h>
#include <random>
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

// A sanitizer is slow, and keeps what was freed, so there the memory says nothing; AddressSanitizer tells what was lost.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double allowedGrowthMiB = 1.0e9;
constexpr unsigned secondsForTheRest = 1200;
#else
constexpr double allowedGrowthMiB = 48.0; // of it up to 28 the pictures of the last window, which stay for the next
constexpr unsigned secondsForTheRest = 240;
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
        largest = std::isnan (difference) ? HUGE_VAL : std::max (largest, difference);
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

    const auto atStart = residentMiB();
    Crew crew (seats, seed);
    crew.work (0.25 * seconds);
    const auto warm = residentMiB();
    crew.work (0.75 * seconds);
    const auto atEnd = residentMiB();

    // The settings of an instance that nobody has used, but for the noise, which is never the same twice.
    const auto fresh = makeSeat (false);
    auto settings = fresh->save();
    const auto document =
        juce::AudioProcessor::getXmlFromBinary (settings.getData(), static_cast<int> (settings.getSize()));
    document->setAttribute ("Analog", 0);
    juce::AudioProcessor::copyXmlToBinary (*document, settings);
    fresh->load (settings);
    fresh->instance->getStateInformation (settings);
    const auto expected = soundOf (*fresh, settings);
    auto isGood = report (*std::max_element (expected.begin(), expected.end()) > 0.1f, "the fresh instance is heard");
    auto worst = std::pair (-1.0, 0);

    for (int i = 0; i < numInstances; ++i)
        worst =
            std::max (worst, std::pair (largestDifference (soundOf (*seats[std::size_t (i)], settings), expected), i));

    for (const auto* const count : { &crew.samples, &crew.blocks, &crew.badBlocks, &crew.parameters, &crew.programs,
                                     &crew.loads, &crew.preparations, &crew.openings })
        isGood &= report (count->number > 0, juce::String (count->name) + ": " + juce::String (count->number));

    isGood &= report (crew.brokenBlocks == 0, "blocks with bad samples: " + juce::String (crew.brokenBlocks));
    isGood &= report (atEnd - warm <= allowedGrowthMiB,
                      juce::String::formatted ("resident MiB: %.1f at the start, %.1f when warm, %.1f at the end; may "
                                               "grow by %g from warm",
                                               atStart, warm, atEnd, allowedGrowthMiB));
    isGood &= report (worst.first <= allowedDeviation,
                      juce::String::formatted ("largest deviation from a fresh instance: %g, at most %g; instance %d",
                                               worst.first, allowedDeviation, worst.second));
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

    // Whoever is not done by now stands still. An abort lets a debugger or the kernel keep the stacks.
    std::signal (SIGALRM, [] (int) { std::abort(); });
    alarm (2 * static_cast<unsigned> (seconds) + tarvik::soak::secondsForTheRest);

    const tarvik::ScratchSettings settings;
    const juce::ScopedJuceInitialiser_GUI juceRuntime;
    return tarvik::soak::run (seconds, seed);
}
