// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/RealTimeTrap.h"

#include <cstddef>
#include <pthread.h>
#include <windows.h>

namespace tarvik::test
{

namespace
{
struct Counts
{
    int allocations = 0, locks = 0;
};

/** A place of the system's own for each thread's counts, null where no trap is armed. A thread_local variable would be
    allocated by its first use on a thread, which the trap must see elsewhere.
*/
const DWORD slot = ::TlsAlloc();

Counts* armedCounts() noexcept { return slot != 0 ? static_cast<Counts*> (::TlsGetValue (slot)) : nullptr; }

Counts countsOfThread() noexcept
{
    const auto* const counts = armedCounts();
    return counts != nullptr ? *counts : Counts();
}

void countAllocation() noexcept
{
    if (auto* const counts = armedCounts())
        ++counts->allocations;
}

void countLock() noexcept
{
    if (auto* const counts = armedCounts())
        ++counts->locks;
}
} // namespace

RealTimeTrap::RealTimeTrap() noexcept { ::TlsSetValue (slot, new Counts); }

RealTimeTrap::~RealTimeTrap() noexcept
{
    const auto* const counts = armedCounts();
    ::TlsSetValue (slot, nullptr);
    delete counts;
}

int RealTimeTrap::allocations() const noexcept { return countsOfThread().allocations; }

int RealTimeTrap::locks() const noexcept { return countsOfThread().locks; }

} // namespace tarvik::test

// The linker gives all calls of the program to __wrap_..., and the functions themselves the names __real_... (see
// cmake/Windows.cmake).
#define TARVIK_COUNTED(count, result, name, declared, passed) \
    result __real_##name declared;                            \
    result __wrap_##name declared;                            \
    result __wrap_##name declared                             \
    {                                                         \
        tarvik::test::count();                                \
        return __real_##name passed;                          \
    }

extern "C"
{
    TARVIK_COUNTED (countAllocation, void*, malloc, (std::size_t size), (size))
    TARVIK_COUNTED (countAllocation, void*, calloc, (std::size_t count, std::size_t size), (count, size))
    TARVIK_COUNTED (countAllocation, void*, realloc, (void* block, std::size_t size), (block, size))
    TARVIK_COUNTED (countAllocation, void, free, (void* block), (block))
    TARVIK_COUNTED (countAllocation, void*, _aligned_malloc, (std::size_t size, std::size_t to), (size, to))
    TARVIK_COUNTED (countAllocation, void*, _aligned_realloc, (void* block, std::size_t size, std::size_t to),
                    (block, size, to))
    TARVIK_COUNTED (countAllocation, void, _aligned_free, (void* block), (block))
    TARVIK_COUNTED (countLock, int, pthread_mutex_lock, (pthread_mutex_t * mutex), (mutex))

    // JUCE's lock is the system's, which is called through the import table.
    using Enter = void (*) (CRITICAL_SECTION*);
    extern const Enter __real___imp_EnterCriticalSection;
    extern const Enter __wrap___imp_EnterCriticalSection;
    const Enter __wrap___imp_EnterCriticalSection = [] (CRITICAL_SECTION* section)
    {
        tarvik::test::countLock();
        __real___imp_EnterCriticalSection (section);
    };
}
