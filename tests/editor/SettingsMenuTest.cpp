// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/SettingsMenu.h"

#include "editor/KVLLNF.h"
#include "tests/support/ConsoleTestTools.h"
#include "tests/support/Golden.h"
#include "tests/support/SettingsFileTest.h"

#include <limits>

namespace tarvik
{
namespace
{
using namespace test;
using Keys = juce::ModifierKeys;

/** The items that belong to a setting: consecutive ids for its values, then for sending it and for saving it. */
struct Group
{
    const char* key;
    int firstId;
    std::vector<double> values;
    int sendingId; ///< 0 for none.
    int savingId;
};

const Group groups[] = {
    { "Calibration", 2, { 16, 17, 18, 19, 20, 21, 22, 23, 24 }, 11, 12 },
    { "Oversampling", 13, { 1, 2, 4, 8, 16 }, 18, 19 },
    { "Analog", 20, { 1, 0 }, 22, 23 },
    { "LimiterSensitivity", 24, { 0, 1, 2 }, 27, 28 },
    { "UIZoom", 29, { 0.8f, 0.9f, 1.0f, 1.2f, 1.5f }, 0, 34 },
};

/** Two instances of one process. */
class SettingsMenu : public SettingsFileTest
{
protected:
    /** What the file holds for a key, or "none". */
    static juce::String stored (const juce::String& key)
    {
        return juce::PropertiesFile (settingsFileOptions()).getValue (key, "none");
    }

