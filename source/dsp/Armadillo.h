// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** @file
    The only include of Armadillo: these settings must be the same wherever its headers are seen, since Armadillo is all templates and inline functions.

    - ARMA_DONT_USE_WRAPPER: LAPACK and BLAS are linked directly, so Armadillo's run-time library stays out, and with
      it the sparse solvers and the file formats that it would bring.
    - ARMA_NO_DEBUG: no check of sizes and indices inside Armadillo; what goes in here is checked before.
    - ARMA_WARN_LEVEL 0: nothing is printed from inside a plug-in.
    - ARMA_ALIEN_MEM_...: Armadillo's memory comes from the arena that the calling thread holds (PolynomialRoots.cpp),
      never from the heap, so that a filter can be designed on the audio thread.
*/

#include <cstddef>

namespace tarvik::armadilloMemory
{
/** A piece of the calling thread's arena, aligned to 32 bytes, or null when it is used up or the thread holds none.
    Armadillo turns null into std::bad_alloc. */
void* take (std::size_t numBytes) noexcept;

/** Does nothing: the arena is given back as a whole. */
void giveBack (void* memory) noexcept;
} // namespace tarvik::armadilloMemory

#define ARMA_ALIEN_MEM_ALLOC_FUNCTION ::tarvik::armadilloMemory::take
#define ARMA_ALIEN_MEM_FREE_FUNCTION ::tarvik::armadilloMemory::giveBack

#define ARMA_DONT_USE_WRAPPER
#define ARMA_USE_LAPACK
#define ARMA_USE_BLAS
#define ARMA_DONT_USE_ARPACK
#define ARMA_DONT_USE_SUPERLU
#define ARMA_DONT_USE_NEWARP
#define ARMA_DONT_USE_HDF5
#define ARMA_DONT_USE_OPENMP
#define ARMA_WARN_LEVEL 0
#define ARMA_NO_DEBUG

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpragmas"
#include <armadillo>
#pragma GCC diagnostic pop
