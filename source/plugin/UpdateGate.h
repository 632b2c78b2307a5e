// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>
#include <utility>

namespace tarvik
{

/** Lets one thread at a time bring the model up to date; nobody waits and no change is lost. Whoever asks first does
    the work, once. Whoever asks meanwhile leaves a note and goes; `catchUp` takes the note up, at the latest before the
    next slice of audio. So no thread works for longer than its own request takes. (More in docs/smoothed-filters.md.)
*/
class UpdateGate
{
public:
    /** Any thread; never waits. `work` runs here unless another thread is at work. */
    template <typename Work>
    void request (Work&& work) noexcept
    {
        if ((requests.fetch_add (1, std::memory_order_acq_rel) & ~leftOver) == 0)
            workOnce (work);
    }

    /** Any thread; never waits. Leaves a note instead of working: `catchUp` or the next request takes it up. */
    void leaveNote() noexcept
    {
        // Written even where there is a note already: whoever takes that up sees what this thread has changed before.
        for (auto seen = requests.load (std::memory_order_relaxed);;)
        {
            const auto isFree = (seen & ~leftOver) == 0;

            if (requests.compare_exchange_weak (seen, isFree ? leftOver : seen + 1, std::memory_order_acq_rel))
                return;
        }
    }

    /** Does the work if there is a note, and returns whether there was. Any thread; never waits. */
    template <typename Work>
    bool catchUp (Work&& work) noexcept
    {
        auto expected = leftOver;

        if (requests.load (std::memory_order_relaxed) != leftOver
            || ! requests.compare_exchange_strong (expected, 1, std::memory_order_acq_rel))
            return false;

        workOnce (work);
        return true;
    }

    /** Keeps requests from running while the strip is rebuilt, and does their work at the end. The constructor waits
        for work in progress, so never on the audio thread.
    */
    template <typename Work>
    class Hold
    {
    public:
        Hold (UpdateGate& gateToHold, Work workAtTheEnd) noexcept : gate (gateToHold), work (std::move (workAtTheEnd))
        {
            // A note from before counts like one that comes during the hold.
            for (auto seen = gate.requests.load (std::memory_order_relaxed);;)
            {
                const auto isFree = (seen & ~leftOver) == 0;

                if (isFree
                    && gate.requests.compare_exchange_weak (seen, seen == leftOver ? 2 : 1, std::memory_order_acq_rel))
                    return;

                if (! isFree)
                {
                    std::this_thread::yield();
                    seen = gate.requests.load (std::memory_order_relaxed);
                }
            }
        }

        ~Hold()
        {
            std::uint32_t own = 1;

            if (! gate.requests.compare_exchange_strong (own, 0, std::memory_order_acq_rel))
                gate.workOnce (work);
        }

        Hold (const Hold&) = delete;
        Hold& operator= (const Hold&) = delete;

    private:
        UpdateGate& gate;
        Work work;
    };

private:
    /** Whoever asks from the first line on leaves a note. */
    template <typename Work>
    void workOnce (Work& work) noexcept
    {
        auto seen = requests.load (std::memory_order_acquire);
        work();

        if (! requests.compare_exchange_strong (seen, 0, std::memory_order_acq_rel))
            requests.exchange (leftOver, std::memory_order_acq_rel);
    }

    /** A note, and nobody at work. */
    static constexpr std::uint32_t leftOver = 1u << 31;

    /** How many have asked since the one at work began, that one included; 0 or `leftOver` while nobody is at work. */
    std::atomic<std::uint32_t> requests { 0 };
};

} // namespace tarvik