    static double get (const Tarvik41Processor& strip, const juce::String& key)
    {
        juce::XmlElement all ("SETTINGS");

        for (int i = 0; i < settingIndex::meterMode; ++i)
            strip.getSetting (i).saveToXml (all);

        return all.getDoubleAttribute (key);
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

    /** The keys of the settings in which the instances differ. */
    juce::String differing() const
    {
        juce::String keys;

        for (const auto& group : groups)
            keys << (get (a, group.key) != get (b, group.key) ? group.key : "");

        return keys;
    }

    /** One line for each row of the menu, sub-menus indented: "id text", with "*" before the text for a tick. */
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

TEST_F (SettingsMenu, RowsTicksAndDefaultsFollowTheValuesAndTheFile)
{
    auto all = "A new instance\n" + rows();
    set (a, 22.0, 1, false, 0, 0.8f);
    setPlain (a, "compExtSideChain", 1.0f);
    all << "All else\n" << rows();

    set (a, 24.0, 16, true, 1, 1.0);
    setPlain (a, { { "compExtSideChain", 0.0f }, { "expExtSideChain", 1.0f } });
    write ("Calibration", "24");
    write ("UIZoom", "0.9");
    all << "Another default\n" << rows();

    set (a, 17.5, 3, true, 3, 1.1);
    all << "Values that no item has\n" << rows();
    expectGolden ("menu.txt", all);
}

TEST_F (SettingsMenu, AnItemReachesThisInstanceWithShiftAllWithAltTheFile)
{
    for (const auto& group : groups)
        for (std::size_t i = 0; i < group.values.size(); ++i)
            for (const auto keys :
                 { 0, +Keys::shiftModifier, +Keys::altModifier, Keys::shiftModifier | Keys::altModifier })
            {
                const juce::String key (group.key);
                const auto id = group.firstId + static_cast<int> (i);
                const auto value = group.values[i];
                const auto isZoom = key == "UIZoom";
                SCOPED_TRACE (std::to_string (id) + " keys " + std::to_string (keys));

                // Nothing that the item could set.
                for (auto* const strip : { &a, &b })
                    set (*strip, value == 18.0 ? 19.0 : 18.0, value == 2.0 ? 4 : 2, value == 0.0, value == 1.0 ? 0 : 1,
                         isZoom && value == 1.0 ? 1.2 : 1.0);

                const auto before = get (b, key);

                for (const auto isAlreadySet : { false, true })
                {
                    file().deleteFile();
                    window = {};
                    choose (id, isAlreadySet ? keys : 0);
                    EXPECT_EQ (get (a, key), value);
                    EXPECT_EQ (window, isZoom ? "size " : "");
                }

                EXPECT_EQ (get (b, key), (keys & Keys::shiftModifier) != 0 && ! isZoom ? value : before);
                EXPECT_EQ (stored (key) != "none", (keys & Keys::altModifier) != 0);
                EXPECT_TRUE (stored (key) == "none" || stored (key).getFloatValue() == static_cast<float> (value));
            }
}

TEST_F (SettingsMenu, TheOtherItemsSendOrSaveWhatIsSetAndNothingElse)
{
    const juce::String all ("CalibrationOversamplingAnalogLimiterSensitivityUIZoom");
    set (a, 23.0, 4, false, 0, 0.9f);

    for (const auto& group : groups)
        if (group.sendingId != 0)
        {
            set (b, 18.0, 2, true, 2, 1.2);
            choose (group.sendingId, Keys::shiftModifier | Keys::altModifier);
            EXPECT_EQ (differing(), all.replace (group.key, ""));
            EXPECT_FALSE (file().existsAsFile()) << "telling all is not saving";
        }

    set (b, 18.0, 2, true, 2, 1.2);

    for (const auto& group : groups)
    {
        EXPECT_EQ (stored (group.key), "none");
        choose (group.savingId, Keys::shiftModifier);
        EXPECT_EQ (stored (group.key).getDoubleValue(), get (a, group.key));
    }

    // All five are in the file still: no saving took away what another had written.
    EXPECT_EQ (differing(), all);
    EXPECT_EQ (juce::PropertiesFile (settingsFileOptions()).getAllProperties().size(), 5);
    EXPECT_EQ (Tarvik41Processor().calibrationSetting().getValue(), 23.0);
    EXPECT_EQ (window, "");
}

TEST_F (SettingsMenu, OddValuesOfADamagedProjectAreSentAndSavedUnharmed)
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

    for (const auto& [id, heard] : { std::pair (35, "(26 v26 )26 "), { 35, "(26 )26 " }, { 36, "(34 v34 )34 " } })
    {
        choose (id, 0, shown); // also while the menu still shows what was
        EXPECT_EQ (ears.heard(), heard);
    }

    EXPECT_EQ (plainOf (a, "compExtSideChain"), 1.0f);
    choose (35);
    EXPECT_EQ (plainOf (a, "compExtSideChain"), 0.0f);

    for (const auto id : { 0, -1, 37 }) // dismissed, and nobody's
        choose (id, Keys::shiftModifier | Keys::altModifier);

    EXPECT_FALSE (file().existsAsFile());
}

TEST (MenuLook, ARowShowsItsStateAndAllOfItsText)
{
    KVLLNF look;
    const juce::String text ("Lim. Sensitivity (Normal)");
    const auto drawn = [&] (const juce::String& state, int width)
    {
        juce::Image image (juce::Image::ARGB, width, 24, true);
        juce::Graphics g (image);
        look.drawPopupMenuBackground (g, width, 24);
        look.drawPopupMenuItem (g, { width, 24 }, state == "separator", state != "inactive", state == "highlighted",
                                state == "ticked", state != "no sub-menu", text, {}, nullptr, nullptr);
        return image;
    };

    for (const auto* const state : { "separator", "inactive", "highlighted", "ticked", "no sub-menu" })
        EXPECT_GT (difference (drawn (state, 200), drawn ("", 200)), 0.003) << state;

    // No ellipsis: in the width that the menu gives it the row reads as in a wider one, but for the arrow at its right.
    int width = 0, height = 0;
    look.getIdealPopupMenuItemSize (text, false, 24, width, height);
    const juce::Rectangle leftPart (0, 0, width - 24, 24);
    EXPECT_EQ (
        difference (drawn ("", width).getClippedImage (leftPart), drawn ("", width + 60).getClippedImage (leftPart)),
        0.0);
}

} // namespace tarvik
