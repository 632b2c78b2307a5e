// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/SettingsMenu.h"

#include "editor/KVLLNF.h"
#include "tests/support/ConsoleTestTools.h"
#include "tests/support/Golden.h"
#include "tests/support/SettingsFileTest.h"
#include "tests/support/StateTestTools.h"

namespace tarvik
{
namespace
{
using namespace test;
using Keys = juce::ModifierKeys;

/** Two instances of one process. */
class SettingsMenu : public SettingsFileTest
{
protected:
    /** What an instance's settings are, each as " key=value". */
    static juce::StringArray settingsOf (Tarvik41Processor& strip)
    {
        const auto all = savedXml (strip);
        juce::StringArray texts;

        for (int i = 0; i < all->getNumAttributes(); ++i)
            texts.add (" " + all->getAttributeName (i) + "=" + all->getAttributeValue (i));

        return texts;
    }

    static juce::String changes (const juce::StringArray& before, juce::StringArray after)
    {
        for (const auto& text : before)
            after.removeString (text);

        return after.joinIntoString ({});
    }

    static juce::StringArray inFile()
    {
        juce::StringArray texts;
        juce::PropertiesFile properties (settingsFileOptions());

        for (const auto& key : properties.getAllProperties().getAllKeys())
            texts.add (" " + key + "=" + properties.getValue (key));

        return texts;
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

    juce::String rows() const { return rowsOf (settingsMenu::build (a, settingsMenu::capture (a))); }

    void choose (int id, int keys = 0) { choose (id, keys, settingsMenu::capture (a)); }

    void choose (int id, int keys, const settingsMenu::Captured& shown)
    {
        settingsMenu::apply (id, Keys (keys), shown, a,
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
    HostEars ears (a);
    juce::String all;

    for (const auto& [keys, name] :
         { std::pair (0, ""), { +Keys::shiftModifier, " Shift" }, { +Keys::altModifier, " Alt" } })
        for (int id = -1; id <= 37; ++id)
        {
            file().deleteFile();
            set (a, 23.0, 4, false, 0, 0.9f); // each is one of its items, too
            set (b, 17.0, 16, true, 1, 1.5f);
            const auto here = settingsOf (a), there = settingsOf (b);
            window = {};
            ears.heard();
            choose (id, keys);
            all << id << name << ":" << changes (here, settingsOf (a)) << ", all:" << changes (there, settingsOf (b))
                << ", file:" << inFile().joinIntoString ({}) << ", window: " << window << ears.heard() << "\n";
        }

    expectGolden ("menu-actions.txt", all);
}

TEST_F (SettingsMenu, SavingOneDefaultKeepsTheOthers)
{
    set (a, 23.0, 4, false, 0, 0.9f);

    for (const auto id : { 12, 19, 23, 28, 34 })
        choose (id);

    Tarvik41Processor fresh;
    EXPECT_EQ (inFile().size(), 5);
    EXPECT_EQ (settingsOf (fresh), settingsOf (a));
}

TEST_F (SettingsMenu, SideChainsBecomeTheOppositeOfWhatTheMenuShowed)
{
    const auto shown = settingsMenu::capture (a);
    choose (35, 0, shown);
    choose (35, 0, shown);
    EXPECT_EQ (plainOf (a, "compExtSideChain"), 1.0f);
}

TEST (MenuLook, ARowShowsItsState)
{
    KVLLNF look;
    const auto drawn = [&] (const juce::String& state)
    {
        juce::Image image (juce::Image::ARGB, 200, 24, true);
        juce::Graphics g (image);
        look.drawPopupMenuItem (g, { 200, 24 }, state == "separator", state != "inactive", state == "highlighted",
                                state == "ticked", state != "no sub-menu", "Oversampling", {}, nullptr, nullptr);
        return image;
    };

    for (const auto* const state : { "separator", "inactive", "highlighted", "ticked", "no sub-menu" })
        EXPECT_GT (difference (drawn (state), drawn ("")), 0.003) << state;

    const auto text = firstInkIn (drawn (""));
    const auto gap = drawn ("ticked").getClippedImage ({ text - 4, 0, 4, 24 });
    EXPECT_EQ (firstInkIn (gap), 4) << "the tick keeps off the text";
    EXPECT_LT (firstInkIn (drawn ("ticked")), text - 4);
}

} // namespace tarvik
