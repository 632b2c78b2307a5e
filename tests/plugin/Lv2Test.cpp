// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/SettingsFileTest.h"
#include "tests/support/StripTestTools.h"

#include <cstdlib>
#include <dlfcn.h>

namespace tarvik
{

using namespace test;

namespace
{
constexpr double rate = 48000.0;
constexpr int blockLength = 480, longestName = 100;

/** Where the bundle is that these tests load: the build's, or an installed one. */
juce::String bundleFolder()
{
    const auto* const installed = std::getenv ("TARVIK_LV2_FOLDER");
    return juce::File (installed != nullptr ? installed : TARVIK_BUILT_LV2_FOLDER).getFullPathName();
}

/** A parameter as this format's hosts know it: by its name, with a plain value within the range of the description. */
struct Hosted
{
    Hosted (juce::AudioProcessor& processor, std::string_view id)
        : row (*std::find_if (parameterRows.begin(), parameterRows.end(), [&] (auto& r) { return id == r.id; })),
          parameter (**std::find_if (processor.getParameters().begin(), processor.getParameters().end(),
                                     [&] (auto* p) { return p->getName (longestName) == row.name; }))
    {
    }

    void set (float plain) const { parameter.setValue ((plain - row.range.start) / (row.range.end - row.range.start)); }

    float plain (float value) const { return row.range.start + value * (row.range.end - row.range.start); }

    const ParameterRow& row;
    juce::AudioProcessorParameter& parameter;
};

/** The LV2 bundle in a host that knows it only by what its description says. */
class Lv2Module : public SettingsFileTest
{
protected:
    explicit Lv2Module (const char* uri = TARVIK_LV2_URI)
    {
        write ("Analog", "0"); // without the noise, two instances are alike to the last bit

        // The host also looks into the user's own folder, where another build may be installed.
        const std::string home = std::getenv ("HOME") != nullptr ? std::getenv ("HOME") : "";
        setenv ("HOME", bundleFolder().toRawUTF8(), 1);
        format = std::make_unique<juce::LV2PluginFormat>();
        format->searchPathsForPlugins ({ bundleFolder() }, false, false);
        setenv ("HOME", home.c_str(), 1);
        juce::OwnedArray<juce::PluginDescription> found;
        format->findAllTypesForFile (found, uri);
        juce::String error;

        if (! found.isEmpty())
            plugin = format->createInstanceFromDescription (*found[0], rate, blockLength, error);

        EXPECT_NE (plugin, nullptr) << error;
    }

    void SetUp() override
    {
        ASSERT_NE (plugin, nullptr);
        plugin->prepareToPlay (rate, blockLength);
        const auto library = juce::File (bundleFolder()).getChildFile ("Tarvik 41 Channel.lv2/libTarvik 41 Channel.so");
        auto* const handle = dlopen (library.getFullPathName().toRawUTF8(), RTLD_LAZY | RTLD_NOLOAD);
        ASSERT_NE (handle, nullptr) << "the host took another bundle of this name";
        dlclose (handle);
    }

    /** As the shared code with the same buses, whatever is set. */
    void soundsLikeTheSharedCode (int width)
    {
        const auto strip = makeStrip (width, true);
        strip->prepareToPlay (rate, blockLength);
        ASSERT_EQ (plugin->getTotalNumInputChannels(), 2 * width);
        ASSERT_EQ (plugin->getTotalNumOutputChannels(), width);
        EXPECT_EQ (plugin->getNumPrograms(), 26);

        for (const auto& [id, value] : PlainValues {
                 { "thd", 6.0f }, { "expRelease", 0.1f }, { "compExtSideChain", 1.0f }, { "TolChannel", 7.0f } })
        {
            setPlain (*strip, id, value);
            Hosted (*plugin, id).set (value);
        }

        for (std::uint32_t i = 0; i < 2u * static_cast<unsigned> (width); ++i)
            input.push_back (noise (48000, 1 + i));

        const auto expected = process (*strip, input, blockLength), heard = process (*plugin, input, blockLength);

        for (std::size_t i = 0; i < static_cast<std::size_t> (width); ++i)
            EXPECT_EQ (heard[i], expected[i]) << i;
    }

