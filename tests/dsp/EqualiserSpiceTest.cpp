// SPDX-License-Identifier: GPL-3.0-or-later
#include "FilterTestTools.h"
#include "dsp/EqualiserComponents.h"
#include "dsp/EqualiserNetwork.h"

#include <gtest/gtest.h>
#include <juce_core/juce_core.h>

#include <cmath>
#include <random>
#include <sstream>
#include <vector>

// The equaliser's circuit, drawn here once more from the values of its parts and solved by a circuit simulator: what
// the network's polynomials say must be what Kirchhoff's laws say. Needs the program ngspice (Debian package ngspice).

namespace tarvik
{
namespace
{
using namespace test;

constexpr double relativeTolerance = 1e-9, rateHz = 48000.0;

/** One copy of the circuit; all copies hang on the same source. */
struct Netlist
{
    /** A part between two nodes. Nodes other than "in" and ground, "0", belong to this copy. A resistor of 0 ohms,
        which the simulator would replace by another, must be wired as one node instead. */
    void add (const char* name, const std::string& a, const std::string& b, double value)
    {
        const auto place = [this] (const std::string& node)
        { return node == "in" || node == "0" ? node : node + suffix; };
        out << name << suffix << ' ' << place (a) << ' ' << place (b) << ' ' << value << '\n';
    }

