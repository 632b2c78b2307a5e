// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/soak/Material.h"
#include "tests/soak/Seat.h"

#include <juce_gui_extra/juce_gui_extra.h>

#include <atomic>
#include <deque>
#include <functional>
#include <thread>
#include <vector>

namespace tarvik::soak
{

using Seats = std::vector<std::unique_ptr<Seat>>;

/** The threads of a host at their work: four for audio, each with its share of the instances, one that loads and saves,
    and by a timer the message thread.
*/
class Crew final : private juce::Timer
{
public:
    Crew (Seats& fleet, int firstSeed) : seats (fleet), seed (firstSeed), random (firstSeed) {}

    /** Two rounds, of a quarter and three quarters of the time. After each everything stops for a while, without windows,
        and then `onPause` is called. Message thread; runs its loop.
    */
    void work (double seconds, std::function<void()> onPause)
    {
        pause = std::move (onPause);
        roundsMs = { 250.0 * seconds, 750.0 * seconds };
        startRound();
        juce::MessageManager::getInstance()->runDispatchLoop();
    }

    /** How often something was done to an instance. */
    struct Count
    {
        const char* name;
        std::atomic<juce::int64> number { 0 };
    };

    Count samples { "samples" }, blocks { "blocks" }, badBlocks { "blocks of bad audio" },
        automations { "parameters by automation" }, parameters { "parameters by the user" }, programs { "programs" },
        loads { "loads" }, saves { "saves" }, preparations { "preparations" }, openings { "windows" };

    std::atomic<juce::int64> brokenBlocks { 0 }; ///< With a sample that came out and is not a number.

private:
    using Random = juce::Random;

    Seat& anySeat (Random& chance) const
    {
        return *seats[static_cast<std::size_t> (chance.nextInt (int (seats.size())))];
    }

    void setAnyParameter (Seat& seat, Random& chance, Count& count)
    {
        auto& chosen = *seat.instance->getParameters()[chance.nextInt (seat.instance->getParameters().size())];

        // The bypass rarely, as a bypassed strip does nothing; and bad audio it rightly passes on.
        if (&chosen != seat.instance->getBypassParameter())
            chosen.setValue (randomTravel (chance));
        else if (! seat.getsBadAudio)
            chosen.setValue (oneIn (8, chance) ? 1.0f : 0.0f);

        ++count.number;
    }

    //==============================================================================
    void startRound()
    {
        endMs = juce::Time::getMillisecondCounterHiRes() + roundsMs.front();
        roundsMs.pop_front();

        for (int i = 0; i < numAudioThreads; ++i)
            workers.emplace_back ([this, i, chance = Random (++seed)] (const std::stop_token& stop)
                                  { playInstances (stop, i, chance); });

        workers.emplace_back ([this, chance = Random (++seed)] (const std::stop_token& stop)
                              { loadAndSave (stop, chance); });
        startTimer (1);
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
            setAnyParameter (seat, chance, automations); // which the process call brings along

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
            auto& seat = anySeat (chance);
            const std::lock_guard lock (seat.stateLock);
            const auto saved = seat.save();
            seat.load (chance.nextBool() ? saved : randomState (chance));
            ++saves.number;
            ++loads.number;
        }
    }

    //==============================================================================
    void timerCallback() override
    {
        if (juce::Time::getMillisecondCounterHiRes() < endMs)
        {
            actAsUser();
        }
        else if (! workers.empty())
        {
            workers.clear();
            startTimer (leastWindowMs); // meanwhile arrives what is on its way between the threads
        }
        else if (! windows.empty())
        {
            while (! windows.empty())
                closeOldestWindow();
        }
        else
        {
            pause();

            if (roundsMs.empty())
                juce::MessageManager::getInstance()->stopDispatchLoop();
            else
                startRound();
        }
    }

    void actAsUser()
    {
        for (int i = 0; i < 4; ++i)
            setAnyParameter (anySeat (random), random, parameters);

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
            case 3:
                return loadOrSave (seat);
            default:
                seat.instance->setCurrentProgram (random.nextInt (seat.instance->getNumPrograms()));
                ++programs.number;
        }
    }

    /** Up to four are open, of which the oldest closes. */
    void openWindow (Seat& seat)
    {
        const auto nowMs = juce::Time::getMillisecondCounterHiRes();

        if (seat.instance->getActiveEditor() != nullptr || nowMs - openedMs < leastWindowMs / maxWindows)
            return;

        openedMs = nowMs;
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

    /** The whole instance. The message thread does not wait for the host's other one. */
    void loadOrSave (Seat& seat)
    {
        const std::unique_lock lock (seat.stateLock, std::try_to_lock);

        if (! lock.owns_lock())
            return;

        const auto isLoad = random.nextBool() && ! seat.project.isEmpty();

        if (isLoad)
            seat.instance->setStateInformation (seat.project.getData(), static_cast<int> (seat.project.getSize()));
        else
            seat.instance->getStateInformation (seat.project);

        ++(isLoad ? loads : saves).number;
    }

    static constexpr int numAudioThreads = 4;
    static constexpr int maxWindows = 4;
    static constexpr int leastWindowMs = 500; ///< A window stays open for at least as long.

    Seats& seats;
    int seed;      ///< The one given out last.
    Random random; ///< The message thread's.
    std::function<void()> pause;
    std::deque<double> roundsMs;
    double endMs = 0.0, openedMs = 0.0; ///< Of the round; when the newest window was opened.
    std::deque<std::unique_ptr<juce::AudioProcessorEditor>> windows;
    std::vector<std::jthread> workers;
};

} // namespace tarvik::soak
