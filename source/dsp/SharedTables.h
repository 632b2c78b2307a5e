// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <memory>
#include <mutex>

namespace tarvik
{
/** Tables that are calculated once and never change, such as the taps for a factor: one for all instances, so that a row of
    them shares the processor's caches too. Made by the first that asks for its key, gone with the last that holds it.

    Locks and allocates; letting go of the last frees. Any thread but the audio thread. */
template <typename Key, typename Table>
class SharedTables
{
public:
    /** The key's table, which make() returns if nobody has it. */
    template <typename Make>
    std::shared_ptr<const Table> get (const Key& key, Make&& make)
    {
        const std::scoped_lock lock (mutex);
        std::erase_if (tables, [] (const auto& entry) { return entry.second.expired(); });
        auto table = tables[key].lock();

        if (table == nullptr)
        {
            table = std::make_shared<const Table> (make());
            tables[key] = table;
        }

        return table;
    }

private:
    std::mutex mutex;
    std::map<Key, std::weak_ptr<const Table>> tables;
};
} // namespace tarvik
