// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ConsoleTestTools.h"

namespace tarvik
{
namespace
{
using namespace test;

/** A bar whose clicks open nothing on this machine. */
struct BarUnderTest
{
    explicit BarUnderTest (const Sites& sites)
        : bar ({ sites, folder.getFile(), [this] (const juce::String& what) { opened << what << " "; } })
    {
    }

    ~BarUnderTest() { folder.getFile().deleteRecursively(); }

    /** The menu's rows, disabled ones in brackets. */
    juce::String menu()
    {
        juce::String text;
        const auto links = bar.linksMenu();

        for (juce::PopupMenu::MenuItemIterator i (links); i.next();)
        {
            const auto row = juce::String (i.getItem().itemID) + " " + i.getItem().text;
            text << (i.getItem().isEnabled ? row : "[" + row + "]") << "\n";
        }

        return text;
    }

    juce::TemporaryFile folder { juce::File::getSpecialLocation (juce::File::tempDirectory) };
    juce::String opened;
    ZQBar bar;
};
} // namespace

TEST (BottomBar, ButtonsAndLinksOpenTheirPages)
{
    BarUnderTest t ({ "https://family.example/", "https://maker.example" });
    EXPECT_EQ (t.menu(), "1 Open Manual...\n2 Product Info...\n3 Download Updates...\n4 Nomvale Website...\n"
                         "5 Tarvik Plugins Website...\n");

    for (int id = -1; id < 7; ++id)
        t.bar.linkChosen (id);

    click (childOf (t.bar, "Nomvale Website"));
    click (childOf (t.bar, "Shop"));
    EXPECT_EQ (t.opened, "https://family.example/plugins/tarvik_41_series "
                         "https://family.example/downloads/tarvik_41_series "
                         "https://family.example/ https://maker.example "
                         "https://family.example/ https://family.example/buy/tarvik_41_series ");
}

TEST (BottomBar, WithoutAnAddressNothingOpensAndItShows)
{
    BarUnderTest t ({ "", "" });
    EXPECT_EQ (t.menu(), "1 Open Manual...\n[2 Product Info...]\n[3 Download Updates...]\n[4 Nomvale Website...]\n"
                         "[5 Tarvik Plugins Website...]\n");
    EXPECT_FALSE (childOf (t.bar, "Nomvale Website").isEnabled() || childOf (t.bar, "Shop").isEnabled());

    for (int id = 2; id < 6; ++id)
        t.bar.linkChosen (id);

    EXPECT_EQ (t.opened, "");
}

TEST (BottomBar, TheManualOpensIfItIsInstalled)
{
    BarUnderTest t ({});
    t.bar.linkChosen (1);
    EXPECT_EQ (t.opened, "");

    const auto manual = t.folder.getFile().getChildFile ("Nomvale/Tarvik 41 Series/Tarvik 41 Series Manual.pdf");
    ASSERT_TRUE (manual.create());
    t.bar.linkChosen (1);
    EXPECT_EQ (t.opened, manual.getFullPathName() + " ");
    EXPECT_EQ (ZQBar::World().applications, juce::File ("/usr"));
}

TEST (BottomBar, StatusLeavesLoadingAtItsFirstTickOnceShown)
{
    BarUnderTest t ({});
    t.bar.setVisible (true);
    t.bar.setVisible (false);
    runMessagesFor (700);
    EXPECT_EQ (labelTexts (t.bar)[0], "(loading)") << "hidden";
    t.bar.setVisible (true);

    for (int i = 0; i < 50 && labelTexts (t.bar)[0] != ""; ++i) // a busy machine's timers come late
        runMessagesFor (200);

    EXPECT_EQ (labelTexts (t.bar)[0], "");
}

TEST (About, SaysWhichBuildThisIsAndGoesAtAClick)
{
    About about ({ "", "" });
    about.setVisible (true);
    EXPECT_TRUE (labelTexts (about).contains ("Tarvik 41 Channel 1.0.0 (build "
                                              + juce::Time::getCompilationDate().formatted ("%F") + ")"));

    for (auto* const child : about.getChildren())
    {
        EXPECT_TRUE (about.getLocalBounds().contains (child->getBounds()));
        EXPECT_EQ (about.getComponentAt (child->getBounds().getCentre()), &about) << "no letters are a hole in it";
    }

    EXPECT_EQ (snapshotOf (about).getPixelAt (0, 0).getAlpha(), 0) << "a round corner";

    // A link to somewhere is for itself.
    About linked ({ "", "https://maker.example" });
    linked.setVisible (true);
    auto* const link = linked.getChildren().getLast();
    EXPECT_EQ (linked.getComponentAt (link->getBounds().getCentre()), link);

    Mouse (about).press ({ 150, 150 });
    EXPECT_TRUE (about.isVisible());
    Mouse (about).release ({ 150, 150 });
    EXPECT_FALSE (about.isVisible());
}

} // namespace tarvik
