// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/SettingsMenu.h"

#include "editor/SetInGesture.h"
#include "plugin/ParameterRows.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <span>
#include <variant>

namespace tarvik::settingsMenu
{

namespace
{
using Text = juce::String;

struct Option
{
    double value;
    const char* text;
};

constexpr Option calibrations[] = { { 16, "-12 dBFS" }, { 17, "-13 dBFS" }, { 18, "-14 dBFS" },
                                    { 19, "-15 dBFS" }, { 20, "-16 dBFS" }, { 21, "-17 dBFS" },
                                    { 22, "-18 dBFS" }, { 23, "-19 dBFS" }, { 24, "-20 dBFS" } };
constexpr Option oversamplings[] = { { 1, "Off" }, { 2, "2x" }, { 4, "4x" }, { 8, "8x" }, { 16, "16x" } };
constexpr Option noises[] = { { 1, "On" }, { 0, "Off" } };
constexpr Option sensitivities[] = { { 0, "Normal" }, { 1, "Mid" }, { 2, "Low" } };

// Projects hold these values as floats widened to double.
constexpr Option zooms[] = {
    { 0.8f, "80 %" }, { 0.9f, "90 %" }, { 1.0f, "100 %" }, { 1.2f, "120 %" }, { 1.5f, "150 %" }
};

/** A number as text, a whole one without a point. */
Text numberText (double value)
{
    constexpr double largestWhole = 1e9;
    const auto isWhole = std::abs (value) < largestWhole && std::trunc (value) == value;
    return isWhole ? Text (static_cast<int> (value)) : Text (value);
}

Text textOf (std::span<const Option> options, double value, const char* otherwise)
{
    const auto option =
        std::find_if (options.begin(), options.end(), [value] (const auto& o) { return o.value == value; });
    return option == options.end() ? otherwise : option->text;
}

Text calibrationHeading (double value)
{
    constexpr double lineLevelDbu = 4.0; // the setting is how far 0 dBu lies below full scale
    return "Calibration (+4 dBu at -" + numberText (value - lineLevelDbu) + "dBFS)";
}

Text oversamplingHeading (double value)
{
    return "Oversampling (" + (value == 1.0 ? Text ("Off") : numberText (value) + "x") + ")";
}

Text noiseHeading (double value) { return "Noise (" + textOf (noises, value, "") + ")"; }

Text sensitivityHeading (double value) { return "Lim. Sensitivity (" + textOf (sensitivities, value, "unknown") + ")"; }

Text zoomHeading (double value)
{
    constexpr double wholePerCent = 100.0;
    constexpr double steps = 100.0; // a float times 100 is only nearly whole
    return "UI Zoom (" + numberText (std::round (value * wholePerCent * steps) / steps) + " %)";
}

using AnySetting = std::variant<ProcessorSetting<double>*, ProcessorSetting<int>*, ProcessorSetting<bool>*>;

using Strip = const Tarvik41Processor&;

/** One sub-menu, in the menu's order. Its items have consecutive ids: the options, "Set in all instances" where there
    is a message for it, and "Save as default".
*/
struct SubMenu
{
    std::span<const Option> options;
    Text (*heading) (double value);
    AnySetting (*settingOf) (Strip);
    std::optional<BroadcastMessage::Type> message;

    constexpr int numOptions() const { return static_cast<int> (options.size()); }

