// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>

namespace tarvik
{

/** A plain value that several threads may read and write at once, each access whole and nothing ordered around it.

    It copies and converts like the value itself, so that a record of such fields is copied member by member.
*/
template <typename T>
class RelaxedValue
{
public:
    RelaxedValue() noexcept = default;

    RelaxedValue (T initial) noexcept : value (initial) {} // implicit on purpose

    RelaxedValue (const RelaxedValue& other) noexcept : value (other.get()) {}

    RelaxedValue& operator= (const RelaxedValue& other) noexcept
    {
        set (other.get());
        return *this;
    }

    RelaxedValue& operator= (T newValue) noexcept
    {
        set (newValue);
        return *this;
    }

    ~RelaxedValue() = default;

    operator T () const noexcept { return get(); } // implicit on purpose

    T get() const noexcept { return value.load (std::memory_order_relaxed); }

    void set (T newValue) noexcept { value.store (newValue, std::memory_order_relaxed); }

private:
    static_assert (std::atomic<T>::is_always_lock_free);

    std::atomic<T> value { T {} };
};

} // namespace tarvik
