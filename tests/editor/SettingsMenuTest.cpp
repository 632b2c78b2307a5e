// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/SettingsMenu.h"

#include "plugin/SettingsFile.h"
#include "tests/support/ConsoleTestTools.h"

#include <limits>
#include <map>

namespace tarvik
{
namespace
{
using namespace test;
using Keys = juce::ModifierKeys;

/** Two instances of one process, and no settings file before or after. */
class SettingsMenu : public testing::Test
{
protected:
    SettingsMenu() { file().deleteFile(); }

    ~SettingsMenu() override { file().deleteFile(); }

    static juce::File file() { return settingsFileOptions().getDefaultFile(); }

    /** What the file holds for a key, or "none". */
    static juce::String stored (const juce::String& key)
    {
        return juce::PropertiesFile (settingsFileOptions()).getValue (key, "none");
    }

    static void write (const juce::String& key, const juce::String& value)
    {
        juce::PropertiesFile properties (settingsFileOptions());
        properties.setValue (key, value);
        ASSERT_TRUE (properties.save());
    }

    static double get (const Tarvik41Processor& strip, const juce::String& key)
    {
        return key == "Calibration"    ? strip.calibrationSetting().getValue()
               : key == "Oversampling" ? strip.oversamplingSetting().getValue()
               : key == "Analog"       ? static_cast<double> (strip.analogSetting().getValue())
               : key == "UIZoom"       ? strip.uiZoomSetting().getValue()
                                       : strip.limiterSensitivitySetting().getValue();
    }

    static void set (const Tarvik41Processor& strip, double calibration, int oversampling, bool noise, int sensitivity,
                     double zoom)
    {
        strip.calibrationSetting().setValue (calibration);
        strip.oversamplingSetting().setValue (oversampling);
        strip.analogSetting().setValue (noise);
        strip.limiterSensitivitySetting().setValue (sensitivity);
        strip.uiZoomSetting().setValue (zoom);
    }

    /** One line for each row of the menu, sub-menus indented: "id text", with "*" in front of the text for a tick. */
    static juce::String rows (const juce::PopupMenu& menu, const juce::String& indent = {})
    {
        juce::String text;

        for (juce::PopupMenu::MenuItemIterator i (menu); i.next();)
        {
            const auto& item = i.getItem();
            text << indent << (item.isSeparator ? "--" : juce::String (item.itemID) + (item.isTicked ? " *" : " "))
                 << item.text << (item.isEnabled || item.isSeparator ? "\n" : " (disabled)\n");

            if (item.subMenu != nullptr)
                text << rows (*item.subMenu, indent + "  ");
        }

        return text;
    }

    juce::String rows() const { return rows (settingsMenu::build (a, settingsMenu::capture (a))); }

    void choose (int id, int keys = 0) { choose (id, keys, settingsMenu::capture (a)); }

    void choose (int id, int keys, const settingsMenu::Captured& captured)
    {
        settingsMenu::apply (id, Keys (keys), captured, a,
                             { [this] { window << "about "; }, [this] { window << "size "; } });
    }

