// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/ParameterTable.h"
#include "tests/support/StripTestTools.h"

#include <cstdlib>
#include <dlfcn.h>

namespace tarvik
{

using namespace test;

namespace
{
constexpr double rate = 48000.0;
constexpr int blockLength = 480;

/** Where the bundle is that these tests load: the build's, or an installed one. */
juce::String bundleFolder()
{
    const auto* const installed = std::getenv ("TARVIK_LV2_FOLDER");
    return juce::File (installed != nullptr ? installed : TARVIK_BUILT_LV2_FOLDER).getFullPathName();
}

/** The LV2 bundle in a host that knows it only by what its description says. */
class Lv2Module : public testing::Test
{
protected:
    Lv2Module()
    {
        // Without the noise, two instances are alike to the last bit.
        settingsFile.create();
        settingsFile.replaceWithText ("<PROPERTIES><VALUE name=\"Analog\" val=\"0\"/></PROPERTIES>");

        // The host also looks into the user's own folder, where another build may be installed.
        const std::string home = std::getenv ("HOME") != nullptr ? std::getenv ("HOME") : "";
        setenv ("HOME", bundleFolder().toRawUTF8(), 1);
        format = std::make_unique<juce::LV2PluginFormat>();
        format->searchPathsForPlugins ({ bundleFolder() }, false, false);
        setenv ("HOME", home.c_str(), 1);
        plugin = instance();
    }

    std::unique_ptr<juce::AudioPluginInstance> instance()
    {
        juce::OwnedArray<juce::PluginDescription> found;
        format->findAllTypesForFile (found, TARVIK_LV2_URI);

        if (found.isEmpty())
            return nullptr;

        juce::String error;
        auto made = format->createInstanceFromDescription (*found[0], rate, blockLength, error);
        EXPECT_NE (made, nullptr) << error;
        return made;
    }

    ~Lv2Module() override { settingsFile.deleteFile(); }

    void SetUp() override
    {
        ASSERT_NE (plugin, nullptr);
        const auto library = juce::File (bundleFolder()).getChildFile ("Tarvik 41 Channel.lv2/libTarvik 41 Channel.so");
        auto* const handle = dlopen (library.getFullPathName().toRawUTF8(), RTLD_LAZY | RTLD_NOLOAD);
        ASSERT_NE (handle, nullptr) << "the host took another bundle of this name";
        dlclose (handle);
    }

    static juce::AudioProcessorParameter& hosted (juce::AudioProcessor& processor, const juce::String& name)
    {
        constexpr int longest = 100;

        for (auto* const p : processor.getParameters())
            if (p->getName (longest) == name)
                return *p;

        ADD_FAILURE() << "no parameter " << name;
        return *processor.getParameters()[0];
    }

    static const ParameterRow& row (const juce::String& id)
    {
        return *std::find_if (parameterTable().begin(), parameterTable().end(), [&] (auto& r) { return id == r.id; });
    }

    /** Sets a parameter as this format's hosts do: a plain value within the range that the description states. */
    static void setHosted (juce::AudioProcessor& processor, const juce::String& id, float plain)
    {
        const auto& r = row (id);
        hosted (processor, r.name).setValue ((plain - r.start) / (r.end - r.start));
    }

