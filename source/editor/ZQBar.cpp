// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ZQBar.h"

#include "editor/EditorSize.h"
#include "editor/Palette.h"

namespace tarvik
{

namespace
{
constexpr int initialWidth = 600;
constexpr int buttonSize = editorSize::stripHeight;
constexpr int logoWidth = 120, statusWidth = 150;
constexpr int statusPeriodMs = 500;

/** Where the package puts the manual, below the system's folder for applications. */
constexpr const char* manualPath = "Nomvale/Tarvik 41 Series/Tarvik 41 Series Manual.pdf";

constexpr int openManualId = 1;

struct PageLink
{
    int id;
    const char* text;
    juce::String (*address) (const Sites&);
};

constexpr PageLink pageLinks[] = {
    { 2, "Product Info...", [] (const Sites& s) { return s.productPage ("plugins"); } },
    { 3, "Download Updates...", [] (const Sites& s) { return s.productPage ("downloads"); } },
    { 4, "Nomvale Website...", [] (const Sites& s) { return s.family; } },
    { 5, "Tarvik Plugins Website...", [] (const Sites& s) { return s.maker; } },
};
} // namespace

ZQBar::ZQBar() : ZQBar (World()) {}

ZQBar::ZQBar (World worldOutside) : world (std::move (worldOutside))
{
    constexpr float fontHeight = 10.0f, disabledAlpha = 0.35f;

    setTitle ("Bottom bar");
    setOpaque (true);
    setLookAndFeel (&look);

    const std::tuple<PictureButton&, const char*> buttons[] {
        { logo, "Nomvale Website" }, { links, "Manual and links" }, { licence, "Licence" }, { shop, "Shop" }
    };

    for (const auto& [button, tooltip] : buttons)
    {
        button.setWords ({ tooltip });
        button.addListener (this);
        addAndMakeVisible (button);
    }

    const auto hasFamilySite = world.sites.family.isNotEmpty();
    logo.setEnabled (hasFamilySite); // a mark as well as a button: looks the same either way
    shop.setEnabled (hasFamilySite);
    shop.setAlpha (hasFamilySite ? 1.0f : disabledAlpha);
    licence.setVisible (licenceCheck.hasPage());

    status.setText ("(loading)", juce::dontSendNotification);
    status.setFont (juce::Font (fontHeight));
    status.setJustificationType (juce::Justification::centred);
    status.setColour (juce::Label::textColourId, juce::Colour (palette::statusPrint));
    addAndMakeVisible (status);

    setSize (initialWidth, editorSize::stripHeight);
}

ZQBar::~ZQBar() { setLookAndFeel (nullptr); }

void ZQBar::visibilityChanged()
{
    if (isVisible())
        startTimer (statusPeriodMs);
    else
        stopTimer();
}

void ZQBar::paint (juce::Graphics& g) { g.fillAll (juce::Colours::black); }

void ZQBar::resized()
{
    logo.setBounds (0, 0, logoWidth, buttonSize);
    status.setBounds (juce::roundToInt (0.5f * static_cast<float> (getWidth())) - statusWidth / 2, 0, statusWidth,
                      buttonSize);
    auto x = getWidth();

    for (auto* const button : { &links, &licence, &shop })
        button->setBounds (x -= buttonSize, 0, buttonSize, buttonSize);
}

void ZQBar::timerCallback() { updateStatus(); }

void ZQBar::updateStatus() { status.setText (licenceCheck.statusText(), juce::dontSendNotification); }

//==============================================================================
void ZQBar::buttonClicked (juce::Button* button)
{
    if (button == &logo)
        openPage (world.sites.family);
    else if (button == &shop)
        openPage (world.sites.productPage ("buy"));
    else if (button == &links)
        linksMenu().showMenuAsync (
            juce::PopupMenu::Options().withTargetComponent (links).withParentComponent (getTopLevelComponent()),
            [bar = juce::Component::SafePointer (this)] (int id)
            {
                if (bar != nullptr)
                    bar->linkChosen (id);
            });
}

juce::PopupMenu ZQBar::linksMenu()
{
    juce::PopupMenu menu;
    menu.setLookAndFeel (&look); // it would not take the bar's
    menu.addItem (openManualId, "Open Manual...");

    for (const auto& link : pageLinks)
        menu.addItem (link.id, link.text, link.address (world.sites).isNotEmpty());

    return menu;
}

void ZQBar::linkChosen (int id)
{
    if (id == openManualId)
        openManual();

    for (const auto& link : pageLinks)
        if (id == link.id)
            openPage (link.address (world.sites));
}

void ZQBar::openManual()
{
    if (const auto manual = world.applications.getChildFile (manualPath); manual.existsAsFile())
        world.open (manual.getFullPathName());
}

void ZQBar::openPage (const juce::String& address)
{
    if (address.isNotEmpty())
        world.open (address);
}

} // namespace tarvik
