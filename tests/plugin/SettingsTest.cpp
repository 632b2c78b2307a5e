// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/BareStrip.h"
#include "tests/support/ConsoleTestTools.h"
#include "tests/support/SettingsFileTest.h"
#include "tests/support/StateTestTools.h"

#include <atomic>
#include <chrono>
#include <future>
#include <set>
#include <thread>

namespace tarvik
{

using namespace test;

using Settings = SettingsFileTest;

TEST_F (Settings, StoredDefaultsReachNewInstancesAndRefusedOnesDoNot)
{
    const auto config = juce::SystemStats::getEnvironmentVariable ("XDG_CONFIG_HOME", {});
    EXPECT_EQ (file(), juce::File (config).getChildFile ("Tarvik Plugins/Tarvik 41 Channel.settings"));

    for (const auto& [key, value] : { std::pair ("Calibration", "25"),
                                      { "Oversampling", "3" },
                                      { "UIZoom", "1.51" },
                                      { "LimiterSensitivity", "-1" },
                                      { "MeterMode", "2" },
                                      { "Analog", "0" } })
        write (key, value);

    EXPECT_EQ (settingsOf (Tarvik41Processor()), "18 2 0 1.2 2 0");

    write ("Calibration", "24");
    write ("Oversampling", "1");
    EXPECT_EQ (Tarvik41Processor().calibrationSetting().getValue(), 24.0);
    EXPECT_EQ (Tarvik41Processor().getLatencySamples(), 0);

    file().replaceWithText ("<?xml this is not a settings file");
    EXPECT_EQ (Tarvik41Processor().calibrationSetting().getValue(), 18.0);
}

TEST_F (Settings, AProjectBringsItsOwnAndTakesDefaultsForMissingOnes)
{
    // What stands in a project is not asked whether it makes sense.
    Tarvik41Processor strip;
    load (strip, blockOfText ("<Tarvik41Channel Calibration='30.5' Oversampling='3' Analog='0' UIZoom='0.9' "
                              "LimiterSensitivity='1' MeterMode='7'/>"));
    EXPECT_EQ (settingsOf (strip), "30.5 3 0 0.9 1 7");
    EXPECT_EQ (strip.currentSnapshot().limiterSensitivity.get(), 1);
    const auto xml = savedXml (strip);
    EXPECT_EQ (xml->getStringAttribute ("Calibration") + xml->getStringAttribute ("MeterMode"), "30.57");

    write ("Calibration", "20");
    write ("MeterMode", "1");
    load (strip, blockOfText ("<Tarvik41Channel/>"));
    EXPECT_EQ (settingsOf (strip), "20 2 1 1.2 2 1");
}

TEST_F (Settings, AStatesZoomAndAMeterModeUnknownToTheWindow)
{
    WindowUnderTest t;
    const auto width = t.editor->getWidth();
    std::thread ([&] { load (*t.strip, blockOfText ("<Tarvik41Channel UIZoom='0.8' MeterMode='7'/>")); }).join();
    runMessagesFor (300);
    EXPECT_LT (t.editor->getWidth(), width);

    const auto before = snapshotOf (t.console());
    ParameterSnapshot loud;
    loud.inputMeter = loud.outputMeter = 1.0f;
    t.console().updateMeters (loud);
    EXPECT_EQ (difference (snapshotOf (t.console()), before), 0.0) << "the VU meter stands";
}

TEST_F (Settings, CalibrationReachesBothSlotsAndNonsenseLeavesTheGain)
{
    Tarvik41Processor strip;
    auto gain = 0.0f;

    for (const auto db : { 22.0, std::nan (""), -99.0, HUGE_VAL, 700.0, 800.0, 18.0, -100.0 })
    {
        if (std::abs (db) < 99.5 || db == 700.0)
            gain = static_cast<float> (std::pow (10.0, db / 20.0) * std::sqrt (1.2));

        strip.calibrationSetting().setValue (db);
        EXPECT_FLOAT_EQ (strip.getCalibrationGain(), gain) << db;

        for (const auto slot : { 0, 1 })
            EXPECT_FLOAT_EQ (static_cast<float> (strip.getSlot (slot).calibration), gain) << db;
    }
}

TEST_F (Settings, AnyCalibrationLeavesTheAudioFiniteAndNoTrace)
{
    const auto strip = makeNoiselessStrip();
    setPlain (*strip, { { "gain", 12.0f }, { "thd", 6.0f }, { "lowFreq", 2.0f }, { "lowGain", 1.0f } });
    strip->prepareToPlay (48000.0, 256);
    std::vector<double> levels;

    for (const auto db : { 18.0, -99.9, 100.0, 300.0, 700.0, 769.0, 18.0 })
    {
        strip->calibrationSetting().setValue (db);
        const auto input = noise (48000, 1, db == 18.0 ? 0.03f : 100.0f);
        levels.push_back (rmsOfEnd (process (*strip, { input, input }, 256)[0], 24000));
        EXPECT_TRUE (std::isfinite (levels.back())) << db;
    }

    EXPECT_NEAR (levels.back() / levels.front(), 1.0, 0.05);
}

TEST_F (Settings, BroadcastsReachEveryInstanceAndTheirTypesAreKept)
{
    const Tarvik41Processor a, b;
    auto& broadcaster = InstanceBroadcaster::get();
    broadcaster.broadcast ({ BroadcastMessage::calibration, 23 });
    broadcaster.broadcast ({ BroadcastMessage::oversampling, 4 });
    broadcaster.broadcast ({ BroadcastMessage::analog, 0 });
    broadcaster.broadcast ({ 4, 1 });
    broadcaster.broadcast ({ BroadcastMessage::limiterSensitivity, 0 });

    for (const auto* const strip : { &a, &b })
    {
        EXPECT_EQ (settingsOf (*strip), "23 4 0 1.2 0 0");
        EXPECT_EQ (strip->currentSnapshot().limiterSensitivity, 0);
    }

    EXPECT_FALSE (file().existsAsFile()) << "telling all instances is not saving";

    // A host may delete an instance while another one hears of a change.
    struct Remover final : InstanceBroadcaster::Listener
    {
        void handleBroadcast (BroadcastMessage) override
        {
            InstanceBroadcaster::get().removeListener (*next);
            ++calls;
        }

        Listener* next = nullptr;
        int calls = 0;
    } first, second;

    first.next = second.next = &second;
    broadcaster.addListener (first);
    broadcaster.addListener (second);
    broadcaster.broadcast ({ 4, 1 });
    broadcaster.removeListener (first);
    EXPECT_EQ (first.calls, 1);
    EXPECT_EQ (second.calls, 0);

    // What an instance already has is not a change.
    BareStrip strip;
    strip.prepareToPlay (48000.0, 256);
    strip.takeLog();
    broadcaster.broadcast ({ BroadcastMessage::oversampling, 2 });
    broadcaster.broadcast ({ BroadcastMessage::analog, 0 });
    EXPECT_EQ (strip.takeLog(), std::vector<std::string>());
    broadcaster.broadcast ({ BroadcastMessage::analog, 1 });
    EXPECT_EQ (strip.takeLog(), std::vector<std::string> { "update" });
    broadcaster.broadcast ({ BroadcastMessage::limiterSensitivity, 1 });
    EXPECT_EQ (strip.takeLog(), std::vector<std::string> { "update" });
}

TEST_F (Settings, InstancesComeAndGoWhileOthersBroadcastAndHostsRebuild)
{
    const auto strip = makeStrip();
    const std::jthread host (
        [&] (const std::stop_token& stop)
        {
            while (! stop.stop_requested())
            {
                strip->prepareToPlay (48000.0, 64);
                strip->releaseResources();
            }
        });
    const std::jthread maker (
        [] (const std::stop_token& stop)
        {
            while (! stop.stop_requested())
                Tarvik41Processor().handleBroadcast ({});
        });

    for (int i = 0; i < 200; ++i)
    {
        InstanceBroadcaster::get().broadcast ({ BroadcastMessage::oversampling, 1 << i % 3 });
        InstanceBroadcaster::get().broadcast ({ BroadcastMessage::limiterSensitivity, i % 3 });
    }
}

/** Some hosts answer a change of the latency by restarting the plug-in on another thread, and wait for it. */
TEST_F (Settings, AHostMayRestartTheStripWhileItHearsOfItsLatency)
{
    const auto strip = makeStrip();
    strip->prepareToPlay (48000.0, 64);
    std::vector<std::future<void>> restarts; // a stuck one is waited for once its way is free
    HostEars host (*strip);
    auto isStuck = false;
    host.onChange = [&]
    {
        restarts.push_back (std::async (std::launch::async, [&] { strip->prepareToPlay (96000.0, 64); }));
        isStuck = isStuck || restarts.back().wait_for (std::chrono::seconds (5)) != std::future_status::ready;
    };
    strip->oversamplingSetting().setValue (1);
    host.onChange = [] {};
    EXPECT_FALSE (restarts.empty());
    EXPECT_FALSE (isStuck);
}

TEST_F (Settings, TwoThreadsThatChangeTheFactorLeaveTheLastOnesLatency)
{
    const auto strip = makeBareStrip();
    strip->prepareToPlay (48000.0, 64);

    for (int run = 0; run < 300; ++run)
    {
        strip->oversamplingSetting().setValue (2);
        const auto change = [&] (int factor) { strip->oversamplingSetting().setValue (factor); };
        std::atomic<int> numReady { 0 };
        {
            const auto meet = [&]
            {
                for (++numReady; numReady < 2;)
                    std::this_thread::yield();
            };
            const std::jthread first ([&] { meet(), change (1); });
            meet(), change (4);
        }
        const auto latency = strip->oversamplingSetting().getValue() == 1 ? 0 : 52;
        ASSERT_EQ (strip->getLatencySamples(), latency) << "run " << run;
        ASSERT_EQ (delayOfImpulse (*strip, 64), latency) << "run " << run;
    }
}

TEST_F (Settings, RandomChannelsStayWithinWhatBothSidesCanTake)
{
    for (const auto& [width, isLinked, highest] :
         { std::tuple { 1, false, 32.0f }, { 2, false, 31.0f }, { 2, true, 32.0f } })
    {
        const auto strip = makeStrip (width);
        setPlain (*strip, "TolLink", isLinked ? 1.0f : 0.0f);
        std::set<float> seen;

        for (int i = 0; i < 2000; ++i)
        {
            InstanceBroadcaster::get().broadcast ({ BroadcastMessage::randomChannel, 0 });
            seen.insert (plainOf (*strip, "TolChannel"));
        }

        // 2000 draws miss one of 32 channels once in 10^27 runs.
        EXPECT_EQ (*seen.rbegin(), highest) << width << (isLinked ? " linked" : "");
        EXPECT_EQ (*seen.begin(), 1.0f);
    }
}

} // namespace tarvik
