// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <cstddef>

namespace tarvik
{
/** Hands values of any size from one thread to another without lock or wait. The reader always finds the newest
    published value; older ones that it missed are dropped.

    One writer and one reader at a time. Each side may move from thread to thread as long as the users of that side
    order themselves (by a mutex, say). Slots are reused; T should be a plain array or struct. */
template <typename T>
class TripleBuffer
{
public:
    /** Writer: where to put the next value. Holds an old one. */
    T& getWriteSlot() noexcept { return slots[writeSlot]; }

    /** Writer: makes the value in the write slot the newest. */
    void publish() noexcept { writeSlot = middle.exchange (writeSlot | fresh) & slotMask; }

    /** Any thread: whether a value waits for the reader. */
    bool hasNewValue() const noexcept { return (middle.load() & fresh) != 0; }

    /** Reader: brings the newest value into the read slot; false if there is none that the reader doesn't have. */
    bool takeNewest() noexcept
    {
        if (! hasNewValue())
            return false;

        readSlot = middle.exchange (readSlot) & slotMask;
        return true;
    }

    /** Reader: the value taken last. */
    const T& getReadSlot() const noexcept { return slots[readSlot]; }

private:
    static constexpr std::size_t slotMask = 3;
    static constexpr std::size_t fresh = 4;

    std::array<T, 3> slots {};
    std::size_t writeSlot = 0;
    std::size_t readSlot = 1;
    std::atomic<std::size_t> middle { 2 };
};
} // namespace tarvik
