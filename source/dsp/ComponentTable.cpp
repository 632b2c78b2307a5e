// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/ComponentTable.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <random>

namespace tarvik
{
namespace
{
/** Normally distributed numbers by the polar method, written out instead of taken from the standard library: which of
    a pair's two numbers comes first, and how a uniform number is made, is left open there, and the tables must come out
    the same everywhere. The generator itself is fixed by the standard. */
class NormalNumbers
{
public:
    explicit NormalNumbers (std::uint32_t seed) : generator (seed) {}

    double draw()
    {
        if (hasSaved)
        {
            hasSaved = false;
            return saved;
        }

        double u = 0.0;
        double v = 0.0;
        double s = 0.0;

        do
        {
            u = 2.0 * drawUniform() - 1.0;
            v = 2.0 * drawUniform() - 1.0;
            s = u * u + v * v;
        } while (s >= 1.0 || s == 0.0);

        // Mathematical libraries may differ in the last bit of a double's logarithm, and some entries would show it.
        // Rounding a longer one gives the nearest double whichever library computed it.
        const auto logarithm = static_cast<double> (std::log (static_cast<long double> (s)));
        const auto w = std::sqrt (-2.0 * logarithm / s);
        saved = w * v;
        hasSaved = true;
        return w * u;
    }

private:
    /** In [0, 1), from 64 random bits rounded to a double's 53. */
    double drawUniform()
    {
        constexpr auto two32 = 4294967296.0;
        const auto low = static_cast<double> (generator());
        const auto high = static_cast<double> (generator());
        return std::min ((low + high * two32) / (two32 * two32), std::nextafter (1.0, 0.0));
    }

    std::mt19937 generator;
    double saved = 0.0;
    bool hasSaved = false;
};
} // namespace

ComponentTable::ComponentTable (std::span<const Component> components)
{
    rows.resize (components.size());

    for (std::size_t row = 0; row < components.size(); ++row)
        fillComponent (rows, row, components[row].nominal, components[row].tolerance);
}

void ComponentTable::setActiveChannel (int channel) noexcept
{
    activeChannel = std::clamp (channel, 0, numChannels - 1);
}

void ComponentTable::fillComponent (std::vector<Row>& table, std::size_t row, double nominal, double tolerance)
{
    constexpr auto bitsPerHalf = 32;
    const auto bits = std::bit_cast<std::uint64_t> (static_cast<double> (row) * nominal);
    NormalNumbers normal (static_cast<std::uint32_t> (bits >> bitsPerHalf) ^ static_cast<std::uint32_t> (bits));

    auto& values = table[row];
    values[0] = nominal;
    std::generate (values.begin() + 1, values.end(), [&] { return normal.draw() * tolerance * nominal + nominal; });
}
} // namespace tarvik
