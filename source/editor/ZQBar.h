// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/KVLLNF.h"
#include "editor/PictureButtons.h"
#include "editor/Sites.h"
#include "plugin/LicenceCheck.h"

#include <functional>
#include <vector>

namespace tarvik
{

/** The strip along the bottom of the window: logo, a line of status, and buttons to the web and to the manual. A button
    or menu item whose address is not configured, or whose file is not there, is disabled. Message thread.
*/
class ZQBar final : public juce::Component, private juce::Timer, private juce::Button::Listener
{
public:
    /** Where the installations put the manual: a package, and `cmake --install` under the prefix of the module or in a
        home folder.
    */
    static std::vector<juce::File> manualPlaces (const juce::File& module, const juce::File& home);

    /** What the bar needs of the system. */
    struct World
    {
        Sites sites = Sites::configured();
        std::vector<juce::File> manuals = manualPlaces (
            juce::File::getSpecialLocation (juce::File::currentExecutableFile),
            juce::File::getSpecialLocation (juce::File::userHomeDirectory)); ///< The first that exists is opened.

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

    /** Shows the current status; the timer calls it while the bar is visible. */
    void updateStatus();

    void visibilityChanged() override;
    void paint (juce::Graphics& g) override;
    void resized() override;

private:
    void timerCallback() override;
    void buttonClicked (juce::Button* button) override;

    juce::File findManual() const;
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
