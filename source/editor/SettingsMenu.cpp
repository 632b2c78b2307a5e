// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/SettingsMenu.h"

#include "editor/ConsoleLayout.h"

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

/** A number as a person writes it: a whole one without a point. */
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
    constexpr double headroomDb = 4.0; // the console's level above which digital full scale is counted
    return "Calibration (+4 dBu at -" + numberText (value - headroomDb) + "dBFS)";
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

/** One sub-menu, in the menu's order. Its items have consecutive ids: the options, "Set in all instances" where there
    is a message for it, and "Save as default".
*/
struct SubMenu
{
    int firstId;
    std::span<const Option> options;
    Text (*heading) (double value);
    AnySetting (*settingOf) (const Tarvik41Processor&);
    std::optional<BroadcastMessage::Type> message;

    constexpr int idAfterOptions() const { return firstId + static_cast<int> (options.size()); }

    constexpr int setInAllId() const { return message ? idAfterOptions() : 0; }

    constexpr int saveId() const { return idAfterOptions() + (message ? 1 : 0); }
};

using Strip = const Tarvik41Processor&;

constexpr std::array<SubMenu, numSubMenus> subMenus { {
    { 2, calibrations, calibrationHeading, [] (Strip p) -> AnySetting { return &p.calibrationSetting(); },
      BroadcastMessage::calibration },
    { 13, oversamplings, oversamplingHeading, [] (Strip p) -> AnySetting { return &p.oversamplingSetting(); },
      BroadcastMessage::oversampling },
    { 20, noises, noiseHeading, [] (Strip p) -> AnySetting { return &p.analogSetting(); }, BroadcastMessage::analog },
    { 24, sensitivities, sensitivityHeading, [] (Strip p) -> AnySetting { return &p.limiterSensitivitySetting(); },
      BroadcastMessage::limiterSensitivity },
    { 29, zooms, zoomHeading, [] (Strip p) -> AnySetting { return &p.uiZoomSetting(); }, std::nullopt },
} };

enum : int
{
    aboutId = 1,
    compressorKeyId = 35,
    expanderKeyId = 36
};

static_assert (
    []
    {
        auto id = aboutId + 1;

        for (const auto& menu : subMenus)
            id = menu.firstId == id ? menu.saveId() + 1 : -1;

        return id == compressorKeyId;
    }(),
    "every id once, without gaps");

constexpr auto zoomMenu = subMenus.size() - 1;

double valueOf (const AnySetting& setting)
{
    return std::visit ([] (auto* s) { return static_cast<double> (s->getValue()); }, setting);
}

double defaultOf (const AnySetting& setting)
{
    return std::visit ([] (auto* s) { return static_cast<double> (s->storedDefault()); }, setting);
}

template <typename T>
T convert (const ProcessorSetting<T>*, double value)
{
    return static_cast<T> (value);
}

void setValue (const AnySetting& setting, double value)
{
    std::visit ([value] (auto* s) { s->setValue (convert (s, value)); }, setting);
}

void saveDefault (const AnySetting& setting, double value)
{
    std::visit ([value] (auto* s) { s->saveAsDefault (convert (s, value)); }, setting);
}

/** Two values that the menu shows as the same: the zoom of an old project may be 1.2 or the float next to it. */
bool isSame (double a, double b) { return static_cast<float> (a) == static_cast<float> (b); }

void setInAll (const SubMenu& menu, double value)
{
    constexpr double largest = 1e6; // a damaged project may hold anything, and only whole numbers travel

    if (menu.message && std::isfinite (value))
        InstanceBroadcaster::get().broadcast (
            { *menu.message, static_cast<std::int32_t> (std::clamp (value, -largest, largest)) });
}

juce::PopupMenu buildSubMenu (const SubMenu& menu, const Tarvik41Processor& processor, double present)
{
    const auto stored = defaultOf (menu.settingOf (processor));
    juce::PopupMenu items;
    auto id = menu.firstId;

    for (const auto& option : menu.options)
        items.addItem (id++, Text (option.text) + (isSame (option.value, stored) ? " (default)" : ""), true,
                       isSame (option.value, present));

    items.addSeparator();

    if (menu.message)
        items.addItem (menu.setInAllId(), "Set in all instances");

    items.addItem (menu.saveId(), "Save as default");
    return items;
}

void applyToSetting (const SubMenu& menu, int id, juce::ModifierKeys modifiers, double captured,
                     const Tarvik41Processor& processor)
{
    const auto setting = menu.settingOf (processor);
    const auto isOption = id < menu.idAfterOptions();
    const auto value = isOption ? menu.options[static_cast<std::size_t> (id - menu.firstId)].value : captured;

    if (isOption)
        setValue (setting, value);

    if (id == menu.setInAllId() || (isOption && modifiers.isShiftDown()))
        setInAll (menu, value);

    if (id == menu.saveId() || (isOption && modifiers.isAltDown()))
        saveDefault (setting, value);
}

/** The two switches that have no control on the panel. */
constexpr int compressorKeyParameter = consoleLayout::parameter ("compExtSideChain");
constexpr int expanderKeyParameter = consoleLayout::parameter ("expExtSideChain");

void setInGesture (juce::AudioProcessor& processor, int index, bool isOn)
{
    auto& parameter = *processor.getParameters()[index];
    parameter.beginChangeGesture();
    parameter.setValueNotifyingHost (isOn ? 1.0f : 0.0f);
    parameter.endChangeGesture();
}
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

    for (std::size_t i = 0; i < subMenus.size(); ++i)
    {
        if (i == zoomMenu)
            menu.addSeparator();

        const auto value = captured.values[i];
        menu.addSubMenu (subMenus[i].heading (value), buildSubMenu (subMenus[i], processor, value));
    }

    menu.addSeparator();
    menu.addItem (compressorKeyId, "Comp. External S C", true, captured.isCompressorKeyExternal);
    menu.addItem (expanderKeyId, "Exp. External S C", true, captured.isExpanderKeyExternal);
    return menu;
}

void apply (int id, juce::ModifierKeys modifiers, const Captured& captured, Tarvik41Processor& processor,
            const WindowActions& actions)
{
    if (id == aboutId)
        actions.showAbout();
    else if (id == compressorKeyId)
        setInGesture (processor, compressorKeyParameter, ! captured.isCompressorKeyExternal);
    else if (id == expanderKeyId)
        setInGesture (processor, expanderKeyParameter, ! captured.isExpanderKeyExternal);

    for (std::size_t i = 0; i < subMenus.size(); ++i)
    {
        const auto& menu = subMenus[i];

        if (id < menu.firstId || id > menu.saveId())
            continue;

        applyToSetting (menu, id, modifiers, captured.values[i], processor);

        if (i == zoomMenu && id < menu.idAfterOptions())
            actions.updateSize();
    }
}

} // namespace tarvik::settingsMenu