    const juce::File settingsFile { juce::String (std::getenv ("XDG_CONFIG_HOME"))
                                    + "/Tarvik Plugins/Tarvik 41 Channel.settings" };
    std::unique_ptr<juce::LV2PluginFormat> format;
    std::unique_ptr<juce::AudioPluginInstance> plugin;
};
} // namespace

TEST_F (Lv2Module, DescriptionHasTheBusesParametersChoicesAndPrograms)
{
    EXPECT_EQ (plugin->getPluginDescription().name, "Tarvik 41 Channel");
    ASSERT_EQ (plugin->getBusCount (true), 2);
    EXPECT_EQ (plugin->getBus (true, 1)->getName(), "Sidechain");
    EXPECT_EQ (plugin->getTotalNumInputChannels(), 4);
    EXPECT_EQ (plugin->getTotalNumOutputChannels(), 2);
    EXPECT_EQ (plugin->getNumPrograms(), 26);

    constexpr int longest = 100;

    for (int i = 0; i < numParameters; ++i)
    {
        const auto& r = parameterTable()[static_cast<std::size_t> (i)];
        const auto& p = hosted (*plugin, r.name);
        const auto own = createParameter (i);
        EXPECT_NEAR (r.start + p.getDefaultValue() * (r.end - r.start), own->convertFrom0to1 (own->getDefaultValue()),
                     1.0e-5f * (r.end - r.start))
            << r.id;

        for (std::size_t c = 0; c < r.choices.size(); ++c)
            EXPECT_EQ (p.getText (static_cast<float> (c) / r.end, longest), juce::String (r.choices[c])) << r.id;
    }
}

TEST_F (Lv2Module, SoundsLikeTheSharedCodeAndBypassKeepsTheLatency)
{
    const std::pair<const char*, float> settings[] = { { "thd", 6.0f },
                                                       { "highGain", 8.0f },
                                                       { "lowFreq", 1.0f },
                                                       { "lowGain", 0.5f },
                                                       { "expRelease", 0.1f },
                                                       { "expMode", 2.0f },
                                                       { "expThreshold", -10.0f },
                                                       { "compIn", 1.0f },
                                                       { "compThreshold", -18.0f },
                                                       { "compExtSideChain", 1.0f },
                                                       { "TolChannel", 7.0f } };

    auto strip = makeStrip (2, true);
    strip->prepareToPlay (rate, blockLength);
    plugin->prepareToPlay (rate, blockLength);

    for (const auto& [id, value] : settings)
    {
        setPlain (*strip, id, value);
        setHosted (*plugin, id, value);
    }

    const std::vector<Signal> input { noise (48000, 1), noise (48000, 2), noise (48000, 3), noise (48000, 4) };
    const auto expected = process (*strip, input, blockLength);
    const auto heard = process (*plugin, input, blockLength);
    float loudest = 0.0f;

    for (std::size_t channel = 0; channel < 2; ++channel)
    {
        EXPECT_EQ (heard[channel], expected[channel]);

        for (const auto sample : expected[channel])
            loudest = std::max (loudest, std::abs (sample));
    }

    EXPECT_GT (loudest, 0.1f);

    constexpr int latency = 52, faded = 9600;
    EXPECT_EQ (plugin->getLatencySamples(), latency);
    ASSERT_NE (plugin->getBypassParameter(), nullptr);
    plugin->getBypassParameter()->setValue (1.0f);
    const auto bypassed = firstOf (process (*plugin, input, blockLength));
    EXPECT_TRUE (std::equal (bypassed.begin() + faded, bypassed.end(), input[0].begin() + faded - latency));
}

TEST_F (Lv2Module, StateAndProgramsComeBack)
{
    const auto settle = [] (juce::AudioProcessor& processor)
    { process (processor, std::vector<Signal> (4, Signal (blockLength)), blockLength); };

    plugin->prepareToPlay (rate, blockLength);
    setHosted (*plugin, "gain", 12.5f);
    setHosted (*plugin, "midFreq", 5.0f);
    setHosted (*plugin, "mute", 1.0f);
    settle (*plugin);
    juce::MemoryBlock state;
    plugin->getStateInformation (state);

    const auto reopened = instance();
    reopened->prepareToPlay (rate, blockLength);
    reopened->setStateInformation (state.getData(), static_cast<int> (state.getSize()));
    settle (*reopened);

    for (const auto* const name : { "Gain", "Mid Freq", "Mute" })
        EXPECT_EQ (hosted (*reopened, name).getValue(), hosted (*plugin, name).getValue()) << name;

    // Programs are presets; within half a second after a state they are not taken.
    constexpr int pause = 600;
    juce::Thread::sleep (pause);
    const auto strip = makeStrip();
    const juce::String program = "Vox Rap 3 Aggressive";
    int index = 0;

    while (index < reopened->getNumPrograms() && reopened->getProgramName (index) != program)
        ++index;

    reopened->setCurrentProgram (index);
    strip->setCurrentProgram (strip->getNumPrograms() - 1);
    EXPECT_EQ (strip->getProgramName (strip->getCurrentProgram()), program);
    settle (*reopened);

    for (const auto* const id : { "thd", "gain", "compThreshold", "compRatio" })
    {
        const auto& r = row (id);
        EXPECT_NEAR (r.start + hosted (*reopened, r.name).getValue() * (r.end - r.start), plainOf (*strip, id), 1e-3f);
    }
}

} // namespace tarvik
