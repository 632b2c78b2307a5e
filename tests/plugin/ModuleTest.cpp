// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/plugin/ModuleInstance.h"
#include "tests/support/Golden.h"

#include <pluginterfaces/vst/ivstunits.h>

namespace tarvik
{

using namespace test;

namespace
{
juce::String textOf (const Vst::String128& wide)
{
    return juce::CharPointer_UTF16 (reinterpret_cast<const juce::CharPointer_UTF16::CharType*> (wide));
}

/** Its four words, whose bytes Windows keeps in another order. */
juce::String hexOf (const TUID uid)
{
    char8 text[33] = {};
    FUID::fromTUID (uid).toString (text);
    return juce::String (text).toLowerCase();
}
} // namespace

TEST (Module, ShowsWhatHostsAndProjectsKnowItBy)
{
    const Module module;
    EXPECT_TRUE (module.entry<bool (*)()> ("InitDll")());
    EXPECT_TRUE (module.entry<bool (*)()> ("ExitDll")());

    // Nothing but the entries may be visible: a host loads many modules into one process.
#if ! JUCE_WINDOWS // there packaging/windows/check-binaries.sh sees to it
    juce::ChildProcess nm;
    ASSERT_TRUE (
        nm.start (juce::StringArray { "nm", "--dynamic", "--defined-only", "--format=just-symbols", TARVIK_MODULE }));
    auto symbols = juce::StringArray::fromLines (nm.readAllProcessOutput().trim());
    symbols.sort (false);
    EXPECT_EQ (symbols.joinIntoString (" "), "ExitDll GetPluginFactory InitDll ModuleEntry ModuleExit");
#endif

    juce::String all;

    const auto factory = module.getFactory();
    EXPECT_EQ (module.getFactory().get(), factory.get()) << "one factory for the whole module";
    PFactoryInfo info;
    ASSERT_EQ (factory->getFactoryInfo (&info), kResultOk);
    all << info.vendor << ", flags " << info.flags;
    const auto factory2 = query<IPluginFactory2> (*factory, INLINE_UID_OF (IPluginFactory2));

    for (int32 i = 0; i < factory->countClasses(); ++i)
    {
        PClassInfo2 record;
        ASSERT_EQ (factory2->getClassInfo2 (i, &record), kResultOk);
        all << "\n" << hexOf (record.cid) << ", " << record.category << ", " << record.name << ", " << record.vendor;
        all << ", " << record.subCategories << ", " << record.sdkVersion << ", instances " << record.cardinality;
        EXPECT_STREQ (record.version, JucePlugin_VersionString);
    }

    const ModuleInstance instance (*factory);
    auto& component = *instance.component;
    TUID itsController {};
    ASSERT_EQ (component.getControllerClassId (itsController), kResultOk);
    all << "\ncontroller " << hexOf (itsController);

    for (const auto kind : { Vst::kAudio, Vst::kEvent })
        for (const auto direction : { Vst::kInput, Vst::kOutput })
            for (int32 i = 0; i < component.getBusCount (kind, direction); ++i)
            {
                Vst::BusInfo bus;
                ASSERT_EQ (component.getBusInfo (kind, direction, i, bus), kResultOk);
                all << "\nbus " << textOf (bus.name) << ", " << bus.channelCount << " channels, type " << bus.busType;
                all << ", flags " << static_cast<int> (bus.flags) << (kind == Vst::kAudio ? ", audio" : ", events");
            }

    auto& processor = *instance.processor;
    all << "\nlatency " << static_cast<int> (processor.getLatencySamples());
    EXPECT_EQ (processor.getTailSamples(), Vst::kNoTail);
    EXPECT_EQ (processor.canProcessSampleSize (Vst::kSample64), kResultFalse);

    for (int32 i = 0; i < instance.controller->getParameterCount(); ++i)
    {
        const auto parameter = instance.infoOf (i);
        all << "\n" << juce::String (parameter.id) << " " << textOf (parameter.title) << ", " << parameter.stepCount;
        all << " steps, flags " << parameter.flags;
    }

    const auto units = query<Vst::IUnitInfo> (*instance.controller, INLINE_UID_OF (Vst::IUnitInfo));
    Vst::ProgramListInfo programs;
    ASSERT_EQ (units->getProgramListInfo (0, programs), kResultOk);
    Vst::String128 lastName {};
    units->getProgramName (programs.id, programs.programCount - 1, lastName);
    all << "\n" << programs.programCount << " programs, the last is " << textOf (lastName) << "\n";
    expectGolden ("module.txt", all);

    using Vst::SpeakerArr::kMono;
    using Vst::SpeakerArr::kStereo;
    Vst::SpeakerArrangement monoIn[] = { kMono, kMono }, wideSidechain[] = { kMono, kStereo }, monoOut = kMono, now = 0;
    EXPECT_EQ (processor.setBusArrangements (monoIn, 2, &monoOut, 1), kResultTrue);
    EXPECT_EQ (processor.setBusArrangements (wideSidechain, 2, &monoOut, 1), kResultFalse);
    processor.getBusArrangement (Vst::kInput, 1, now);
    EXPECT_EQ (now, kMono) << "the refused side chain follows the main width";
}

} // namespace tarvik
