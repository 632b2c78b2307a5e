// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/KVLLNF.h"
#include "editor/PictureButtons.h"
#include "editor/Sites.h"
#include "plugin/LicenceCheck.h"

#include <functional>

namespace tarvik
{

/** The strip along the bottom of the window: logo, a line of status, and buttons to the web and to the manual. A button
    or menu item whose address is not configured is disabled. Message thread.
*/
class ZQBar final : public juce::Component, private juce::Timer, private juce::Button::Listener
{
public:
    /** What lies outside the window. */
    struct World
    {
        Sites sites = Sites::configured();
        juce::File applications = juce::File::getSpecialLocation (juce::File::globalApplicationsDirectory);

        /** Gives an address or a file's path to the program that the system has for it. */
        std::function<void (const juce::String&)> open = [] (const juce::String& what)
        { juce::Process::openDocument (what, {}); };
    };

    /** The look of the bar's menu. */
    struct LNF final : MenuLook
    {
    };

    ZQBar();
    explicit ZQBar (World worldOutside);
    ~ZQBar() override;

    juce::PopupMenu linksMenu();

    /** Does what an item of that menu says; 0 and unknown ids do nothing. */
    void linkChosen (int id);

    /** Asks for the status and shows it: what the timer does while the bar is visible. */
    void updateStatus();

    void visibilityChanged() override;
    void paint (juce::Graphics& g) override;
    void resized() override;

private:
    void timerCallback() override;
    void buttonClicked (juce::Button* button) override;

    void openManual();
    void openPage (const juce::String& address);

    const World world;
    LNF look;
    PictureButton logo { Picture::barLogoNormal, Picture::none, Picture::barLogoPressed };
    juce::Label status;
    PictureButton links { Picture::barLinksNormal, Picture::none, Picture::barLinksPressed };
    PictureButton licence { Picture::barLicenceNormal, Picture::none, Picture::barLicencePressed };
    PictureButton shop { Picture::barShopNormal, Picture::none, Picture::barShopPressed };
    LicenceCheck licenceCheck;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (ZQBar)
};

} // namespace tarvik
