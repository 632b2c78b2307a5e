// SPDX-License-Identifier: GPL-3.0-or-later

// Completes the LV2 bundle's description, which JUCE's helper writes out of the built module: the parameters get units
// and the values that belong to their choices (JUCE counts those from 0 to 1, whatever the range), the side chain is
// marked as one, the plug-in gets its class and licence, a maker without addresses has none, what the vocabularies do not
// allow goes, and the plug-in for mono tracks gets its record. Runs in the build, after the module is linked; what it does
// not find as expected fails the build.

#include "plugin/FactoryPrograms.h"
#include "plugin/Lv2Forms.h"
#include "plugin/ParameterTable.h"
#include "tools/ToolError.h"

#include <juce_events/juce_events.h>

#include <iostream>

namespace tarvik
{

namespace
{
/** Puts a text in place of another that must occur exactly that often. */
void replace (juce::String& turtle, const juce::String& old, const juce::String& with, int times = 1)
{
    const auto parts = juce::StringArray::fromTokens (turtle.replace (old, "\x1f"), "\x1f", "");

    if (parts.size() - 1 != times)
        throw ToolError ("expected " + juce::String (times) + " times, found " + juce::String (parts.size() - 1) + ": "
                         + old.trim());

    turtle = parts.joinIntoString (with);
}

/** The LV2 unit of a parameter whose number is shown as it is; empty without. */
juce::String unitOf (const ParameterRow& row)
{
    const juce::String unit (row.label());

    if (! juce::StringArray { "", "dB", "s" }.contains (unit))
        throw ToolError ("no LV2 unit for " + unit);

    return unit.isEmpty() ? unit : "units:" + unit.toLowerCase();
}

/** The type of value that hosts send. Choices and whole numbers stay floats, which the strip rounds: some hosts cut a
    position on its way to an int, and so miss by one.
*/
const char* valueType (const ParameterRow& row)
{
    return row.kind == ParameterFieldKind::Bool ? "atom:Bool" : "atom:Float";
}

/** A parameter's record: plain values in its own range, as the module takes them. */
juce::String parameterRecord (int index)
{
    const auto& row = parameterRow (index);
    const auto parameter = createParameter (index);
    juce::StringArray lines;
    lines.add (juce::String ("plug:") + row.id);
    lines.add ("\ta lv2:Parameter ;");
    lines.add (juce::String ("\tlv2:symbol \"") + row.id + "\" ;");
    lines.add (juce::String ("\trdfs:label \"") + row.name + "\" ;");
    lines.add (juce::String ("\trdfs:range ") + valueType (row) + " ;");
    lines.add ("\tlv2:default " + juce::String (parameter->convertFrom0to1 (parameter->getDefaultValue())) + " ;");
    lines.add ("\tlv2:minimum " + juce::String (row.range.start) + " ;");
    lines.add ("\tlv2:maximum " + juce::String (row.range.end) + " ;");

    if (const auto unit = unitOf (row); unit.isNotEmpty())
        lines.add ("\tunits:unit " + unit + " ;");

    // Hosts on JUCE show a choice's names only where it has a property that the vocabulary keeps for ports: so a choice is
    // described as a port as well. It does not become one of the plug-in's, which are those that the plug-in lists.
    if (! row.choices.empty())
        lines.add (juce::String ("\ta lv2:Port ;\n\tlv2:name \"") + row.name
                   + "\" ;\n\tlv2:portProperty lv2:enumeration ;");

    for (std::size_t i = 0; i < row.choices.size(); ++i)
        lines.add (juce::String ("\tlv2:scalePoint [ rdfs:label \"") + row.choices[i] + "\" ; rdf:value "
                   + juce::String (i) + ".0 ] ;");

    return lines.joinIntoString ("\n") + "\n\t.\n\n";
}

/** Replaces each parameter's record, from its name to the blank line after it. */
void replaceParameters (juce::String& turtle)
{
    for (int i = 0; i < numParameters; ++i)
    {
        const auto name = juce::String ("plug:") + parameterRow (i).id + "\n\ta lv2:Parameter";
        const auto start = turtle.indexOf (name);
        const auto end = turtle.indexOf (std::max (start, 0), " .\n\n");

        if (start < 0 || end < 0)
            throw ToolError ("no record of " + name);

        constexpr int lengthOfEnd = 4;
        turtle = turtle.substring (0, start) + parameterRecord (i) + turtle.substring (end + lengthOfEnd);
    }
}

void completePorts (juce::String& turtle)
{
    constexpr int numSideChainPorts = 2;
    const juce::String group = "\tpg:group plug:input_group_2 ;\n";
    replace (turtle, group, group + "\t\tlv2:portProperty lv2:isSideChain ;\n", numSideChainPorts);
    replace (turtle, "plug:input_group_2\n\ta pg:InputGroup ;\n",
             "plug:input_group_2\n\ta pg:InputGroup ;\n\tpg:sideChainOf plug:input_group_1 ;\n");
}

void completePlugin (juce::String& turtle)
{
    replace (turtle, "\ta lv2:Plugin ;\n",
             "\ta lv2:Plugin , lv2:DynamicsPlugin , doap:Project ;\n\tdoap:license "
             "<http://usefulinc.com/doap/licenses/gpl> ;\n");

    // An empty address would name the file itself, and that of a mailbox needs its scheme.
    const juce::String page (JucePlugin_ManufacturerWebsite), mail (JucePlugin_ManufacturerEmail);
    replace (turtle, "\t\tfoaf:homepage <" + page + "> ;\n",
             page.isEmpty() ? juce::String() : "\t\tfoaf:homepage <" + page + "> ;\n");
    replace (turtle, "\t\tfoaf:mbox <" + mail + "> ;\n",
             mail.isEmpty() ? juce::String() : "\t\tfoaf:mbox <mailto:" + mail + "> ;\n");
}

/** The properties under which the wrapper keeps a program's number and a whole state. */
void nameProperties (juce::String& turtle)
{
    turtle << "\nplug:Program a rdf:Property ; rdfs:label \"Program\" .\n"
              "plug:StateString a rdf:Property ; rdfs:label \"State\" .\n";
}

/** The record of the plug-in for mono tracks: the stereo one's, without every second audio port. */
void addMonoPlugin (juce::String& turtle)
{
    const juce::String uri = juce::String ("<") + JucePlugin_LV2URI + ">\n", between = "\t] , [\n";
    auto record = turtle.fromFirstOccurrenceOf (uri, true, false).upToFirstOccurrenceOf (" .\n", true, false);
    replace (record, uri, juce::String ("<") + lv2MonoUri + ">\n");
    replace (record, juce::String ("doap:name \"") + JucePlugin_Name + "\"",
             juce::String ("doap:name \"") + JucePlugin_Name + " Mono\"");

    auto ports = juce::StringArray::fromTokens (record.replace (between, "\x1f"), "\x1f", "");
    constexpr int numPorts = 11, numAudioPorts = 6;

    if (ports.size() != numPorts)
        throw ToolError ("expected 11 ports, found " + juce::String (ports.size()));

    for (int i = numAudioPorts - 1; i > 0; i -= 2)
        ports.remove (i);

    for (int i = 0; i < ports.size(); ++i)
    {
        const auto oldIndex =
            ports[i].fromFirstOccurrenceOf ("lv2:index ", true, false).upToFirstOccurrenceOf (";", true, false);
        replace (ports.getReference (i), oldIndex, "lv2:index " + juce::String (i) + " ;");
    }

    replace (ports.getReference (1), "audio_in_3", "audio_in_2");
    replace (ports.getReference (1), "Audio In 3", "Audio In 2");
    record = ports.joinIntoString (between);
    replace (record, "port-groups#left>", "port-groups#center>", numAudioPorts / 2);
    turtle << "\n" << record;
}

/** The mono plug-in is in the same binary, and the programs are for both. */
void nameMonoPlugin (juce::String& turtle)
{
    const auto stereo = juce::String ("<") + JucePlugin_LV2URI + ">", mono = juce::String ("<") + lv2MonoUri + ">";
    const auto record =
        turtle.fromFirstOccurrenceOf (stereo + "\n", true, false).upToFirstOccurrenceOf (" .\n", true, false);
    replace (turtle, "lv2:appliesTo " + stereo, "lv2:appliesTo " + stereo + " , " + mono, numFactoryPrograms);
    turtle << "\n" << record.replace (stereo, mono);
}

/** A feature is not extension data, and an interface is not a feature. */
void mendUserInterface (juce::String& turtle)
{
    replace (turtle, "\t\topts:interface ,\n\t\tui:noUserResize ,\n", "\t\topts:interface ,\n");
    replace (turtle, "\t\topts:interface ,\n\t\topts:options ;", "\t\topts:options ;");
}

void complete (const juce::File& file, std::initializer_list<void (*) (juce::String&)> steps)
{
    auto turtle = file.loadFileAsString();

    for (const auto step : steps)
        step (turtle);

    if (! file.replaceWithText (turtle))
        throw ToolError ("cannot write " + file.getFullPathName());
}

void completeBundle (const juce::File& folder)
{
    complete (folder.getChildFile ("dsp.ttl"),
              { replaceParameters, completePorts, completePlugin, addMonoPlugin, nameProperties });
    complete (folder.getChildFile ("manifest.ttl"), { nameMonoPlugin });
    complete (folder.getChildFile ("ui.ttl"), { mendUserInterface });
}
} // namespace

} // namespace tarvik

int main (int argc, char* argv[])
{
    try
    {
        if (argc != 2)
            throw tarvik::ToolError ("expected one argument, the bundle's folder");

        const juce::ScopedJuceInitialiser_GUI juceLibrary;
        tarvik::completeBundle (juce::File (juce::String (argv[1])));
        return 0;
    }
    catch (const std::exception& error)
    {
        std::cerr << "LV2 description: " << error.what() << std::endl;
        return 1;
    }
}
