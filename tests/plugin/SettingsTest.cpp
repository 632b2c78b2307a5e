// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/SettingsFile.h"
#include "tests/support/ProbeStrip.h"
#include "tests/support/StripTestTools.h"

#include <atomic>
#include <limits>
#include <thread>

namespace tarvik
{

using namespace test;

namespace
{
/** Each test begins with no settings file, and leaves none behind. */
class Settings : public testing::Test
{
protected:
    void SetUp() override { file().deleteFile(); }

    void TearDown() override { file().deleteFile(); }

    static juce::File file() { return settingsFileOptions().getDefaultFile(); }

    static void write (const juce::String& key, const juce::String& value)
    {
        juce::PropertiesFile properties (settingsFileOptions());
        properties.setValue (key, value);
        ASSERT_TRUE (properties.save());
    }
};
} // namespace

TEST_F (Settings, FileStandsInTheUsersConfigurationFolder)
{
    const auto config = juce::SystemStats::getEnvironmentVariable ("XDG_CONFIG_HOME", {});
    EXPECT_EQ (file(), juce::File (config).getChildFile ("Tarvik Plugins/Tarvik 41 Channel.settings"));
}

TEST_F (Settings, StoredDefaultsReachNewInstancesAndRefusedOnesDoNot)
{
    write ("Calibration", "30");
    write ("Oversampling", "3");
    write ("UIZoom", "1.51");
    write ("LimiterSensitivity", "-1");
    write ("MeterMode", "2");
    write ("Analog", "0");
    {
        const Tarvik41Processor strip;
        EXPECT_EQ (strip.calibrationSetting().getValue(), 18.0);
        EXPECT_EQ (strip.oversamplingSetting().getValue(), 2);
        EXPECT_EQ (strip.uiZoomSetting().getValue(), 1.2);
        EXPECT_EQ (strip.limiterSensitivitySetting().getValue(), 2);
        EXPECT_EQ (strip.meterModeSetting().getValue(), 0);
        EXPECT_FALSE (strip.analogSetting().getValue());
    }

    write ("Calibration", "24");
    write ("Oversampling", "1");
    const Tarvik41Processor strip;
    EXPECT_EQ (strip.calibrationSetting().getValue(), 24.0);
    EXPECT_EQ (strip.getLatencySamples(), 0);

    file().replaceWithText ("<?xml this is no settings file");
    EXPECT_EQ (Tarvik41Processor().calibrationSetting().getValue(), 18.0);
}

TEST_F (Settings, SavingADefaultLosesNothingThatAnotherInstanceSaved)
{
    Tarvik41Processor first;
    Tarvik41Processor second;
    EXPECT_TRUE (first.calibrationSetting().saveAsDefault (20.0));
    EXPECT_TRUE (second.oversamplingSetting().saveAsDefault (8));

    EXPECT_EQ (first.calibrationSetting().getValue(), 18.0) << "a default is for new instances";
    EXPECT_EQ (second.calibrationSetting().storedDefault(), 20.0);
    EXPECT_EQ (first.oversamplingSetting().storedDefault(), 8);
    EXPECT_EQ (Tarvik41Processor().oversamplingSetting().getValue(), 8);
}

TEST_F (Settings, CalibrationReachesBothSlotsAndNonsenseSoundsLikeTheDefault)
{
    Tarvik41Processor strip;
    strip.calibrationSetting().setValue (22.0);
    const auto gain = std::pow (10.0, 22.0 / 20.0) * std::sqrt (1.2);
    EXPECT_NEAR (strip.getSlot (0).calibration, gain, 1e-5);
    EXPECT_NEAR (strip.getSlot (1).calibration, gain, 1e-5);
    EXPECT_NEAR (strip.getCalibrationGain(), static_cast<float> (gain), 1e-5f);

    const auto infinity = std::numeric_limits<double>::infinity();
    const auto defaultGain = std::pow (10.0, 18.0 / 20.0) * std::sqrt (1.2);

    for (const auto bad : { std::numeric_limits<double>::quiet_NaN(), infinity, -infinity, -200.0, 4000.0 })
    {
        strip.calibrationSetting().setValue (22.0);
        strip.calibrationSetting().setValue (bad);
        EXPECT_NEAR (strip.getSlot (0).calibration, defaultGain, 1e-5) << bad;
        EXPECT_NEAR (strip.getCalibrationGain(), static_cast<float> (defaultGain), 1e-5f) << bad;
    }
}

TEST_F (Settings, BroadcastsReachEveryInstanceAndTheirTypesAreKept)
{
    Tarvik41Processor a;
    Tarvik41Processor b;
    auto& broadcaster = InstanceBroadcaster::get();
    broadcaster.broadcast ({ BroadcastMessage::calibration, 23 });
    broadcaster.broadcast ({ BroadcastMessage::oversampling, 4 });
    broadcaster.broadcast ({ BroadcastMessage::analog, 0 });
    broadcaster.broadcast ({ 4, 1 });
    broadcaster.broadcast ({ BroadcastMessage::limiterSensitivity, 0 });

    for (auto* const strip : { &a, &b })
    {
        EXPECT_EQ (strip->calibrationSetting().getValue(), 23.0);
        EXPECT_EQ (strip->oversamplingSetting().getValue(), 4);
        EXPECT_FALSE (strip->analogSetting().getValue());
        EXPECT_EQ (strip->uiZoomSetting().getValue(), 1.2) << "the zoom stays with its instance";
        EXPECT_EQ (strip->limiterSensitivitySetting().getValue(), 0);
        EXPECT_EQ (strip->currentSnapshot().limiterSensitivity, 0);
    }

    EXPECT_FALSE (file().existsAsFile()) << "telling all instances is not saving";

    // What an instance already has is no change.
    ProbeStrip probe;
    probe.prepareToPlay (48000.0, 256);
    broadcaster.broadcast ({ BroadcastMessage::oversampling, probe.oversamplingSetting().getValue() });
    probe.log.clear();
    broadcaster.broadcast ({ BroadcastMessage::oversampling, probe.oversamplingSetting().getValue() });
    broadcaster.broadcast ({ BroadcastMessage::analog, 1 });
    EXPECT_EQ (probe.log, std::vector<std::string>());
    broadcaster.broadcast ({ BroadcastMessage::analog, 0 });
    EXPECT_EQ (probe.log, std::vector<std::string> { "update" });
}

TEST_F (Settings, InstancesComeAndGoWhileOthersBroadcastAndHostsRebuild)
{
    std::atomic<bool> isRunning { true };
    const auto strip = makeStrip();
    std::thread host (
        [&]
        {
            while (isRunning)
            {
                strip->prepareToPlay (48000.0, 64);
                strip->releaseResources();
            }
        });
    std::thread maker (
        [&]
        {
            while (isRunning)
                Tarvik41Processor().handleBroadcast ({});
        });

    for (int i = 0; i < 200; ++i)
    {
        InstanceBroadcaster::get().broadcast ({ BroadcastMessage::oversampling, 1 << i % 3 });
        InstanceBroadcaster::get().broadcast ({ BroadcastMessage::limiterSensitivity, i % 3 });
    }

    isRunning = false;
    host.join();
    maker.join();
}

TEST_F (Settings, AnInstanceMayLeaveDuringABroadcast)
{
    struct Leaver : InstanceBroadcaster::Listener
    {
        void handleBroadcast (BroadcastMessage) override
        {
            ++calls;
            InstanceBroadcaster::get().removeListener (*other);
        }

        Leaver* other = nullptr;
        int calls = 0;
    };

    Leaver first, second;
    first.other = &second;
    second.other = &first;
    InstanceBroadcaster::get().addListener (first);
    InstanceBroadcaster::get().addListener (second);
    InstanceBroadcaster::get().broadcast ({});
    EXPECT_EQ (first.calls, 1);
    EXPECT_EQ (second.calls, 0);
    InstanceBroadcaster::get().removeListener (first);
}

TEST_F (Settings, RandomChannelsStayWithinWhatBothSidesCanTake)
{
    for (const auto& [width, isLinked, highest] : { std::tuple { 1, false, 32 }, { 2, false, 31 }, { 2, true, 32 } })
    {
        const auto strip = makeStrip (width);
        setPlain (*strip, "TolLink", isLinked ? 1.0f : 0.0f);
        int seenHighest = 0;
        int seenLowest = 100;

        for (int i = 0; i < 2000; ++i)
        {
            InstanceBroadcaster::get().broadcast ({ BroadcastMessage::randomChannel, 0 });
            const auto channel = juce::roundToInt (plainOf (*strip, "TolChannel"));
            seenHighest = std::max (seenHighest, channel);
            seenLowest = std::min (seenLowest, channel);
        }

        // 2000 draws miss one of 32 channels once in 10^27 runs.
        EXPECT_EQ (seenHighest, highest) << width << (isLinked ? " linked" : "");
        EXPECT_EQ (seenLowest, 1);
    }
}

} // namespace tarvik
