// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ConsoleTestTools.h"

namespace tarvik
{
namespace
{
using namespace test;

template <typename Control = juce::Button>
Control& childOf (juce::Component& parent, const juce::String& title)
{
    for (auto* const child : parent.getChildren())
        if (child->getTitle() == title)
            return dynamic_cast<Control&> (*child);

    throw std::runtime_error ("no such child");
}

void click (juce::Component& target)
{
    Mouse (target).click (target.getLocalBounds().getCentre().toFloat());
    runMessagesFor (5);
}

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
    BarUnderTest t ({ "", "https://maker.example" });
    EXPECT_EQ (t.menu(), "1 Open Manual...\n[2 Product Info...]\n[3 Download Updates...]\n[4 Nomvale Website...]\n"
                         "5 Tarvik Plugins Website...\n");
    EXPECT_FALSE (childOf (t.bar, "Nomvale Website").isEnabled() || childOf (t.bar, "Shop").isEnabled());
    EXPECT_FALSE (childOf (t.bar, "Licence").isVisible());

    for (int id = 2; id < 5; ++id)
        t.bar.linkChosen (id);

    EXPECT_EQ (t.opened, "");
    EXPECT_TRUE (BarUnderTest ({ "x", "" }).menu().endsWith ("[5 Tarvik Plugins Website...]\n"));
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
    const auto status = [&]
    {
        for (auto* const child : t.bar.getChildren())
            if (auto* const label = dynamic_cast<juce::Label*> (child))
                return label->getText();

        return juce::String();
    };
    runMessagesFor (700);
    EXPECT_EQ (status(), "(loading)") << "not shown yet";
    t.bar.setVisible (true);
    t.bar.setVisible (false);
    runMessagesFor (700);
    EXPECT_EQ (status(), "(loading)") << "hidden";
    t.bar.setVisible (true);

    for (int i = 0; i < 50 && status() != ""; ++i) // a busy machine's timers come late
        runMessagesFor (200);

    EXPECT_EQ (status(), "");
}

TEST (BottomBar, ControlsKeepTheirPlacesAtEveryWidth)
{
    BarUnderTest t ({ "x", "x" });
    t.bar.setSize (901, 24);
    EXPECT_EQ (childOf (t.bar, "Nomvale Website").getBounds(), juce::Rectangle (0, 0, 120, 24));
    EXPECT_EQ (childOf (t.bar, "Shop").getBounds(), juce::Rectangle (829, 0, 24, 24));
    EXPECT_EQ (childOf (t.bar, "Licence").getBounds(), juce::Rectangle (853, 0, 24, 24));
    EXPECT_EQ (childOf (t.bar, "Manual and links").getBounds(), juce::Rectangle (877, 0, 24, 24));
    EXPECT_EQ (snapshotOf (t.bar).getPixelAt (300, 12), juce::Colours::black);
}

TEST (About, SaysWhichBuildThisIsAndGoesAtAClick)
{
    About about ({ "", "" });
    about.setVisible (true);
    const auto date = juce::Time::getCompilationDate().formatted ("%F");
    juce::StringArray texts;

    for (auto* const child : about.getChildren())
    {
        EXPECT_TRUE (about.getLocalBounds().contains (child->getBounds()));

        if (auto* const label = dynamic_cast<juce::Label*> (child))
        {
            texts.add (label->getText());
            const auto firstLine = label->getText().upToFirstOccurrenceOf ("\n", false, false);
            EXPECT_LE (label->getFont().getStringWidthFloat (firstLine), static_cast<float> (label->getWidth() - 10))
                << label->getText();
        }
        else
        {
            EXPECT_FALSE (child->isEnabled()) << "a link to nowhere";
        }
    }

    EXPECT_TRUE (texts.contains ("Tarvik 41 Channel 1.0.0 (build " + date + ")"));
    EXPECT_TRUE (texts.contains ("Programming\nGraphics\nCircuit modeling"));
    EXPECT_TRUE (texts.contains ("Concept\nTest, Tuning"));

    const auto picture = snapshotOf (about);
    EXPECT_EQ (picture.getPixelAt (0, 0).getAlpha(), 0) << "a round corner";
    EXPECT_EQ (picture.getPixelAt (150, 5).getAlpha(), 0xe8);

    // Neither the letters nor a link to nowhere are a hole in the panel; a link to somewhere is for itself.
    for (auto* const child : about.getChildren())
        EXPECT_EQ (about.getComponentAt (child->getBounds().getCentre()), &about);

    About linked ({ "", "https://maker.example" });
    linked.setVisible (true);
    auto* const link = linked.getChildren().getLast();
    EXPECT_EQ (linked.getComponentAt (link->getBounds().getCentre()), link);

    const auto centre = about.getLocalBounds().getCentre();
    Mouse (about).press (centre.toFloat());
    EXPECT_TRUE (about.isVisible());
    Mouse (about).release (centre.toFloat());
    EXPECT_FALSE (about.isVisible());
}

TEST (Editor, MenuBarAndAboutHaveTheirPlacesAndThePresetBoxIsNeverShown)
{
    auto strip = makeStrip (2);
    strip->uiZoomSetting().setValue (1.0);
    KVLEditor editor (*strip);
    editor.setVisible (true);
    EXPECT_EQ (childOf (editor, "Menu").getBounds(), juce::Rectangle (876, 0, 24, 24));
    EXPECT_EQ (childOf (editor, "Menu").getTooltip(), "Menu");
    EXPECT_EQ (childOf<ZQBar> (editor, "Bottom bar").getBounds(), juce::Rectangle (0, 717, 900, 24));
    auto& about = childOf<About> (editor, "About");
    EXPECT_EQ (about.getBounds(), juce::Rectangle (300, 220, 300, 300));
    EXPECT_FALSE (about.isVisible());

    for (auto* const child : editor.getChildren())
    {
        if (auto* const box = dynamic_cast<juce::ComboBox*> (child))
        {
            EXPECT_FALSE (box->isVisible());
            EXPECT_EQ (box->getItemText (0) + box->getName(), "Defaultnew combo box");
            EXPECT_EQ (box->getBounds(), juce::Rectangle (720, 0, 156, 24));
        }
    }
}

} // namespace tarvik
