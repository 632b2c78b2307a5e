// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/ParameterTable.h"
#include "tests/plugin/ModuleInstance.h"

#include <gtest/gtest.h>
#include <pluginterfaces/vst/ivstunits.h>

#include <string>

namespace tarvik
{

using namespace test;

namespace
{
std::string text (const Vst::String128& wide)
{
    return juce::String (juce::CharPointer_UTF16 (reinterpret_cast<const juce::CharPointer_UTF16::CharType*> (wide)))
        .toStdString();
}
} // namespace

TEST (Module, ExportsItsEntriesAndTheStringsAndCodesThatHostsKeep)
{
    const Module module;
    EXPECT_TRUE (module.entry<bool (*)()> ("InitDll")());
    EXPECT_TRUE (module.entry<bool (*)()> ("ExitDll")());

    // Nothing else may be visible: a host loads many modules into one process.
    juce::ChildProcess nm;
    ASSERT_TRUE (
        nm.start (juce::StringArray { "nm", "--dynamic", "--defined-only", "--format=just-symbols", TARVIK_MODULE }));
    auto symbols = juce::StringArray::fromLines (nm.readAllProcessOutput().trim());
    symbols.sort (false);
    EXPECT_EQ (symbols.joinIntoString (" "), "ExitDll GetPluginFactory InitDll ModuleEntry ModuleExit");

    auto* const first = module.getFactory();
    const Held<IPluginFactory> factory (first);
    EXPECT_EQ (module.getFactory(), first) << "one factory for the whole module";
    EXPECT_EQ (first->release(), 1u);

    PFactoryInfo info;
    ASSERT_EQ (factory->getFactoryInfo (&info), kResultOk);
    EXPECT_STREQ (info.vendor, "Nomvale");
    EXPECT_EQ (info.flags, PFactoryInfo::kUnicode);

    ASSERT_EQ (factory->countClasses(), 2);
    const auto factory2 = query<IPluginFactory2> (*factory, INLINE_UID_OF (IPluginFactory2));

    for (const auto& [i, category, id] :
         { std::tuple (0, "Audio Module Class", componentId), { 1, "Component Controller Class", controllerId } })
    {
        PClassInfo2 record;
        ASSERT_EQ (factory2->getClassInfo2 (i, &record), kResultOk);
        EXPECT_EQ (std::string (record.cid, sizeof (TUID)), id);
        EXPECT_STREQ (record.category, category);
        EXPECT_STREQ (record.name, "Tarvik 41 Channel");
        EXPECT_STREQ (record.vendor, "Nomvale");
        EXPECT_STREQ (record.subCategories, "Fx|Channel Strip");
        EXPECT_STREQ (record.version, JucePlugin_VersionString);
        EXPECT_STREQ (record.sdkVersion, "VST 3.7.2");
        EXPECT_EQ (record.cardinality, PClassInfo::kManyInstances);
    }
}

TEST (Module, ComponentShowsItsBusesLatencyParametersAndPrograms)
{
    const Module module;
    const Held<IPluginFactory> factory (module.getFactory());
    const ModuleInstance instance (*factory);
    auto& component = *instance.component;
    TUID itsController {};
    ASSERT_EQ (component.getControllerClassId (itsController), kResultOk);
    EXPECT_EQ (std::string (itsController, sizeof (TUID)), controllerId);

    EXPECT_EQ (component.getBusCount (Vst::kEvent, Vst::kInput), 0);
    ASSERT_EQ (component.getBusCount (Vst::kAudio, Vst::kInput), 2);
    ASSERT_EQ (component.getBusCount (Vst::kAudio, Vst::kOutput), 1);

    for (const auto& [direction, index, name, type] : { std::tuple (Vst::kInput, 0, "Input", Vst::kMain),
                                                        { Vst::kOutput, 0, "Output", Vst::kMain },
                                                        { Vst::kInput, 1, "Sidechain", Vst::kAux } })
    {
        Vst::BusInfo bus;
        ASSERT_EQ (component.getBusInfo (Vst::kAudio, direction, index, bus), kResultOk);
        EXPECT_EQ (text (bus.name), name);
        EXPECT_EQ (bus.busType, type);
        EXPECT_EQ (bus.channelCount, 2);
        EXPECT_TRUE (bus.flags & Vst::BusInfo::kDefaultActive) << name;
    }

    auto& processor = *instance.processor;
    EXPECT_EQ (processor.getLatencySamples(), 52u);
    EXPECT_EQ (processor.getTailSamples(), Vst::kNoTail);
    EXPECT_EQ (processor.canProcessSampleSize (Vst::kSample64), kResultFalse);

    using Vst::SpeakerArr::kMono;
    using Vst::SpeakerArr::kStereo;
    Vst::SpeakerArrangement monoIn[] = { kMono, kMono }, wideSidechain[] = { kMono, kStereo }, monoOut = kMono, now = 0;
    EXPECT_EQ (processor.setBusArrangements (monoIn, 2, &monoOut, 1), kResultTrue);
    EXPECT_EQ (processor.setBusArrangements (wideSidechain, 2, &monoOut, 1), kResultFalse);
    processor.getBusArrangement (Vst::kInput, 1, now);
    EXPECT_EQ (now, kMono) << "the refused side chain follows the main width";

    ASSERT_EQ (instance.controller->getParameterCount(), numParameters + 2);

    for (const auto& [index, title, steps] :
         { std::tuple (25, "Comp Smash", 1), { numParameters, "Bypass", 1 }, { numParameters + 1, "Program", 25 } })
    {
        const auto parameter = instance.infoOf (index);
        EXPECT_EQ (text (parameter.title), title);
        EXPECT_EQ (parameter.stepCount, steps) << title;
        EXPECT_TRUE (parameter.flags & Vst::ParameterInfo::kCanAutomate) << title;
    }

    EXPECT_EQ (instance.infoOf (25).id, static_cast<uint32> (juce::String ("compNuke").hashCode()) & 0x7fffffffu)
        << "projects keep automation under this number";

    const auto units = query<Vst::IUnitInfo> (*instance.controller, INLINE_UID_OF (Vst::IUnitInfo));
    Vst::ProgramListInfo programs;
    ASSERT_EQ (units->getProgramListInfo (0, programs), kResultOk);
    Vst::String128 name {};
    units->getProgramName (programs.id, 25, name);
    EXPECT_EQ (text (name), "Vox Rap 3 Aggressive");
}

} // namespace tarvik
