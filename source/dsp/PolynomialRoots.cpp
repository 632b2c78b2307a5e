// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/PolynomialRoots.h"

#include "dsp/Armadillo.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace tarvik
{
namespace
{
constexpr std::size_t arenaAlignment = 32;

/** LAPACK's workspace of 64 numbers per degree is by far the largest piece; five degrees take some 3 KiB in all. */
constexpr std::size_t arenaBytes = 8192;

struct Arena
{
    Arena() noexcept;
    ~Arena();
    Arena (const Arena&) = delete;
    Arena& operator= (const Arena&) = delete;

    alignas (arenaAlignment) std::array<std::byte, arenaBytes> storage;
    std::size_t used = 0;
};

/** The arena of the design that runs on this thread. The initial-exec model keeps these eight bytes in the block that
    every thread has from its start; otherwise the C library would allocate on a thread's first use of them. */
[[gnu::tls_model ("initial-exec")]] thread_local Arena* currentArena = nullptr;

Arena::Arena() noexcept { currentArena = this; }

Arena::~Arena() { currentArena = nullptr; }
} // namespace

void* armadilloMemory::take (std::size_t numBytes) noexcept
{
    auto* const arena = currentArena;
    const auto rounded = (numBytes + arenaAlignment - 1) / arenaAlignment * arenaAlignment;

    if (arena == nullptr || rounded > arenaBytes - arena->used)
        return nullptr;

    void* const piece = arena->storage.data() + arena->used;
    arena->used += rounded;
    return piece;
}

void armadilloMemory::giveBack (void*) noexcept {}

bool findPolynomialRoots (std::span<const double> coefficients, std::span<std::complex<double>> roots) noexcept
{
    const auto isFinite = [] (double c) { return std::isfinite (c); };

    if (coefficients.empty() || coefficients.size() > maxPolynomialDegree + 1 || roots.size() + 1 < coefficients.size()
        || ! (coefficients.front() != 0.0) || ! std::all_of (coefficients.begin(), coefficients.end(), isFinite))
        return false;

    const auto degree = coefficients.size() - 1;
    const Arena arena;

    try
    {
        arma::vec polynomial (coefficients.size());
        std::copy (coefficients.begin(), coefficients.end(), polynomial.begin());
        arma::cx_vec found;

        // A polynomial whose coefficients lie further apart than a double's range loses some to underflow inside.
        if (! arma::roots (found, polynomial) || found.n_elem != degree)
            return false;

        std::copy (found.begin(), found.end(), roots.begin());
        return true;
    }
    catch (...)
    {
        return false;
    }
}
} // namespace tarvik
