// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/FactoryPrograms.h"
#include "plugin/ParameterTable.h"
#include "tests/tools/ToolProcess.h"

namespace tarvik
{

using ListTool = RenderTool;

TEST_F (ListTool, NamesAllThereIs)
{
    const auto outcome = runWell ({ "list", "--module", moduleBundle() });
    EXPECT_EQ (run ({ "--list" }).out, outcome.out);

    for (const auto& row : parameterRows)
        EXPECT_TRUE (outcome.out.contains ("\n" + juce::String (row.id) + " ")) << row.id;

    for (const auto& program : factoryPrograms())
        EXPECT_TRUE (outcome.out.contains ("  " + juce::String (program.name) + "\n")) << program.name;

    for (const auto* const words : { "Latency: 52 samples", "Sidechain, stereo", "-12.00 to 48.00 dB" })
        EXPECT_TRUE (outcome.out.contains (words)) << words;
}

} // namespace tarvik
