// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <concepts>
#include <cstddef>
#include <cstring>
#include <span>
#include <type_traits>

/** Arithmetic on rows: plain arrays of `n` samples, 32-bit or 64-bit floats.

    Every function may be called on any thread, allocates nothing and keeps no state. `n` at or below 0 changes
    nothing. Pointers need no alignment. A destination may be the very row that a source is; rows that overlap in
    any other way are not allowed. The processor's widest vectors are used, chosen at run time, and every processor
    gives the same bits: each result is one correctly rounded operation (two for multiplyAdd), never a fused one.
    The one thing left open is which NaN comes out where an operation has two of them to choose from. */
namespace tarvik::rows
{
template <typename T>
concept Sample = std::same_as<T, float> || std::same_as<T, double>;

/** A scalar that goes with a row of T: converted to the row's type, never deduced from. */
template <typename T>
using Scalar = std::type_identity_t<T>;

/** What the processor-specific loops can do with two rows, and with a row x and a scalar s. */
enum class RowOperation
{
    add,
    subtract,
    multiply,
    divide,
    minimum,
    maximum
};

enum class ScalarOperation
{
    fill,         ///< s
    add,          ///< x + s
    subtractFrom, ///< s - x
    multiply,     ///< x * s
    divide,       ///< x / s
    divideInto,   ///< s / x
    minimum,
    maximum,
    absolute,     ///< |x|, s unused
    clampToFinite // see the function of that name
};

/** dst[i] = operation (a[i], b[i]). The named functions below read better. */
void combine (RowOperation operation, float* dst, const float* a, const float* b, int n) noexcept;
void combine (RowOperation operation, double* dst, const double* a, const double* b, int n) noexcept;

/** dst[i] = operation (src[i], s). */
void combine (ScalarOperation operation, float* dst, const float* src, float s, int n) noexcept;
void combine (ScalarOperation operation, double* dst, const double* src, double s, int n) noexcept;

/** The same in each of several rows of n samples, in place. */
void combine (ScalarOperation operation, float* const* rows, int numRows, float s, int n) noexcept;

/** dst[i] = dst[i] + src[i] * s, the product rounded before it is added. */
void multiplyAdd (float* dst, const float* src, float s, int n) noexcept;
void multiplyAdd (double* dst, const double* src, double s, int n) noexcept;

/** dst[i] = clampToFinite (a[i] * b[i], limit), as the function of that name does it. */
void clampedProduct (float* dst, const float* a, const float* b, float limit, int n) noexcept;

/** row[i] = clampToFinite (row[i], limit) * (dry[i] + wet[i] * gain[i]), the inner product rounded before it is
    added. */
void scaleByMix (float* row, float limit, const float* dry, const float* wet, const float* gain, int n) noexcept;

/** dst[i] = |mean of sources[0][i], sources[1][i] and so on|, 0 where that is not finite. Each sample is multiplied by
    1 / numSources, then they are added in order. There is at least one source; `dst` is none of them. */
void meanMagnitude (float* dst, const float* const* sources, int numSources, int n) noexcept;

/** dst[i] = target - increment * (remaining - 1 - i), computed in 64 bits: the next n samples of a linear move of
    which `remaining` samples are left. */
void fillLine (float* dst, double target, double increment, int remaining, int n) noexcept;

/** Fills groups of as many samples as there are powers: the value before the group times each of them. Returns the last
    value, which is the one before the next group. */
double fillPowers (float* dst, double before, std::span<const double> powers, int groups) noexcept;

/** dst[i] = |src[i]|. Clears the sign bit, of NaNs as well. */
template <Sample T>
void absolute (T* dst, const T* src, int n) noexcept
{
    combine (ScalarOperation::absolute, dst, src, T {}, n);
}

/** dst[i] = dst[i] * src[i] */
template <Sample T>
void multiply (T* dst, const T* src, int n) noexcept
{
    combine (RowOperation::multiply, dst, dst, src, n);
}

/** dst[i] = a[i] * b[i] */
template <Sample T>
void multiply (T* dst, const T* a, const T* b, int n) noexcept
{
    combine (RowOperation::multiply, dst, a, b, n);
}

/** dst[i] = dst[i] * s */
template <Sample T>
void scale (T* dst, Scalar<T> s, int n) noexcept
{
    combine (ScalarOperation::multiply, dst, dst, s, n);
}

/** dst[i] = src[i] * s */
template <Sample T>
void scale (T* dst, const T* src, Scalar<T> s, int n) noexcept
{
    combine (ScalarOperation::multiply, dst, src, s, n);
}

/** The same in several rows. */
inline void scale (float* const* rows, int numRows, float s, int n) noexcept
{
    combine (ScalarOperation::multiply, rows, numRows, s, n);
}

/** dst[i] = dst[i] + src[i] */
template <Sample T>
void add (T* dst, const T* src, int n) noexcept
{
    combine (RowOperation::add, dst, dst, src, n);
}

/** dst[i] = dst[i] - src[i] */
template <Sample T>
void subtract (T* dst, const T* src, int n) noexcept
{
    combine (RowOperation::subtract, dst, dst, src, n);
}

/** dst[i] = s */
template <Sample T>
void fill (T* dst, Scalar<T> s, int n) noexcept
{
    combine (ScalarOperation::fill, dst, dst, s, n);
}

/** dst[i] = src[i], bit for bit. */
template <Sample T>
void copy (T* dst, const T* src, int n) noexcept
{
    if (n > 0)
        std::memmove (dst, src, static_cast<std::size_t> (n) * sizeof (T));
}

/** Each sample becomes the smaller of itself and s. A NaN stays; a NaN as s changes nothing. */
template <Sample T>
void minimum (T* row, Scalar<T> s, int n) noexcept
{
    combine (ScalarOperation::minimum, row, row, s, n);
}

/** Each sample becomes the larger of itself and s. A NaN stays; a NaN as s changes nothing. */
template <Sample T>
void maximum (T* row, Scalar<T> s, int n) noexcept
{
    combine (ScalarOperation::maximum, row, row, s, n);
}

/** Makes a row safe to feed into anything with a memory: NaN and both infinities become 0, finite samples beyond
    +-limit become +-limit, and what lies in range stays as it is, bit for bit, -0.0 and subnormals included.
    `limit` is at least 0; infinity as the limit only takes the non-finite samples out. */
template <Sample T>
void clampToFinite (T* row, Scalar<T> limit, int n) noexcept
{
    combine (ScalarOperation::clampToFinite, row, row, limit, n);
}

/** The same in several rows. */
inline void clampToFinite (float* const* rows, int numRows, float limit, int n) noexcept
{
    combine (ScalarOperation::clampToFinite, rows, numRows, limit, n);
}
} // namespace tarvik::rows
