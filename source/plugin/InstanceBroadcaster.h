// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <atomic>
#include <cstdint>
#include <vector>

namespace tarvik
{

/** What one instance tells all: 64 bits, the type in the low half and the value in the high half. */
struct BroadcastMessage
{
    enum Type : std::uint32_t
    {
        randomChannel = 0,     ///< No value: each instance draws for itself.
        calibration = 1,       ///< Whole decibels.
        oversampling = 2,      ///< The factor.
        analog = 3,            ///< 0 or not 0.
        limiterSensitivity = 5 ///< 0, 1 or 2. There is no type 4.
    };

    std::uint32_t type = randomChannel;
    std::int32_t value = 0;
};

static_assert (sizeof (BroadcastMessage) == sizeof (std::uint64_t));

/** The process-wide list of instances. A broadcast walks it under the mutex, in the order of registration and with the
    sender included; a constructor or destructor on another thread waits for its end. The mutex is recursive, because a
    host may make or delete an instance while it hears of a change: one that leaves during the walk is not called any
    more.
*/
class InstanceBroadcaster
{
public:
    class Listener
    {
    public:
        virtual ~Listener() = default;

        /** Message thread, under the list's mutex. */
        virtual void handleBroadcast (BroadcastMessage message) = 0;

    protected:
        /** Any thread. A listener that is not ready is skipped: half an object must not be called. */
        void setReadyForBroadcasts (bool shouldBeReady) noexcept { isReady = shouldBeReady; }

    private:
        friend class InstanceBroadcaster;
        std::atomic<bool> isReady { true };
    };

    /** The one of this process. */
    static InstanceBroadcaster& get();

    void addListener (Listener& listener);

    /** Does nothing for a listener that is not in the list. */
    void removeListener (Listener& listener);

    /** Message thread. */
    void broadcast (BroadcastMessage message);

private:
    juce::CriticalSection mutex;
    std::vector<Listener*> listeners;
};

} // namespace tarvik