    std::ostream& out;
    const std::string suffix;
};

/** The mid pot from node a to node b, the resonant branch lying across its first part. */
void addMidPot (Netlist& netlist, const ComponentTable& table, const EQControls& controls, const std::string& a,
                const std::string& b)
{
    const auto pot = table.getActive (16);
    const auto first = static_cast<double> (controls.midGain) * pot;
    const std::string wiper = first > 0.0 ? (first < pot ? "wiper" : b) : a;

    if (first < pot)
        netlist.add ("Rpotb", wiper, b, pot - first);

    if (first > 0.0)
    {
        const auto position = static_cast<std::size_t> (controls.midFreq);
        netlist.add ("Rpota", a, wiper, first);
        netlist.add ("Rmid", a, "mid1", 1.0);
        netlist.add ("Lmid", "mid1", "mid2", table.getActive (18 + position));
        netlist.add ("Cmid", "mid2", wiper, table.getActive (26 + position));
    }
}

void addCircuit (Netlist netlist, const ComponentTable& table, const EQControls& controls)
{
    constexpr std::array highFactors { 0.6, 1.0, 1.4 };
    const auto factor = highFactors[static_cast<std::size_t> (controls.highFreq)];
    const auto lowGain = static_cast<double> (controls.lowGain);
    const auto low = table.getActive (13 - static_cast<std::size_t> (controls.lowFreq));
    const auto highGain = static_cast<std::size_t> (controls.highGain);
    std::string source = "in";

    if (controls.lowFreq >= 4)
    {
        source = "cut";
        netlist.add ("Clow", "in", source, low);
        netlist.add ("Rlow", source, "0", table.getActive (0));
    }
    else
    {
        netlist.add ("Rboost", source, "low1",
                     std::pow (10.0, 6.0 - 12.0 * lowGain) + (1.0 - lowGain) * table.getActive (2));
        netlist.add ("Lboost", "low1", "low2", 10.0);
        netlist.add ("Cboost", "low2", "out", low);
    }

    if (controls.midMode == 1)
    {
        addMidPot (netlist, table, controls, source, "out");
    }
    else
    {
        netlist.add ("Rseries", source, "out", table.getActive (14));
        netlist.add ("Rarm", "out", "arm", table.getActive (15));
        addMidPot (netlist, table, controls, "arm", "0");
    }

    if (highGain > 5)
    {
        netlist.add ("Rhigh", source, "high", table.getActive (45 + highGain - 6));
        netlist.add ("Chigh", "high", "out", table.getActive (40 + highGain - 6) / factor);
    }
    else
    {
        netlist.add ("Chigh", "out", "0", table.getActive (34 + highGain) / factor);
    }

    netlist.add ("Rout", "out", "0", table.getActive (1));
}

/** All eight topologies, each with several pot positions, switches and channels. */
std::vector<EQControls> makeSettings()
{
    std::vector<EQControls> settings;
    std::mt19937 random (1);
    const auto draw = [&random] (unsigned count) { return static_cast<std::int32_t> (random() % count); };

    for (int topology = 0; topology < 8; ++topology)
        for (const auto pot : { 0.0f, 0.01f, 0.37f, 0.5f, 0.99f, 1.0f })
            settings.push_back ({ .highFreq = draw (3),
                                  .highGain = (topology & 4) != 0 ? 6 + draw (5) : draw (6),
                                  .midFreq = draw (8),
                                  .midGain = pot,
                                  .midMode = (topology & 2) != 0 ? 1 : 0,
                                  .lowFreq = (topology & 1) != 0 ? draw (4) : 4 + draw (6),
                                  .lowGain = 1.0f - pot,
                                  .toleranceChannel = pot == 0.5f ? 0 : draw (32) });

    return settings;
}

TEST (EqualiserCircuit, PolynomialsAgreeWithACircuitSimulator)
{
    const auto settings = makeSettings();
    const auto folder = juce::File::createTempFile ("spice");
    ASSERT_TRUE (folder.createDirectory());
    const auto netlist = folder.getChildFile ("equaliser.cir"), table = folder.getChildFile ("equaliser.data");
    ComponentTable components (equaliserComponents);
    std::ostringstream deck, nodes;
    deck.precision (17);
    deck << "equaliser\nVin in 0 AC 1\n";

    for (std::size_t i = 0; i < settings.size(); ++i)
    {
        components.setActiveChannel (settings[i].toleranceChannel);
        addCircuit ({ deck, "_" + std::to_string (i) }, components, settings[i]);
        nodes << " v(out_" << i << ')';
    }

    // A line for each frequency: Hz, then real and imaginary part of each voltage.
    deck << ".control\nac dec 20 0.1 100k\nset wr_singlescale\nset numdgt=17\nwrdata " << table.getFullPathName()
         << nodes.str() << "\n.endc\n.end\n";
    ASSERT_TRUE (netlist.replaceWithText (deck.str()));

    juce::ChildProcess process;
    ASSERT_TRUE (process.start (juce::StringArray { "ngspice", "-b", netlist.getFullPathName() }));
    const auto log = process.readAllProcessOutput();
    std::istringstream numbers (table.loadFileAsString().toStdString());
    folder.deleteRecursively();
    auto numFrequencies = 0;

    for (double hz = 0.0; numbers >> hz; ++numFrequencies)
        for (std::size_t i = 0; i < settings.size(); ++i)
        {
            double real = 0.0, imaginary = 0.0;
            numbers >> real >> imaginary;
            components.setActiveChannel (settings[i].toleranceChannel);
            const auto response = solveEqualiserNetwork (components, settings[i]);
            const auto expected = analogueResponse (response.numerator, response.denominator, hz);
            ASSERT_LT (std::abs (Complex (real, imaginary) - expected), relativeTolerance * std::abs (expected))
                << "setting " << i << " at " << hz << " Hz";

            // The digital filter errs most near half the rate.
            const auto taps = designTaps<5> (response.numerator, response.denominator, rateHz);
            const auto gain = std::abs (digitalResponse (taps, 2.0 * std::numbers::pi * hz / rateHz));
            const auto boundDb = hz < 0.25 * rateHz ? 0.03 : hz < 0.42 * rateHz ? 0.4 : 1000.0;
            ASSERT_NEAR (20.0 * std::log10 (gain / std::abs (expected)), 0.0, boundDb)
                << "setting " << i << " at " << hz << " Hz";
        }

    EXPECT_EQ (numFrequencies, 121) << "This test needs ngspice (Debian package ngspice). It said: " << log;
}
} // namespace
} // namespace tarvik
