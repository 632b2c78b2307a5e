// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/RowMaths.h"
#include "dsp/VBufferProvider.h"

#include <utility>

namespace tarvik
{
/** A row of samples as a value in expressions, kept in a row of a VBufferProvider. All operations work sample by
    sample, on the audio thread, without allocating.

    A copy shares its original's row, and both count as users of it. Whoever changes a shared row first takes a row
    of its own, so a change never shows in another VBuffer; a row goes back to the pool with its last user. An
    expression therefore needs one free row for each intermediate value that is alive at the same time: `a * b + c`
    one, and `a += b` none unless a's row is shared.

    Both sides of an operation belong to pools of the same length. An empty VBuffer (default-made or moved from) may
    only be assigned to and destroyed. */
template <rows::Sample T>
class VBuffer
{
public:
    VBuffer() = default;

    /** Takes a row of `pool` and fills it with a copy of `source`, pool.getLength() samples. */
    VBuffer (VBufferProvider<T>& pool, const T* source) noexcept
        : provider (&pool), row (pool.takeRow (source)), samples (pool.getRow (row)), length (pool.getLength())
    {
    }

    VBuffer (const VBuffer& other) noexcept
        : provider (other.provider), row (other.row), samples (other.samples), length (other.length)
    {
        if (provider != nullptr)
            provider->addUser (row);
    }

    VBuffer (VBuffer&& other) noexcept { swap (other); }

    VBuffer& operator= (VBuffer other) noexcept
    {
        swap (other);
        return *this;
    }

    ~VBuffer()
    {
        if (provider != nullptr)
            provider->dropUser (row);
    }

    int getRow() const noexcept { return row; }

    int getLength() const noexcept { return length; }

    const T* getSamples() const noexcept { return samples; }

    /** Writes the row to a plain array of getLength() samples. */
    void copyToSamples (T* destination) const noexcept { rows::copy (destination, samples, length); }

    VBuffer& operator+= (const VBuffer& other) noexcept { return combine (rows::RowOperation::add, other); }

    VBuffer& operator-= (const VBuffer& other) noexcept { return combine (rows::RowOperation::subtract, other); }

    VBuffer& operator*= (const VBuffer& other) noexcept { return combine (rows::RowOperation::multiply, other); }

    VBuffer& operator/= (const VBuffer& other) noexcept { return combine (rows::RowOperation::divide, other); }

    VBuffer& operator+= (T s) noexcept { return combine (rows::ScalarOperation::add, s); }

    VBuffer& operator-= (T s) noexcept { return combine (rows::ScalarOperation::add, -s); }

    VBuffer& operator*= (T s) noexcept { return combine (rows::ScalarOperation::multiply, s); }

    VBuffer& operator/= (T s) noexcept { return combine (rows::ScalarOperation::divide, s); }

    friend VBuffer operator+ (VBuffer v, const VBuffer& w) noexcept { return std::move (v += w); }

    friend VBuffer operator- (VBuffer v, const VBuffer& w) noexcept { return std::move (v -= w); }

    friend VBuffer operator* (VBuffer v, const VBuffer& w) noexcept { return std::move (v *= w); }

    friend VBuffer operator/ (VBuffer v, const VBuffer& w) noexcept { return std::move (v /= w); }

    friend VBuffer operator+ (VBuffer v, T s) noexcept { return std::move (v += s); }

    friend VBuffer operator- (VBuffer v, T s) noexcept { return std::move (v -= s); }

    friend VBuffer operator* (VBuffer v, T s) noexcept { return std::move (v *= s); }

    friend VBuffer operator/ (VBuffer v, T s) noexcept { return std::move (v /= s); }

    friend VBuffer operator+ (T s, VBuffer v) noexcept { return std::move (v += s); }

    friend VBuffer operator- (T s, VBuffer v) noexcept
    {
        return std::move (v.combine (rows::ScalarOperation::subtractFrom, s));
    }

    friend VBuffer operator* (T s, VBuffer v) noexcept { return std::move (v *= s); }

    friend VBuffer operator/ (T s, VBuffer v) noexcept
    {
        return std::move (v.combine (rows::ScalarOperation::divideInto, s));
    }

    VBuffer abs() const noexcept
    {
        auto result = *this;
        return std::move (result.combine (rows::ScalarOperation::absolute, T {}));
    }

    friend VBuffer abs (const VBuffer& v) noexcept { return v.abs(); }

    /** The first argument's sample unless the second one is smaller (larger), so a NaN on the left stays. */
    friend VBuffer min (VBuffer v, const VBuffer& w) noexcept
    {
        return std::move (v.combine (rows::RowOperation::minimum, w));
    }

    friend VBuffer min (VBuffer v, T s) noexcept { return std::move (v.combine (rows::ScalarOperation::minimum, s)); }

    friend VBuffer max (VBuffer v, const VBuffer& w) noexcept
    {
        return std::move (v.combine (rows::RowOperation::maximum, w));
    }

    friend VBuffer max (VBuffer v, T s) noexcept { return std::move (v.combine (rows::ScalarOperation::maximum, s)); }

    friend VBuffer vTanh (VBuffer v) noexcept { return std::move (v.transform (rows::tanh)); }

    friend VBuffer vExp (VBuffer v) noexcept { return std::move (v.transform (rows::exp)); }

    friend VBuffer vLog (VBuffer v) noexcept { return std::move (v.transform (rows::log)); }

    friend VBuffer vLog10 (VBuffer v) noexcept { return std::move (v.transform (rows::log10)); }

    friend VBuffer vPow (VBuffer base, const VBuffer& exponent) noexcept
    {
        auto* own = base.ownSamples();
        rows::pow (own, own, exponent.samples, base.length);
        return base;
    }

    friend VBuffer vPow (VBuffer base, T exponent) noexcept
    {
        auto* own = base.ownSamples();
        rows::pow (own, own, exponent, base.length);
        return base;
    }

private:
    void swap (VBuffer& other) noexcept
    {
        std::swap (provider, other.provider);
        std::swap (row, other.row);
        std::swap (samples, other.samples);
        std::swap (length, other.length);
    }

    /** The samples, after making sure that no other VBuffer sees them. */
    T* ownSamples() noexcept
    {
        if (provider->getUseCount (row) > 1)
            *this = VBuffer (*provider, samples);

        return samples;
    }

    VBuffer& combine (rows::RowOperation operation, const VBuffer& other) noexcept
    {
        auto* own = ownSamples();
        rows::combine (operation, own, own, other.samples, length);
        return *this;
    }

    VBuffer& combine (rows::ScalarOperation operation, T s) noexcept
    {
        auto* own = ownSamples();
        rows::combine (operation, own, own, s, length);
        return *this;
    }

    VBuffer& transform (void (*function) (T*, const T*, int) noexcept) noexcept
    {
        auto* own = ownSamples();
        function (own, own, length);
        return *this;
    }

    VBufferProvider<T>* provider = nullptr;
    int row = 0;
    T* samples = nullptr;
    int length = 0;
};
} // namespace tarvik
