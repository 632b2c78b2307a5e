// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/InstanceBroadcaster.h"

#include <algorithm>

namespace tarvik
{

InstanceBroadcaster& InstanceBroadcaster::get()
{
    static InstanceBroadcaster broadcaster;
    return broadcaster;
}

void InstanceBroadcaster::addListener (Listener& listener)
{
    const juce::ScopedLock lock (mutex);

    if (std::find (listeners.begin(), listeners.end(), &listener) == listeners.end())
        listeners.push_back (&listener);
}

void InstanceBroadcaster::removeListener (Listener& listener)
{
    const juce::ScopedLock lock (mutex);
    listeners.erase (std::remove (listeners.begin(), listeners.end(), &listener), listeners.end());
}

void InstanceBroadcaster::broadcast (BroadcastMessage message)
{
    const juce::ScopedLock lock (mutex);

    // A copy tells who is still to be called, and the list whether it is still there.
    const auto toCall = listeners;

    for (auto* const listener : toCall)
        if (std::find (listeners.begin(), listeners.end(), listener) != listeners.end() && listener->isReady)
            listener->handleBroadcast (message);
}

} // namespace tarvik
