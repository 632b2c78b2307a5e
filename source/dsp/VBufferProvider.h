// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/RowOperations.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace tarvik
{
/** A pool of rows of T (32-bit or 64-bit floats): one block of memory, and a stack of the free rows. Each row counts its
    users and returns to the stack with the last one; the row freed last is taken first, while the cache still has it.

    setSize and release belong to preparation: no VBuffer of the pool may be alive, and no audio running. Everything
    else belongs to one audio thread, allocates nothing and checks nothing (debug builds assert). */
template <rows::Sample T>
class VBufferProvider
{
public:
    VBufferProvider() = default;
    VBufferProvider (const VBufferProvider&) = delete; ///< the VBuffers handed out point here
    VBufferProvider& operator= (const VBufferProvider&) = delete;

    /** Makes room for `numberOfRows` rows of `size` samples. The block never shrinks and is only replaced when one
        of the two numbers exceeds what it holds; then it has room for exactly these two. Numbers below 0 count as 0
        in the block. Free rows are listed anew only when their number changes, so a pool with a row still out keeps
        knowing so. */
    void setSize (int numberOfRows, int size)
    {
        if (numberOfRows > capacityRows || size > capacitySize)
            allocateBlock (numberOfRows, size);

        numRows = numberOfRows;
        rowSize = size;

        if (numberOfRows != listRows)
            buildFreeList (numberOfRows);

        length = size;
    }

    /** Gives all memory back and leaves every count at 0. */
    void release() noexcept
    {
        data.reset();
        rows.reset();
        freeList.reset();
        useCount.reset();
        capacityRows = capacitySize = numRows = rowSize = length = listRows = 0;
        freeTop = 0;
    }

    /** Takes the topmost free row, with one user, and copies `source` (getLength() samples) into it. Returns its
        number. */
    int takeRow (const T* source) noexcept
    {
        assert (freeTop >= 0);
        const auto row = freeList[static_cast<std::size_t> (freeTop)];
        --freeTop;
        ++useCount[static_cast<std::size_t> (row)];
        rows::copy (getRow (row), source, length);
        return row;
    }

    void addUser (int row) noexcept { ++useCount[static_cast<std::size_t> (row)]; }

    void dropUser (int row) noexcept
    {
        assert (getUseCount (row) > 0);

        if (--useCount[static_cast<std::size_t> (row)] == 0)
            freeList[static_cast<std::size_t> (++freeTop)] = row;
    }

    T* getRow (int row) const noexcept { return rows[static_cast<std::size_t> (row)]; }

    int getCapacityRows() const noexcept { return capacityRows; }

    int getCapacitySize() const noexcept { return capacitySize; }

    int getNumRows() const noexcept { return numRows; }

    int getRowSize() const noexcept { return rowSize; }

    int getLength() const noexcept { return length; }

    int getUseCount (int row) const noexcept { return useCount[static_cast<std::size_t> (row)]; }

    std::int64_t getFreeTop() const noexcept { return freeTop; }

    int getListRows() const noexcept { return listRows; }

private:
    static constexpr int groupBytes = 16; ///< rows start on whole groups, the smallest vector of any processor
    static constexpr int groupSize = groupBytes / static_cast<int> (sizeof (T));
    static constexpr std::align_val_t blockAlignment { 64 }; ///< a cache line, and the largest vector

    struct FreeBlock
    {
        void operator() (T* block) const noexcept { ::operator delete (block, blockAlignment); }
    };

    void allocateBlock (int numberOfRows, int size)
    {
        data.reset();
        rows.reset();
        capacityRows = capacitySize = 0; ///< what holds if the allocation throws

        const auto newSize = (std::max (size, 0) + groupSize - 1) / groupSize * groupSize;
        const auto rowCount = static_cast<std::size_t> (std::max (numberOfRows, 0));
        const auto sampleCount = rowCount * static_cast<std::size_t> (newSize);
        data.reset (static_cast<T*> (::operator new (sampleCount * sizeof (T), blockAlignment)));
        std::fill_n (data.get(), sampleCount, T {});
        rows = std::make_unique<T*[]> (rowCount);
        capacityRows = static_cast<int> (rowCount);
        capacitySize = newSize;

        for (std::size_t row = 0; row < rowCount; ++row)
            rows[row] = data.get() + row * static_cast<std::size_t> (capacitySize);
    }

    void buildFreeList (int numberOfRows)
    {
        const auto entries = static_cast<std::size_t> (std::max (numberOfRows, 0));
        freeList = std::make_unique<int[]> (entries);
        useCount = std::make_unique<int[]> (entries);

        for (std::size_t entry = 0; entry < entries; ++entry)
            freeList[entry] = static_cast<int> (entry);

        freeTop = static_cast<std::int64_t> (numberOfRows) - 1;
        listRows = numberOfRows;
    }

    std::unique_ptr<T, FreeBlock> data;
    std::unique_ptr<T*[]> rows;      ///< start of each row in `data`
    int capacityRows = 0;            ///< rows allocated
    int capacitySize = 0;            ///< samples allocated per row, a whole number of groups
    int numRows = 0;                 ///< rows asked for
    int rowSize = 0;                 ///< samples asked for
    int length = 0;                  ///< samples in a row as handed out
    std::unique_ptr<int[]> freeList; ///< numbers of the free rows, up to and including freeTop
    std::unique_ptr<int[]> useCount; ///< VBuffers that use each row
    std::int64_t freeTop = 0;        ///< last entry of freeList that is free, -1 when none is
    int listRows = 0;                ///< rows for which the two lists are built
};
} // namespace tarvik
