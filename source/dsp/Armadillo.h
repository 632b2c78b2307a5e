// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** @file
    The only include of Armadillo: these settings must be the same wherever its headers are seen, since Armadillo is all
    templates and inline functions. Of it only the calls of LAPACK are used: its classes take their memory from the heap,
    and a filter may be designed on the audio thread.

    - ARMA_DONT_USE_WRAPPER: LAPACK and BLAS are linked directly, so Armadillo's run-time library stays out, and with
      it the sparse solvers and the file formats that it would bring.
    - ARMA_NO_DEBUG: no check of sizes and indices inside Armadillo; what goes in here is checked before.
    - ARMA_WARN_LEVEL 0: nothing is printed from inside a plug-in.
*/

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
