// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>
#include <utility>

namespace tarvik
{

/** Lets one thread at a time bring the model up to date, without anybody waiting and without losing a change.

    Host automation reports a parameter on the audio thread while an editor's drag reports another on the message
    thread. Whoever comes first does the work; who comes meanwhile leaves a note and goes, and the owner does the work
    once more.
*/
class UpdateGate
{
public:
    /** Any thread; never waits. `work` runs here, or again on the thread that is at it. */
    template <typename Work>
    void request (Work&& work) noexcept
    {
        if (requests.fetch_add (1, std::memory_order_acq_rel) == 0)
            drain (work);
    }

    /** Keeps requests from running while something larger is rebuilt. They are carried out at the end, by `work`, if
        anybody asked meanwhile. The constructor waits for work in progress, so never on the audio thread.
    */
    template <typename Work>
    class Hold
    {
    public:
        Hold (UpdateGate& gateToHold, Work workAtTheEnd) noexcept : gate (gateToHold), work (std::move (workAtTheEnd))
        {
            std::uint32_t none = 0;

            while (! gate.requests.compare_exchange_weak (none, 1, std::memory_order_acq_rel))
            {
                none = 0;
                std::this_thread::yield();
            }
        }

        ~Hold()
        {
            std::uint32_t own = 1;

            if (! gate.requests.compare_exchange_strong (own, 0, std::memory_order_acq_rel))
                gate.drain (work);
        }

        Hold (const Hold&) = delete;
        Hold& operator= (const Hold&) = delete;

    private:
        UpdateGate& gate;
        Work work;
    };

private:
    /** The owner works until nobody has asked since it began. */
    template <typename Work>
    void drain (Work& work) noexcept
    {
        for (auto seen = requests.load (std::memory_order_acquire);;)
        {
            work();

            if (requests.compare_exchange_strong (seen, 0, std::memory_order_acq_rel))
                return;
        }
    }

    std::atomic<std::uint32_t> requests { 0 };
};

} // namespace tarvik
