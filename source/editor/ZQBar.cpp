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

// Where the manual is below the system's folder for applications, and below a prefix.
constexpr const char* packagePath = "Nomvale/Tarvik 41 Series/Tarvik 41 Series Manual.pdf";
constexpr const char* prefixPath = "share/doc/tarvik41-channel/Tarvik 41 Series Manual.pdf";

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

/** The system's folder for programs. On Windows the registry names it. */
juce::File applicationsFolder()
{
#if JUCE_WINDOWS
    constexpr const char* key = "HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\";
    constexpr std::size_t mostBytes = 1023;

    for (const auto* const name : { "ProgramW6432Dir", "ProgramFilesDir" })
        if (const auto folder = juce::WindowsRegistry::getValue (juce::String (key) + name);
            juce::File::isAbsolutePath (folder) && folder.getNumBytesAsUTF8() <= mostBytes)
            return folder;
#endif
    return juce::File::getSpecialLocation (juce::File::globalApplicationsDirectory);
}
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
    logo.setEnabled (hasFamilySite); // a logo as well as a button: looks the same disabled
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
    menu.setLookAndFeel (&look); // a menu does not inherit the bar's
    menu.addItem (openManualId, "Open Manual...", findManual() != juce::File());

    for (const auto& link : pageLinks)
        menu.addItem (link.id, link.text, link.address (world.sites).isNotEmpty());

    return menu;
}

void ZQBar::linkChosen (int id)
{
    if (const auto manual = findManual(); id == openManualId && manual != juce::File())
        world.open (manual.getFullPathName());

    for (const auto& link : pageLinks)
        if (id == link.id)
            openPage (link.address (world.sites));
}

std::vector<juce::File> ZQBar::manualPlaces (const juce::File& module, const juce::File& home)
{
    std::vector places { applicationsFolder().getChildFile (packagePath) };

    // The prefix is some folders above the module, by the format's own.
    for (auto folder = module.getParentDirectory(); ! folder.isRoot(); folder = folder.getParentDirectory())
        places.push_back (folder.getChildFile (prefixPath));

    places.push_back (home.getChildFile (".local").getChildFile (prefixPath));
    return places;
}

juce::File ZQBar::findManual() const
{
    const auto found = std::find_if (world.manuals.begin(), world.manuals.end(),
                                     [] (const auto& file) { return file.existsAsFile(); });
    return found != world.manuals.end() ? *found : juce::File();
}

void ZQBar::openPage (const juce::String& address)
{
    if (address.isNotEmpty())
        world.open (address);
}

} // namespace tarvik
