// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>

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

    /** Keeps requests from running while something larger is rebuilt: they are carried out by `release`. Waits for work
       in progress, so never on the audio thread.
    */
    void acquire() noexcept
    {
        for (std::uint32_t none = 0;
             ! requests.compare_exchange_weak (none, 1, std::memory_order_acq_rel, std::memory_order_relaxed); none = 0)
            std::this_thread::yield();
    }

    /** Ends what `acquire` began; runs `work` if anybody asked for it since. */
    template <typename Work>
    void release (Work&& work) noexcept
    {
        std::uint32_t own = 1;

        if (! requests.compare_exchange_strong (own, 0, std::memory_order_acq_rel))
            drain (work);
    }

private:
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

    std::atomic<std::uint32_t> requests{ 0 };
};

} // namespace tarvik
