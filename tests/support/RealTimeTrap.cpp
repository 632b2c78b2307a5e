// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/RealTimeTrap.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <dlfcn.h>
#include <pthread.h>

namespace tarvik::test
{

namespace
{
thread_local bool isArmed = false;
thread_local int allocationCount = 0, lockCount = 0;

/** Counts, and passes on what the allocator is given. */
template <typename Argument>
[[maybe_unused]] Argument counted (Argument argument) noexcept
{
    allocationCount += isArmed ? 1 : 0;
    return argument;
}

using LockFunction = int (*) (pthread_mutex_t*);

LockFunction systemLock() { return reinterpret_cast<LockFunction> (dlsym (RTLD_NEXT, "pthread_mutex_lock")); }

const auto realLock = systemLock(); // before a trap is armed, because the look-up itself may allocate
} // namespace

RealTimeTrap::RealTimeTrap() noexcept
{
    allocationCount = lockCount = 0;
    isArmed = true;
}

RealTimeTrap::~RealTimeTrap() noexcept { isArmed = false; }

int RealTimeTrap::allocations() const noexcept { return allocationCount; }

int RealTimeTrap::locks() const noexcept { return lockCount; }

} // namespace tarvik::test

// These stand in front of the C library's own, for the whole program.
extern "C"
{
    int pthread_mutex_lock (pthread_mutex_t* mutex) noexcept
    {
        using namespace tarvik::test;
        lockCount += isArmed ? 1 : 0;
        return (realLock != nullptr ? realLock : systemLock()) (mutex); // a static initialiser may lock before ours ran
    }

#if defined(__SANITIZE_ADDRESS__)
    // The sanitizer owns malloc, and tells: its own interface, whose header g++ does not bring along.
    int __sanitizer_install_malloc_and_free_hooks (void (*onMalloc) (const volatile void*, std::size_t),
                                                   void (*onFree) (const volatile void*));

    [[maybe_unused]] const int hooksInstalled = __sanitizer_install_malloc_and_free_hooks (
        [] (const volatile void* block, std::size_t) { tarvik::test::counted (block); },
        [] (const volatile void* block) { tarvik::test::counted (block); });
#elif ! defined(__SANITIZE_THREAD__)
    void* __libc_malloc (std::size_t size);
    void* __libc_calloc (std::size_t count, std::size_t size);
    void* __libc_realloc (void* block, std::size_t size);
    void* __libc_memalign (std::size_t alignment, std::size_t size);
    void __libc_free (void* block);

    using tarvik::test::counted;

    void* malloc (std::size_t size) noexcept { return __libc_malloc (counted (size)); }

    void* calloc (std::size_t count, std::size_t size) noexcept { return __libc_calloc (counted (count), size); }

    void* realloc (void* block, std::size_t size) noexcept { return __libc_realloc (counted (block), size); }

    void* aligned_alloc (std::size_t alignment, std::size_t size) noexcept
    {
        return __libc_memalign (counted (alignment), size);
    }

    int posix_memalign (void** block, std::size_t alignment, std::size_t size) noexcept
    {
        *block = aligned_alloc (alignment, size);
        return *block != nullptr ? 0 : ENOMEM;
    }

    void free (void* block) noexcept { __libc_free (counted (block)); }
#endif
}
