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
        : bar ({ sites, manuals(), [this] (const juce::String& what) { opened << what << " "; } })
    {
    }

    ~BarUnderTest() { folder.getFile().deleteRecursively(); }

    /** All but the package's, which this machine may have. */
    std::vector<juce::File> manuals() const
    {
        auto all = ZQBar::manualPlaces (folder.getFile().getChildFile ("lib/vst3/a.vst3/a.so"), folder.getFile());
        all.erase (all.begin());
        return all;
    }

    juce::TemporaryFile folder { juce::File::getSpecialLocation (juce::File::tempDirectory) };
    juce::String opened;
    ZQBar bar;
};
} // namespace

TEST (BottomBar, ButtonsAndLinksOpenTheirPagesIfTheyHaveOne)
{
    BarUnderTest t ({ "https://family.example/", "https://maker.example" }), without ({ "", "" });
    EXPECT_EQ (rowsOf (t.bar.linksMenu()), "1 Open Manual... (disabled)\n2 Product Info...\n3 Download Updates...\n"
                                           "4 Nomvale Website...\n5 Tarvik Plugins Website...\n");
    EXPECT_EQ (rowsOf (without.bar.linksMenu()),
               "1 Open Manual... (disabled)\n2 Product Info... (disabled)\n3 Download Updates... (disabled)\n"
               "4 Nomvale Website... (disabled)\n5 Tarvik Plugins Website... (disabled)\n");
    EXPECT_FALSE (childOf (without.bar, "Nomvale Website").isEnabled() || childOf (without.bar, "Shop").isEnabled());

    for (int id = -1; id < 7; ++id)
        for (auto* const bar : { &t.bar, &without.bar })
            bar->linkChosen (id);

    click (childOf (t.bar, "Nomvale Website"));
    click (childOf (t.bar, "Shop"));
    EXPECT_EQ (without.opened, "");
    EXPECT_EQ (t.opened, "https://family.example/plugins/tarvik_41_series "
                         "https://family.example/downloads/tarvik_41_series "
                         "https://family.example/ https://maker.example "
                         "https://family.example/ https://family.example/buy/tarvik_41_series ");

    // As a home's installation leaves it, and then as another prefix has it.
    for (const auto* const place : { ".local/share/doc", "share/doc" })
    {
        const auto manual =
            t.folder.getFile().getChildFile (place).getChildFile ("tarvik41-channel/Tarvik 41 Series Manual.pdf");
        ASSERT_TRUE (manual.create());
        t.opened = {};
        t.bar.linkChosen (1);
        EXPECT_EQ (t.opened, manual.getFullPathName() + " ");
    }

    EXPECT_TRUE (rowsOf (t.bar.linksMenu()).startsWith ("1 Open Manual...\n"));
    EXPECT_EQ (ZQBar::World().manuals[0], juce::File::getSpecialLocation (juce::File::globalApplicationsDirectory)
                                              .getChildFile ("Nomvale/Tarvik 41 Series/Tarvik 41 Series Manual.pdf"));
}

TEST (BottomBar, StatusLeavesLoadingAtItsFirstTickOnceShown)
{
    BarUnderTest t ({});
    runMessagesFor (700);
    EXPECT_EQ (labelTexts (t.bar)[0], "(loading)");
    t.bar.setVisible (true);

    for (int i = 0; i < 50 && labelTexts (t.bar)[0] != ""; ++i) // a busy machine's timers come late
        runMessagesFor (200);

    EXPECT_EQ (labelTexts (t.bar)[0], "");
}

TEST (About, SaysWhichBuildThisIsAndGoesAtAClick)
{
    About about ({ "", "" }), linked ({ "", "https://maker.example" });
    about.setVisible (true);
    linked.setVisible (true);
    const auto* const link = linked.getChildren().getLast();
    EXPECT_EQ (linked.getComponentAt (link->getBounds().getCentre()), link);
    EXPECT_TRUE (labelTexts (about).contains ("Tarvik 41 Channel 1.0.0 (build "
                                              + juce::Time::getCompilationDate().formatted ("%Y-%m-%d") + ")"));

    for (auto* const child : about.getChildren())
        EXPECT_EQ (about.getComponentAt (child->getBounds().getCentre()), &about) << "no letters are a hole in it";

    click (about);
    EXPECT_FALSE (about.isVisible());
}

} // namespace tarvik
