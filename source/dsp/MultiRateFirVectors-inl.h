// SPDX-License-Identifier: GPL-3.0-or-later
// What the kernels of both ways share. Read once for each instruction set, hence the guard that toggles.
#if defined(TARVIK_MULTI_RATE_FIR_VECTORS) == defined(HWY_TARGET_TOGGLE)
#ifdef TARVIK_MULTI_RATE_FIR_VECTORS
#undef TARVIK_MULTI_RATE_FIR_VECTORS
#else
#define TARVIK_MULTI_RATE_FIR_VECTORS
#endif

#include <hwy/highway.h>

#include <cstddef>

HWY_BEFORE_NAMESPACE();

namespace tarvik::HWY_NAMESPACE
{
namespace
{
namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::ScalableTag<float>;
using Vector = hn::Vec<Tag>;

template <int count>
using Vectors = Vector[static_cast<std::size_t> (count)];

constexpr int lanes = static_cast<int> (hn::MaxLanes (Tag()));
constexpr int lanesPerBlock = 4;

// Sums that are open at once: enough to hide the latency of the multiply-adds, and as many as the registers hold
// beside the operands: 32 registers from AVX-512 on, else 16; without fused multiply-adds each product takes one too.
constexpr int openSums = lanes >= 16 ? 24 : (HWY_NATIVE_FMA ? 12 : 8);

// Costs no instruction. Without it the compiler would rather load a vector once more for its second use, or keep what
// the next round needs again and move sums out of the registers to make room; then loads set the pace.
// For g++, which builds everything but the fuzzers; clang does not take such an operand by reference.
HWY_INLINE void keepInRegister (Vector& v)
{
#if HWY_ARCH_X86 && HWY_TARGET != HWY_SCALAR && HWY_COMPILER_GCC_ACTUAL
    asm volatile("" : "+x"(v.raw) : : "memory");
#endif
    static_cast<void> (v);
}

// Where Highway has no vectors for the machine at all, one float is a vector, and the functions of blocks fall away.
#if HWY_TARGET != HWY_SCALAR
using Block = hn::Full128<float>;

// Exchanges rows and columns of the 4 x 4 matrix in each block of 128 bits, so that element i of a block of vector p
// becomes element p of that block of vector i.
HWY_INLINE void transposeBlocks (Vector& v0, Vector& v1, Vector& v2, Vector& v3)
{
    const Tag d;
    const hn::RepartitionToWide<Tag> dPair;
    const auto lower01 = hn::BitCast (dPair, hn::InterleaveLower (d, v0, v1));
    const auto lower23 = hn::BitCast (dPair, hn::InterleaveLower (d, v2, v3));
    const auto upper01 = hn::BitCast (dPair, hn::InterleaveUpper (d, v0, v1));
    const auto upper23 = hn::BitCast (dPair, hn::InterleaveUpper (d, v2, v3));
    v0 = hn::BitCast (d, hn::InterleaveLower (dPair, lower01, lower23));
    v1 = hn::BitCast (d, hn::InterleaveUpper (dPair, lower01, lower23));
    v2 = hn::BitCast (d, hn::InterleaveLower (dPair, upper01, upper23));
    v3 = hn::BitCast (d, hn::InterleaveUpper (dPair, upper01, upper23));
}

// Stores the vector's blocks `stride` floats apart.
template <typename D, typename V>
HWY_INLINE void storeBlocks (D d, V v, float* dst, int stride)
{
    if constexpr (hn::MaxLanes (D()) == lanesPerBlock)
    {
        hn::StoreU (v, d, dst);
    }
    else
    {
        const hn::Half<D> half;
        const auto blocks = static_cast<int> (hn::MaxLanes (half)) / lanesPerBlock;
        storeBlocks (half, hn::LowerHalf (half, v), dst, stride);
        storeBlocks (half, hn::UpperHalf (half, v), dst + blocks * stride, stride);
    }
}

// The sum of the vector's blocks.
template <typename D, typename V>
HWY_INLINE hn::Vec<Block> sumOfBlocks (D d, V v)
{
    if constexpr (hn::MaxLanes (D()) == lanesPerBlock)
    {
        return v;
    }
    else
    {
        const hn::Half<D> half;
        return sumOfBlocks (half, hn::Add (hn::LowerHalf (half, v), hn::UpperHalf (half, v)));
    }
}

// Stores element i of the four vectors next to each other at dst + i * stride.
HWY_INLINE void storeColumns (Vector v0, Vector v1, Vector v2, Vector v3, float* dst, int stride)
{
    const Tag d;
    transposeBlocks (v0, v1, v2, v3);
    storeBlocks (d, v0, dst, lanesPerBlock * stride);
    storeBlocks (d, v1, dst + stride, lanesPerBlock * stride);
    storeBlocks (d, v2, dst + 2 * stride, lanesPerBlock * stride);
    storeBlocks (d, v3, dst + 3 * stride, lanesPerBlock * stride);
}

// Stores the sum of each vector's lanes.
HWY_INLINE void storeSums (Vector v0, Vector v1, Vector v2, Vector v3, float* dst)
{
    transposeBlocks (v0, v1, v2, v3);
    const auto sum = hn::Add (hn::Add (v0, v2), hn::Add (v1, v3));
    hn::StoreU (sumOfBlocks (Tag(), sum), Block(), dst);
}
#else
HWY_INLINE void storeSums (Vector v0, Vector v1, Vector v2, Vector v3, float* dst)
{
    dst[0] = hn::GetLane (v0);
    dst[1] = hn::GetLane (v1);
    dst[2] = hn::GetLane (v2);
    dst[3] = hn::GetLane (v3);
}

HWY_INLINE void storeColumns (Vector v0, Vector v1, Vector v2, Vector v3, float* dst, int)
{
    storeSums (v0, v1, v2, v3, dst);
}
#endif
} // namespace
} // namespace tarvik::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();
#endif
