// SPDX-License-Identifier: GPL-3.0-or-later
// Stands in front of MinGW's functions of mathematics. glibc chooses between the same two forms by the same question.
#include <math.h>
#include <stdint.h>
#include <string.h>

#define TARVIK_CHOOSE(type, name, declared, passed)                                                    \
    type fma_##name declared;                                                                          \
    type sse2_##name declared;                                                                         \
    type name declared                                                                                 \
    {                                                                                                  \
        return __builtin_cpu_supports ("avx2") && __builtin_cpu_supports ("fma") ? fma_##name passed   \
                                                                                 : sse2_##name passed; \
    }

TARVIK_CHOOSE (double, exp, (double x), (x))
TARVIK_CHOOSE (double, log, (double x), (x))
TARVIK_CHOOSE (double, pow, (double x, double y), (x, y))
TARVIK_CHOOSE (float, log2f, (float x), (x))
TARVIK_CHOOSE (float, powf, (float x, float y), (x, y))

// By 2^y and a rest below 2, or below 1 for a negative y, as glibc has it: fdlibm's way and constants, in one form for all
// processors.
double log10 (double x)
{
    const double perNeper = 4.34294481903251816668e-01;
    const double perOctaveHigh = 3.01029995663611771306e-01, perOctaveLow = 3.69423907715893078616e-13;
    const uint64_t fraction = 0x000fffffffffffffu;
    const int bias = 1023;

    if (! (x > 0.0) || isinf (x))
        return log (x);

    int octave = 0;

    if (x < 2.2250738585072014e-308)
    {
        x *= 18014398509481984.0; // 2^54: no number is subnormal from here on
        octave = -54;
    }

    uint64_t bits;
    memcpy (&bits, &x, sizeof (bits));
    octave += (int) (bits >> 52) - bias;
    const int isBelow1 = octave < 0 ? 1 : 0;
    bits = (bits & fraction) | (uint64_t) (bias - isBelow1) << 52;
    memcpy (&x, &bits, sizeof (bits));

    const double y = octave + isBelow1;
    const double z = y * perOctaveLow + perNeper * log (x);
    return z + y * perOctaveHigh;
}