    constexpr int numItems() const { return numOptions() + (message ? 2 : 1); }
};

constexpr std::array<SubMenu, numSubMenus> subMenus { {
    { calibrations, calibrationHeading, [] (Strip p) -> AnySetting { return &p.calibrationSetting(); },
      BroadcastMessage::calibration },
    { oversamplings, oversamplingHeading, [] (Strip p) -> AnySetting { return &p.oversamplingSetting(); },
      BroadcastMessage::oversampling },
    { noises, noiseHeading, [] (Strip p) -> AnySetting { return &p.analogSetting(); }, BroadcastMessage::analog },
    { sensitivities, sensitivityHeading, [] (Strip p) -> AnySetting { return &p.limiterSensitivitySetting(); },
      BroadcastMessage::limiterSensitivity },
    { zooms, zoomHeading, [] (Strip p) -> AnySetting { return &p.uiZoomSetting(); }, std::nullopt },
} };

constexpr auto zoomMenu = subMenus.size() - 1;

enum : int
{
    aboutId = 1,
    firstSubMenuId,
    compressorKeyId = 35,
    expanderKeyId
};

double valueOf (const AnySetting& setting)
{
    return std::visit ([] (auto* s) { return static_cast<double> (s->getValue()); }, setting);
}

double defaultOf (const AnySetting& setting)
{
    return std::visit ([] (auto* s) { return static_cast<double> (s->storedDefault()); }, setting);
}

void setValue (const AnySetting& setting, double value)
{
    std::visit ([value] (auto* s) { s->setValue (static_cast<decltype (s->getValue())> (value)); }, setting);
}

void saveDefault (const AnySetting& setting, double value)
{
    std::visit ([value] (auto* s) { s->saveAsDefault (static_cast<decltype (s->getValue())> (value)); }, setting);
}

/** Whether the menu shows two values as the same: the zoom of an old project may be 1.2 or the float next to it. */
bool isSame (double a, double b) { return static_cast<float> (a) == static_cast<float> (b); }

void setInAll (const SubMenu& menu, double value)
{
    constexpr double largest = 1e6; // a damaged project may hold anything, and only whole numbers travel

    if (menu.message && std::isfinite (value))
        InstanceBroadcaster::get().broadcast (
            { *menu.message, static_cast<std::int32_t> (std::clamp (value, -largest, largest)) });
}

juce::PopupMenu buildSubMenu (const SubMenu& menu, int id, Strip processor, double current)
{
    const auto stored = defaultOf (menu.settingOf (processor));
    juce::PopupMenu items;

    for (const auto& option : menu.options)
        items.addItem (id++, Text (option.text) + (isSame (option.value, stored) ? " (default)" : ""), true,
                       isSame (option.value, current));

    items.addSeparator();

    if (menu.message)
        items.addItem (id++, "Set in all instances");

    items.addItem (id, "Save as default");
    return items;
}

/** Does what the item at a place of a sub-menu says. */
void applyToSetting (const SubMenu& menu, int place, juce::ModifierKeys modifiers, double captured, Strip processor)
{
    const auto setting = menu.settingOf (processor);
    const auto isOption = place < menu.numOptions();
    const auto isSaving = place == menu.numItems() - 1;
    const auto value = isOption ? menu.options[static_cast<std::size_t> (place)].value : captured;

    if (isOption)
        setValue (setting, value);

    if (isOption ? modifiers.isShiftDown() : ! isSaving)
        setInAll (menu, value);

    if (isOption ? modifiers.isAltDown() : isSaving)
        saveDefault (setting, value);
}

/** The two switches that have no control on the panel. */
constexpr int compressorKeyParameter = parameterNamed ("compExtSideChain");
constexpr int expanderKeyParameter = parameterNamed ("expExtSideChain");
} // namespace

Captured capture (const Tarvik41Processor& processor)
{
    Captured captured;
    std::transform (subMenus.begin(), subMenus.end(), captured.values.begin(),
                    [&] (const auto& menu) { return valueOf (menu.settingOf (processor)); });

    const auto& snapshot = processor.currentSnapshot();
    captured.isCompressorKeyExternal = snapshot.compExtSideChain;
    captured.isExpanderKeyExternal = snapshot.expExtSideChain;
    return captured;
}

juce::PopupMenu build (const Tarvik41Processor& processor, const Captured& captured)
{
    juce::PopupMenu menu;
    menu.addItem (aboutId, "About...");
    menu.addSeparator();
    auto id = static_cast<int> (firstSubMenuId);

    for (std::size_t i = 0; i < subMenus.size(); ++i)
    {
        if (i == zoomMenu)
            menu.addSeparator();

        const auto value = captured.values[i];
        menu.addSubMenu (subMenus[i].heading (value), buildSubMenu (subMenus[i], id, processor, value));
        id += subMenus[i].numItems();
    }

    menu.addSeparator();
    menu.addItem (compressorKeyId, "Comp. External S C", true, captured.isCompressorKeyExternal);
    menu.addItem (expanderKeyId, "Exp. External S C", true, captured.isExpanderKeyExternal);
    return menu;
}

void apply (int id, juce::ModifierKeys modifiers, const Captured& captured, Tarvik41Processor& processor,
            const WindowActions& actions)
{
    const auto setSwitch = [&processor] (int index, bool isOn) {
        setInGesture (dynamic_cast<juce::RangedAudioParameter&> (*processor.getParameters()[index]),
                      isOn ? 1.0f : 0.0f);
    };

    if (id == aboutId)
        actions.showAbout();
    else if (id == compressorKeyId)
        setSwitch (compressorKeyParameter, ! captured.isCompressorKeyExternal);
    else if (id == expanderKeyId)
        setSwitch (expanderKeyParameter, ! captured.isExpanderKeyExternal);

    auto place = id - firstSubMenuId;

    for (std::size_t i = 0; i < subMenus.size(); ++i)
    {
        if (place >= 0 && place < subMenus[i].numItems())
            applyToSetting (subMenus[i], place, modifiers, captured.values[i], processor);

        if (i == zoomMenu && place >= 0 && place < subMenus[i].numOptions())
            actions.updateSize();

        place -= subMenus[i].numItems();
    }
}

} // namespace tarvik::settingsMenu