    std::vector<Signal> input;
    std::unique_ptr<juce::LV2PluginFormat> format;
    std::unique_ptr<juce::AudioPluginInstance> plugin;
};

/** The plug-in for mono tracks, out of the same binary. */
struct Lv2ModuleMono : Lv2Module
{
    Lv2ModuleMono() : Lv2Module (TARVIK_LV2_URI ":mono") {}
};
} // namespace

TEST_F (Lv2Module, DescriptionHasTheBusesParametersChoicesAndPrograms)
{
    EXPECT_EQ (plugin->getPluginDescription().name, "Tarvik 41 Channel");
    ASSERT_EQ (plugin->getBusCount (true), 2);
    EXPECT_EQ (plugin->getBus (true, 1)->getName(), "Sidechain");

    for (int i = 0; i < numParameters; ++i)
    {
        const auto own = createParameter (i);
        const Hosted p (*plugin, parameterRow (i).id);
        EXPECT_NEAR (p.plain (p.parameter.getDefaultValue()), own->convertFrom0to1 (own->getDefaultValue()),
                     1.0e-5f * (p.row.range.end - p.row.range.start))
            << p.row.id;

        for (std::size_t c = 0; c < p.row.choices.size(); ++c)
            EXPECT_EQ (p.parameter.getText (static_cast<float> (c) / p.row.range.end, longestName), p.row.choices[c]);
    }
}

TEST_F (Lv2Module, SoundsLikeTheSharedCodeAndBypassKeepsTheLatency)
{
    soundsLikeTheSharedCode (2);
    constexpr int latency = 52, faded = 9600;
    EXPECT_EQ (plugin->getLatencySamples(), latency);
    auto* const bypass = plugin->getBypassParameter();
    ASSERT_NE (bypass, nullptr);
    bypass->setValue (1.0f);
    const auto bypassed = firstOf (process (*plugin, input, blockLength));
    EXPECT_TRUE (std::equal (bypassed.begin() + faded, bypassed.end(), input[0].begin() + faded - latency));
}

TEST_F (Lv2ModuleMono, SoundsLikeTheSharedCodeAndKeepsItsState)
{
    soundsLikeTheSharedCode (1);
    EXPECT_EQ (plugin->getPluginDescription().name, "Tarvik 41 Channel Mono");

    const Hosted frequency (*plugin, "lowFreq");
    const auto hear = [&] { process (*plugin, std::vector<Signal> (2, Signal (blockLength)), blockLength); };
    juce::MemoryBlock state;
    frequency.set (2.0f);
    hear();
    plugin->getStateInformation (state);
    frequency.set (0.0f);
    hear();
    plugin->setStateInformation (state.getData(), static_cast<int> (state.getSize()));
    hear(); // the values come back with the audio
    EXPECT_EQ (frequency.plain (frequency.parameter.getValue()), 2.0f);
}

/** Through lilv, which hands on whatever text the project has. A number that lies is harmless, and so is all else. */
TEST_F (Lv2Module, DamagedStateTextsAndProgramNumbers)
{
    juce::String whole; // the state, as its host keeps it
    const auto savedText = [&]
    {
        juce::MemoryBlock state;
        plugin->getStateInformation (state);
        whole = state.toString();
        const auto text = whole.fromFirstOccurrenceOf ("StateString> \"", false, false);
        return text.upToFirstOccurrenceOf ("\"", false, false).toStdString();
    };
    const auto loadWhole = [&] (const juce::String& state)
    {
        plugin->setStateInformation (state.toRawUTF8(), static_cast<int> (state.getNumBytesAsUTF8()));

        for (const auto& channel : process (*plugin, std::vector<Signal> (4, Signal (blockLength, 0.1f)), blockLength))
            ASSERT_TRUE (allFinite (channel));
    };
    const auto good = savedText();
    const auto fresh = whole;
    const auto load = [&] (const std::string& text)
    { loadWhole (fresh.replace (juce::String (good), juce::String (text))); };
    ASSERT_GT (good.size(), 1000u);
    Hosted (*plugin, "lowFreq").set (2.0f);
    process (*plugin, std::vector<Signal> (4, Signal (blockLength)), blockLength);
    const auto next = savedText();
    ASSERT_NE (next, good);

    for (std::size_t i = 0; i < good.size(); i += i < 16 ? 1 : 7) // all of the number
        for (const auto character : { 'A', '~', '.', '9' })
        {
            auto changed = good;
            changed[i] = character;
            load (changed);
            load (good.substr (0, i));
            load (next);
            ASSERT_EQ (savedText(), next) << i;
        }

    for (const auto* const number : { "-5", "99999999999", "x" })
    {
        load (next);
        load (number + good.substr (good.find ('.')));
        EXPECT_EQ (savedText(), good) << number;
    }

    juce::Thread::sleep (600); // until programs are taken again

    const juce::String number ("\"2147483647\"^^<http://www.w3.org/2001/XMLSchema#int>");
    loadWhole (fresh.replace ("StateString", "Program").replace ("\"" + juce::String (good) + "\"", number));
    const auto strip = makeStrip();
    strip->setCurrentProgram (25);
    const Hosted threshold (*plugin, "compThreshold");
    EXPECT_NEAR (threshold.plain (threshold.parameter.getValue()), plainOf (*strip, "compThreshold"), 1e-3f);
}

} // namespace tarvik
