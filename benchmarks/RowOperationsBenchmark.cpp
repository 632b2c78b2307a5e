// SPDX-License-Identifier: GPL-3.0-or-later
//
// Each row operation on 256 samples: the plain loop, which the compiler is kept from vectorising, against the program's
// own on every instruction set of the machine.
#include "benchmarks/Yardstick.h"
#include "dsp/DecibelConverter.h"
#include "dsp/InstructionSets.h"
#include "dsp/RowMaths.h"
#include "dsp/RowOperations.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

// One sample after the other, as written; g++ would otherwise turn most of these loops into vector code.
#if defined(__GNUC__) && ! defined(__clang__)
#define TARVIK_PLAIN_LOOP __attribute__ ((noinline, optimize ("no-tree-vectorize")))
#else
#define TARVIK_PLAIN_LOOP
#endif

namespace tarvik::benchmarks
{
namespace
{
constexpr int n = 256;
constexpr float s = 0.999f;

// dst, a and b; results stay in the range of ordinary levels however often an operation is repeated.
using Row = void (*) (float* dst, const float* a, const float* b);

template <typename Operation>
TARVIK_PLAIN_LOOP void plainLoop (Operation operation, float* dst, const float* a, const float* b)
{
    for (int i = 0; i < n; ++i)
        dst[i] = operation (dst[i], a[i], b[i]);
}

struct Comparison
{
    const char* name;
    Row plain;
    Row rows;
};

const Comparison comparisons[] = {
    { "absolute",
      [] (float* d, const float* a, const float* b)
      { plainLoop ([] (float, float x, float) { return std::abs (x); }, d, a, b); },
      [] (float* d, const float* a, const float*) { rows::absolute (d, a, n); } },
    { "multiply",
      [] (float* d, const float* a, const float* b)
      { plainLoop ([] (float, float x, float y) { return x * y; }, d, a, b); },
      [] (float* d, const float* a, const float* b) { rows::multiply (d, a, b, n); } },
    { "scale",
      [] (float* d, const float* a, const float* b)
      { plainLoop ([] (float, float x, float) { return x * s; }, d, a, b); },
      [] (float* d, const float* a, const float*) { rows::scale (d, a, s, n); } },
    { "multiplyAdd",
      [] (float* d, const float* a, const float* b)
      { plainLoop ([] (float z, float x, float) { return z + x * s; }, d, a, b); },
      [] (float* d, const float* a, const float*) { rows::multiplyAdd (d, a, s, n); } },
    { "add",
      [] (float* d, const float* a, const float* b)
      { plainLoop ([] (float z, float x, float) { return z + x; }, d, a, b); },
      [] (float* d, const float* a, const float*) { rows::add (d, a, n); } },
    { "subtract",
      [] (float* d, const float* a, const float* b)
      { plainLoop ([] (float z, float x, float) { return z - x; }, d, a, b); },
      [] (float* d, const float* a, const float*) { rows::subtract (d, a, n); } },
    { "fill",
      [] (float* d, const float* a, const float* b) { plainLoop ([] (float, float, float) { return s; }, d, a, b); },
      [] (float* d, const float*, const float*) { rows::fill (d, s, n); } },
    { "copy",
      [] (float* d, const float* a, const float* b) { plainLoop ([] (float, float x, float) { return x; }, d, a, b); },
      [] (float* d, const float* a, const float*) { rows::copy (d, a, n); } },
    { "minimum",
      [] (float* d, const float* a, const float* b)
      { plainLoop ([] (float z, float, float) { return std::min (z, s); }, d, a, b); },
      [] (float* d, const float*, const float*) { rows::minimum (d, s, n); } },
    { "clampToFinite",
      [] (float* d, const float* a, const float* b)
      {
          const auto clamped = [] (float z, float, float) { return std::isfinite (z) ? std::clamp (z, -s, s) : 0.0f; };
          plainLoop (clamped, d, a, b);
      },
      [] (float* d, const float*, const float*) { rows::clampToFinite (d, s, n); } },
    { "levelToDB",
      [] (float* d, const float* a, const float* b)
      { plainLoop ([] (float, float x, float) { return std::log10 (x) * 20.0f; }, d, a, b); },
      [] (float* d, const float* a, const float*) { DecibelConverter::levelToDB (a, d, n); } },
    { "dBToLevel",
      [] (float* d, const float* a, const float* b)
      { plainLoop ([] (float, float x, float) { return std::exp (x * 0.11512925f); }, d, a, b); }, // ln (10) / 20
      [] (float* d, const float* a, const float*) { DecibelConverter::dBToLevel (a, d, n); } },
    { "tanh",
      [] (float* d, const float* a, const float* b)
      { plainLoop ([] (float, float x, float) { return std::tanh (x); }, d, a, b); },
      [] (float* d, const float* a, const float*) { rows::tanh (d, a, n); } },
};

void run (benchmark::State& state, Row operation)
{
    std::vector<float> dst (n), a (n), b (n);

    for (std::size_t i = 0; i < n; ++i)
    {
        a[i] = 0.1f + 0.007f * static_cast<float> (i * 37 % n); // 0.1 to 1.9 in no order
        b[i] = 1.5f - 0.005f * static_cast<float> (i * 91 % n);
    }

    for (auto _ : state)
    {
        operation (dst.data(), a.data(), b.data());
        benchmark::ClobberMemory();
    }

    reportPerSample (state, n);
}

void runYardstick (benchmark::State& state)
{
    Yardstick yardstick;
    std::vector<float> source (n, 0.5f), left (n), right (n);

    for (auto _ : state)
    {
        left = source;
        right = source;
        yardstick.process (left.data(), right.data(), n);
        benchmark::ClobberMemory();
    }

    reportPerSample (state, 2.0 * n);
}

[[maybe_unused]] const bool registered = []
{
    benchmark::RegisterBenchmark ("Yardstick", runYardstick);

    for (const auto& comparison : comparisons)
    {
        const auto name = std::string ("RowOperations/") + comparison.name + "/";
        benchmark::RegisterBenchmark ((name + "plain").c_str(), run, comparison.plain);

        for (const auto& set : supportedInstructionSets())
            benchmark::RegisterBenchmark ((name + set.name).c_str(),
                                          [set, operation = comparison.rows] (benchmark::State& state)
                                          {
                                              const ScopedInstructionSet forced (set);
                                              run (state, operation);
                                          });
    }

    return true;
}();
} // namespace
} // namespace tarvik::benchmarks
