// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace tarvik
{
/** One kind of component of a circuit. */
struct Component
{
    const char* name = "";
    double nominal = 0.0;   ///< in ohms, farads, henries, or whatever the stage works in
    double tolerance = 0.0; ///< standard deviation, relative to the nominal value
};

/** The values of a stage's components on each of the 32 console channels. Channel 0 has the nominal values; those
    of the others lie around them, as those of real components do, and are the same in every instance, every project
    and on every machine. */
class ComponentTable
{
public:
    static constexpr int numChannels = 32;

    /** One row per component. A component's place in the list is part of its random seed: saved projects depend on it.
        Allocates. */
    explicit ComponentTable (std::span<const Component> components);

    /** The value of a component on a channel, 0 to numChannels - 1. Any thread. */
    double get (std::size_t row, int channel) const noexcept { return rows[row][static_cast<std::size_t> (channel)]; }

    /** The same on the active channel. */
    double getActive (std::size_t row) const noexcept { return get (row, activeChannel); }

    std::size_t getNumRows() const noexcept { return rows.size(); }

    int getActiveChannel() const noexcept { return activeChannel; }

    /** Numbers outside 0 to numChannels - 1 are limited to that range. One thread at a time, the one that designs. */
    void setActiveChannel (int channel) noexcept;

private:
    using Row = std::array<double, numChannels>;

    /** Fills one row: the nominal value, then 31 draws from a normal distribution around it. Seeded by the row's number
        and the nominal value alone. */
    static void fillComponent (std::vector<Row>& table, std::size_t row, double nominal, double tolerance);

    std::vector<Row> rows;
    int activeChannel = 0;
};
} // namespace tarvik
