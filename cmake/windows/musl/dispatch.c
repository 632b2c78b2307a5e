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

/* The root of the sum of two squares and its correction, of C. Borges, "An Improved Algorithm for hypot(a,b)" (2019), unfused:
   first >= second >= 0, and neither square leaves the range. */
static double correctedHypot (double first, double second)
{
    const double h = sqrt (first * first + second * second);
    double one, other;

    if (h <= 2.0 * second)
    {
        const double delta = h - second;
        one = first * (2.0 * delta - first);
        other = (delta - 2.0 * (first - second)) * delta;
    }
    else
    {
        const double delta = h - first;
        one = 2.0 * delta * (first - 2.0 * second);
        other = (4.0 * delta - second) * second + delta * delta;
    }

    return h - (one + other) / (2.0 * h);
}

double hypot (double x, double y)
{
    const double largest = 0x1p+511, smallest = 0x1p-459, negligible = 0x1p-54, scale = 0x1p-600;

    if (isinf (x) || isinf (y))
        return INFINITY;

    if (isnan (x) || isnan (y))
        return x + y;

    x = fabs (x);
    y = fabs (y);
    const double first = x < y ? y : x, second = x < y ? x : y;

    if (second <= first * negligible)
        return first + second;

    if (first > largest)
        return correctedHypot (first * scale, second * scale) / scale;

    return second < smallest ? correctedHypot (first / scale, second / scale) * scale : correctedHypot (first, second);
}

double cabs (double _Complex z) { return hypot (__real__ z, __imag__ z); }