    Tarvik41Processor a, b;
    juce::String window; ///< What the window was asked to do.
};
} // namespace

TEST_F (SettingsMenu, EveryRowOfANewInstance)
{
    EXPECT_EQ (rows(), "1 About...\n"
                       "--\n"
                       "0 Calibration (+4 dBu at -14dBFS)\n"
                       "  2 -12 dBFS\n"
                       "  3 -13 dBFS\n"
                       "  4 *-14 dBFS (default)\n"
                       "  5 -15 dBFS\n"
                       "  6 -16 dBFS\n"
                       "  7 -17 dBFS\n"
                       "  8 -18 dBFS\n"
                       "  9 -19 dBFS\n"
                       "  10 -20 dBFS\n"
                       "  --\n"
                       "  11 Set in all instances\n"
                       "  12 Save as default\n"
                       "0 Oversampling (2x)\n"
                       "  13 Off\n"
                       "  14 *2x (default)\n"
                       "  15 4x\n"
                       "  16 8x\n"
                       "  17 16x\n"
                       "  --\n"
                       "  18 Set in all instances\n"
                       "  19 Save as default\n"
                       "0 Noise (On)\n"
                       "  20 *On (default)\n"
                       "  21 Off\n"
                       "  --\n"
                       "  22 Set in all instances\n"
                       "  23 Save as default\n"
                       "0 Lim. Sensitivity (Low)\n"
                       "  24 Normal\n"
                       "  25 Mid\n"
                       "  26 *Low (default)\n"
                       "  --\n"
                       "  27 Set in all instances\n"
                       "  28 Save as default\n"
                       "--\n"
                       "0 UI Zoom (120 %)\n"
                       "  29 80 %\n"
                       "  30 90 %\n"
                       "  31 100 %\n"
                       "  32 *120 % (default)\n"
                       "  33 150 %\n"
                       "  --\n"
                       "  34 Save as default\n"
                       "--\n"
                       "35 Comp. External S C\n"
                       "36 Exp. External S C\n");
}

TEST_F (SettingsMenu, HeadingsTicksAndDefaultsFollowTheValuesAndTheFile)
{
    const auto shows = [this] (std::initializer_list<const char*> wanted)
    {
        const auto text = "\n" + rows();

        for (const auto* const row : wanted)
            EXPECT_TRUE (text.contains ("\n" + juce::String (row) + "\n")) << row << text;
    };
    const auto numTicks = [this] { return rows().retainCharacters ("*").length(); };

    set (a, 22.0, 1, false, 0, 0.8f);
    setPlain (a, "compExtSideChain", 1.0f);
    shows ({ "0 Calibration (+4 dBu at -18dBFS)", "  8 *-18 dBFS", "  4 -14 dBFS (default)", "0 Oversampling (Off)",
             "  13 *Off", "0 Noise (Off)", "  21 *Off", "  20 On (default)", "0 Lim. Sensitivity (Normal)",
             "0 UI Zoom (80 %)", "  29 *80 %", "35 *Comp. External S C", "36 Exp. External S C" });
    EXPECT_EQ (numTicks(), 6);

    set (a, 24.0, 16, true, 1, 1.0);
    setPlain (a, "compExtSideChain", 0.0f);
    setPlain (a, "expExtSideChain", 1.0f);
    write ("Calibration", "24");
    write ("UIZoom", "0.9");
    shows ({ "  10 *-20 dBFS (default)", "  4 -14 dBFS", "0 Oversampling (16x)", "  17 *16x",
             "0 Lim. Sensitivity (Mid)", "  25 *Mid", "  30 90 % (default)", "  31 *100 %", "36 *Exp. External S C" });

    // Values that no item has.
    set (a, 17.5, 3, true, 3, 1.1);
    setPlain (a, "expExtSideChain", 0.0f);
    shows ({ "0 Calibration (+4 dBu at -13.5dBFS)", "0 Oversampling (3x)", "0 Lim. Sensitivity (unknown)",
             "0 UI Zoom (110 %)" });
    EXPECT_EQ (numTicks(), 1) << "the noise";
}

TEST_F (SettingsMenu, AnItemReachesThisInstanceWithShiftAllAndWithAltTheFile)
{
    struct Choice
    {
        int id;
        const char* key;
        double value;
    };

    constexpr Choice choices[] = {
        { 2, "Calibration", 16 },
        { 3, "Calibration", 17 },
        { 5, "Calibration", 19 },
        { 6, "Calibration", 20 },
        { 7, "Calibration", 21 },
        { 8, "Calibration", 22 },
        { 9, "Calibration", 23 },
        { 10, "Calibration", 24 },
        { 13, "Oversampling", 1 },
        { 15, "Oversampling", 4 },
        { 16, "Oversampling", 8 },
        { 17, "Oversampling", 16 },
        { 20, "Analog", 1 },
        { 21, "Analog", 0 },
        { 24, "LimiterSensitivity", 0 },
        { 25, "LimiterSensitivity", 1 },
        { 26, "LimiterSensitivity", 2 },
        { 29, "UIZoom", 0.8f },
        { 30, "UIZoom", 0.9f },
        { 32, "UIZoom", 1.2f },
        { 33, "UIZoom", 1.5f },
    };

    for (const auto& [id, key, value] : choices)
    {
        const auto wanted = static_cast<float> (value); // in the file 1.2f is 1.20000004768372
        const auto isZoom = juce::String (key) == "UIZoom";

        for (const auto keys : { 0, +Keys::shiftModifier, +Keys::altModifier, Keys::shiftModifier | Keys::altModifier })
        {
            for (const auto isPresent : { false, true })
            {
                SCOPED_TRACE (std::to_string (id) + " keys " + std::to_string (keys));
                file().deleteFile();
                window = {};

                // Nothing that the item could set, but for noise, which has but two values.
                set (a, 18.0, 2, value == 0.0, value == 1.0 ? 0 : 1, 1.0);
                set (b, 18.0, 2, value == 0.0, value == 1.0 ? 0 : 1, 1.0);
                const auto before = get (b, key);

                if (isPresent)
                    choose (id);

                window = {};
                choose (id, keys);
                EXPECT_EQ (get (a, key), value);
                EXPECT_EQ (get (b, key), (keys & Keys::shiftModifier) != 0 && ! isZoom ? value : before);
                const auto text = stored (key);
                EXPECT_EQ (text != "none", (keys & Keys::altModifier) != 0);
                EXPECT_EQ (text == "none" ? wanted : text.getFloatValue(), wanted);
                EXPECT_EQ (window, isZoom ? "size " : "");
            }
        }
    }
}

TEST_F (SettingsMenu, TheOtherItemsSendOrSaveWhatIsSetAndNothingElse)
{
    const std::map<int, const char*> sending {
        { 11, "Calibration" }, { 18, "Oversampling" }, { 22, "Analog" }, { 27, "LimiterSensitivity" }
    };
    const std::map<int, const char*> saving {
        { 12, "Calibration" }, { 19, "Oversampling" }, { 23, "Analog" }, { 28, "LimiterSensitivity" }, { 34, "UIZoom" }
    };
    set (a, 23.0, 4, false, 0, 0.9f);
    const auto differing = [&]
    {
        juce::String keys;

        for (const auto& [id, key] : saving)
            keys << (get (a, key) != get (b, key) ? key : "");

        return keys;
    };

    for (const auto keys : { 0, Keys::shiftModifier | Keys::altModifier })
    {
        for (const auto& [id, key] : sending)
        {
            set (b, 18.0, 2, true, 2, 1.2);
            choose (id, keys);
            EXPECT_EQ (differing(),
                       juce::String ("CalibrationOversamplingAnalogLimiterSensitivityUIZoom").replace (key, ""));
        }

        EXPECT_FALSE (file().existsAsFile()) << "telling all is not saving";
    }

    set (b, 18.0, 2, true, 2, 1.2);

    for (const auto& [id, key] : saving)
    {
        EXPECT_EQ (stored (key), "none");
        choose (id, Keys::shiftModifier);
        EXPECT_EQ (stored (key).getDoubleValue(), get (a, key));
    }

    EXPECT_EQ (differing(), "CalibrationOversamplingAnalogLimiterSensitivityUIZoom");

    // All five are in the file still: no saving took away what another had written.
    EXPECT_EQ (juce::PropertiesFile (settingsFileOptions()).getAllProperties().size(), 5);
    EXPECT_EQ (Tarvik41Processor().calibrationSetting().getValue(), 23.0);
    EXPECT_EQ (window, "");
}

TEST_F (SettingsMenu, OddValuesOfADamagedProjectCanBeSentAndSavedUnharmed)
{
    a.calibrationSetting().setValue (17.5);
    choose (12);
    EXPECT_EQ (stored ("Calibration"), "17.5");
    choose (11);
    EXPECT_EQ (b.calibrationSetting().getValue(), 17.0) << "only whole numbers travel";

    for (const auto value : { std::numeric_limits<double>::quiet_NaN(), 1e300 })
    {
        set (a, value, 2, true, 2, value);
        EXPECT_TRUE (rows().contains ("UI Zoom ("));
        choose (11);
        EXPECT_TRUE (std::isfinite (b.calibrationSetting().getValue()));
    }
}

TEST_F (SettingsMenu, SideChainsBecomeTheOppositeOfWhatTheMenuShowed)
{
    HostEars ears (a);
    const auto shown = settingsMenu::capture (a);
    choose (35, 0, shown);
    EXPECT_EQ (ears.heard(), "(26 v26 )26 ");
    EXPECT_EQ (plainOf (a, "compExtSideChain"), 1.0f);
    choose (35, 0, shown);
    EXPECT_EQ (plainOf (a, "compExtSideChain"), 1.0f) << "the menu still showed off";
    ears.heard();
    choose (36);
    EXPECT_EQ (ears.heard(), "(34 v34 )34 ");
    choose (36);
    EXPECT_EQ (plainOf (a, "expExtSideChain"), 0.0f);
}

TEST_F (SettingsMenu, DismissedItDoesNothingAndAboutAsksTheWindow)
{
    const auto before = rows();

    for (const auto id : { 0, -1, 37 })
        choose (id, Keys::shiftModifier | Keys::altModifier);

    EXPECT_EQ (window, "");
    EXPECT_EQ (rows(), before);
    EXPECT_FALSE (file().existsAsFile());
    choose (1);
    EXPECT_EQ (window, "about ");
}

} // namespace tarvik
