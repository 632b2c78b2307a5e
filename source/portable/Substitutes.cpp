// SPDX-License-Identifier: GPL-3.0-or-later

// What stands in, in portable builds, for what the archives take from libraries that are not linked, or from a newer glibc
// than the oldest that such a build shall run with (cmake/Portable.cmake).

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <link.h>
#include <sys/random.h>

namespace
{
/** Fills in what a `dl_find_object` has of the module with this address, or goes on to the next module. */
int lookInModule (dl_phdr_info* module, std::size_t, void* object)
{
    auto& found = *static_cast<dl_find_object*> (object);
    const auto address = reinterpret_cast<std::uintptr_t> (found.dlfo_map_start);
    bool isHere = false;
    void* frames = nullptr;

    for (int i = 0; i < module->dlpi_phnum; ++i)
    {
        const auto& header = module->dlpi_phdr[i];
        const auto start = module->dlpi_addr + header.p_vaddr;

        if (header.p_type == PT_LOAD)
            isHere = isHere || (address >= start && address - start < header.p_memsz);
        else if (header.p_type == PT_GNU_EH_FRAME)
            frames = reinterpret_cast<void*> (start);
    }

    if (! isHere)
        return 0;

    found.dlfo_eh_frame = frames;
    return frames != nullptr ? 1 : -1;
}
} // namespace

extern "C" FILE* __real_stderr;
extern "C" FILE* __wrap_stderr;
extern "C" double oldHypot (double x, double y);
extern "C" float oldHypotf (float x, float y);
extern "C" double __wrap_hypot (double x, double y);
extern "C" float __wrap_hypotf (float x, float y);
extern "C" void xerbla_ (const char* routine, const int* argument, std::size_t length);
extern "C" void _gfortran_concat_string (std::size_t length, char* to, std::size_t firstLength, const char* first,
                                         std::size_t secondLength, const char* second);
extern "C" std::size_t _gfortran_string_len_trim (std::size_t length, const char* text);

/** libpng's archive takes stderr for a variable of the program that it is linked into, which a module has not. The linker
    gives this one to all (--wrap), and it is set before anything else begins.
*/
FILE* __wrap_stderr = nullptr;

__attribute__ ((constructor (101))) static void takeOverStderr() { __wrap_stderr = __real_stderr; }

/** glibc has the same function under two versions, and the newer, of 2.35, only leaves errno alone. */
__asm__(".symver oldHypot, hypot@GLIBC_2.2.5");
__asm__(".symver oldHypotf, hypotf@GLIBC_2.2.5");

double __wrap_hypot (double x, double y) { return oldHypot (x, y); }

float __wrap_hypotf (float x, float y) { return oldHypotf (x, y); }

/** By this the compiler's library finds who handles an exception. In glibc from 2.35 on; before that it went through all
    modules itself, as this does.
*/
int _dl_find_object (void* address, dl_find_object* result) noexcept
{
    *result = {};
    result->dlfo_map_start = address;
    return dl_iterate_phdr (&lookInModule, result) == 1 ? 0 : -1;
}

/** LAPACK reports a wrong argument here, which the caller also sees by its status. The original prints and ends the process,
    which would be the host.
*/
void xerbla_ (const char*, const int*, std::size_t) {}

/** LAPACK's routines look up block sizes by a text made of two letters. Fills up with blanks, as Fortran does. */
void _gfortran_concat_string (std::size_t length, char* to, std::size_t firstLength, const char* first,
                              std::size_t secondLength, const char* second)
{
    const auto fromFirst = std::min (firstLength, length);
    const auto fromSecond = std::min (secondLength, length - fromFirst);
    auto* end = std::copy_n (first, fromFirst, to);
    end = std::copy_n (second, fromSecond, end);
    std::fill (end, to + length, ' ');
}

std::size_t _gfortran_string_len_trim (std::size_t length, const char* text)
{
    while (length > 0 && text[length - 1] == ' ')
        --length;

    return length;
}

/** expat salts its hash tables with this, once for each document. In glibc from 2.36 on. */
void arc4random_buf (void* bytes, std::size_t size) noexcept
{
    auto* to = static_cast<std::byte*> (bytes);

    while (size > 0)
        if (const auto got = getrandom (to, size, 0); got > 0)
        {
            to += got;
            size -= static_cast<std::size_t> (got);
        }
}
