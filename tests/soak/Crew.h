// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/soak/Seat.h"
#include "tests/support/EditorTestTools.h"

#include <juce_gui_extra/juce_gui_extra.h>

#include <atomic>
#include <deque>
#include <thread>
#include <vector>

namespace tarvik::soak
{

using Seats = std::vector<std::unique_ptr<Seat>>;

/** The threads of a host at their work: four for audio, each with its share of the instances, one that loads and saves,
    and the message thread.
*/
class Crew final
{
public:
    Crew (Seats& fleet, int firstSeed) : seats (fleet), seed (firstSeed), random (firstSeed) {}

    /** For that time, and then until everything stands still, without windows. Message thread. */
    void work (double seconds)
    {
        std::vector<std::jthread> workers;

        for (int i = 0; i < numAudioThreads; ++i)
            workers.emplace_back ([this, i, chance = Random (++seed)] (const std::stop_token& stop)
                                  { playInstances (stop, i, chance); });

        workers.emplace_back ([this, chance = Random (++seed)] (const std::stop_token& stop)
                              { loadAndSave (stop, chance); });

        for (const auto endMs = nowMs() + 1000.0 * seconds; nowMs() < endMs; test::runMessagesFor (1))
            actAsUser();

        workers.clear();
        test::runMessagesFor (leastWindowMs); // meanwhile arrives what is on its way between the threads

        while (! windows.empty())
            closeOldestWindow();

        test::runMessagesFor (leastWindowMs);
    }

    /** How often something was done to an instance. */
    struct Count
    {
        const char* name;
        std::atomic<juce::int64> number { 0 };
    };

    Count samples { "samples" }, blocks { "blocks" }, badBlocks { "blocks of bad audio" }, parameters { "parameters" },
        programs { "programs" }, loads { "loads" }, preparations { "preparations" }, openings { "windows" };

    std::atomic<juce::int64> brokenBlocks { 0 }; ///< With a sample that came out and is not a number.

private:
    static double nowMs() { return juce::Time::getMillisecondCounterHiRes(); }

    Seat& anySeat (Random& chance) const
    {
        return *seats[static_cast<std::size_t> (chance.nextInt (int (seats.size())))];
    }

    void setAnyParameter (Seat& seat, Random& chance)
    {
        auto& chosen = *seat.instance->getParameters()[chance.nextInt (seat.instance->getParameters().size())];

        // The bypass rarely, as a bypassed strip does nothing; and bad audio it rightly passes on.
        if (&chosen != seat.instance->getBypassParameter())
            chosen.setValue (oneIn (4, chance) ? static_cast<float> (chance.nextInt (2)) : chance.nextFloat());
        else if (! seat.getsBadAudio)
            chosen.setValue (oneIn (8, chance) ? 1.0f : 0.0f);

        ++parameters.number;
    }

    void playInstances (const std::stop_token& stop, int first, Random chance)
    {
        juce::AudioBuffer<float> buffer (Seat::numChannels, 8192);

        while (! stop.stop_requested())
            for (auto i = static_cast<std::size_t> (first); i < seats.size(); i += numAudioThreads)
                if (const std::unique_lock lock (seats[i]->audioLock, std::try_to_lock); lock.owns_lock())
                    play (*seats[i], buffer, chance);
    }

    void play (Seat& seat, juce::AudioBuffer<float>& buffer, Random& chance)
    {
        juce::AudioBuffer<float> part (buffer.getArrayOfWritePointers(), Seat::numChannels,
                                       1 + chance.nextInt (seat.longestBlock));
        const auto isBad = seat.getsBadAudio && chance.nextBool();
        fillWithAudio (part, chance, isBad);

        for (auto changes = chance.nextInt (8) - 4; changes > 0; --changes)
            setAnyParameter (seat, chance); // which the process call brings along

        brokenBlocks += seat.process (part) ? 0 : 1;
        samples.number += part.getNumSamples();
        ++(isBad ? badBlocks : blocks).number;
    }

    void loadAndSave (const std::stop_token& stop, Random chance)
    {
        while (! stop.stop_requested())
        {
            // For 500 ms after a load programs are held back, so each instance needs a pause.
            juce::Thread::sleep (10);
            const auto project = withOtherSettings (anySeat (chance).save(), chance);
            anySeat (chance).load (project);
            ++loads.number;
        }
    }

    void actAsUser()
    {
        for (int i = 0; i < 4; ++i)
            setAnyParameter (anySeat (random), random);

        auto& seat = anySeat (random);

        switch (random.nextInt (16))
        {
            case 0:
                return openWindow (seat);
            case 1:
            case 2:
                seat.prepare (oneOf ({ 8000.0, 11025.0, 16000.0, 22050.0, 32000.0, 44100.0, 48000.0, 88200.0, 96000.0,
                                       176400.0, 192000.0, 384000.0 },
                                     random),
                              randomLength (random));
                ++preparations.number;
                return;
            default:
                seat.instance->setCurrentProgram (random.nextInt (seat.instance->getNumPrograms()));
                ++programs.number;
        }
    }

    /** Up to four are open, of which the oldest closes. */
    void openWindow (Seat& seat)
    {
        if (seat.instance->getActiveEditor() != nullptr || nowMs() - openedMs < leastWindowMs / maxWindows)
            return;

        openedMs = nowMs();
        windows.emplace_back (seat.instance->createEditorIfNeeded())->addToDesktop (0);
        windows.back()->setVisible (true);
        ++openings.number;

        if (windows.size() > std::size_t (maxWindows))
            closeOldestWindow();
    }

    /** JUCE's host posts a message at each size that the plug-in's window takes, and does not look on its arrival whether
        its own window is still there. So first the plug-in's window is taken away from it, and it goes after the last of
        those messages.
    */
    void closeOldestWindow()
    {
        for (auto* const child : windows.front()->getChildren())
            if (auto* const embedded = dynamic_cast<juce::XEmbedComponent*> (child))
                embedded->removeClient();

        juce::MessageManager::callAsync ([window = std::shared_ptr (std::move (windows.front()))] {});
        windows.pop_front();
    }

    static constexpr int numAudioThreads = 4;
    static constexpr int maxWindows = 4;
    static constexpr int leastWindowMs = 500; ///< A window stays open for at least as long.

    Seats& seats;
    int seed;      ///< The one given out last.
    Random random; ///< The message thread's.
    std::deque<std::unique_ptr<juce::AudioProcessorEditor>> windows;
    double openedMs = 0.0; ///< When the newest of them was opened.
};

} // namespace tarvik::soak
