// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/RealTimeTrap.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <dlfcn.h>
#include <malloc.h>
#include <pthread.h>

#if defined(__SANITIZE_ADDRESS__)
// The sanitizer's own interface, whose header g++ does not bring along.
extern "C" int __sanitizer_install_malloc_and_free_hooks (void (*onMalloc) (const volatile void*, std::size_t),
                                                          void (*onFree) (const volatile void*));
#endif

namespace tarvik::test
{

namespace
{
thread_local bool isArmed = false;
thread_local int allocationCount = 0;
thread_local int lockCount = 0;

[[maybe_unused]] void countAllocation() noexcept
{
    if (isArmed)
        ++allocationCount;
}

using LockFunction = int (*) (pthread_mutex_t*);

LockFunction findLock() noexcept { return reinterpret_cast<LockFunction> (dlsym (RTLD_NEXT, "pthread_mutex_lock")); }

const auto realLock = findLock(); // before main, because looking it up may itself allocate

#if defined(__SANITIZE_ADDRESS__)
// The sanitizer owns malloc, and tells.
[[maybe_unused]] const int hooksInstalled = __sanitizer_install_malloc_and_free_hooks (
    [] (const volatile void*, std::size_t) { countAllocation(); }, [] (const volatile void*) { countAllocation(); });
#endif
} // namespace

RealTimeTrap::RealTimeTrap() noexcept
{
    allocationCount = 0;
    lockCount = 0;
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

        if (isArmed)
            ++lockCount;

        // Static initialisers of other files may lock before the look-up above has run.
        return (realLock != nullptr ? realLock : findLock()) (mutex);
    }

// The ThreadSanitizer must see all memory itself; there the trap counts locks alone.
#if ! defined(__SANITIZE_ADDRESS__) && ! defined(__SANITIZE_THREAD__)
#define TARVIK_COUNTED(name, declared, passed) \
    void* __libc_##name declared;              \
    void* name declared noexcept               \
    {                                          \
        tarvik::test::countAllocation();       \
        return __libc_##name passed;           \
    }

    TARVIK_COUNTED (malloc, (std::size_t size), (size))
    TARVIK_COUNTED (calloc, (std::size_t count, std::size_t size), (count, size))
    TARVIK_COUNTED (realloc, (void* block, std::size_t size), (block, size))
    TARVIK_COUNTED (memalign, (std::size_t alignment, std::size_t size), (alignment, size))

    void* aligned_alloc (std::size_t alignment, std::size_t size) noexcept { return memalign (alignment, size); }

    int posix_memalign (void** block, std::size_t alignment, std::size_t size) noexcept
    {
        *block = memalign (alignment, size);
        return *block != nullptr ? 0 : ENOMEM;
    }

    void __libc_free (void* block);

    void free (void* block) noexcept
    {
        tarvik::test::countAllocation();
        __libc_free (block);
    }
#endif
}
