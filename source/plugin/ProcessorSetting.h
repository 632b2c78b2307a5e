// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/UpdateGate.h"
#include "strip/RelaxedValue.h"

#include <juce_data_structures/juce_data_structures.h>

#include <cmath>
#include <functional>
#include <limits>
#include <type_traits>

namespace tarvik
{

/** A choice that is not automated: its value belongs to one instance and travels in the project, its default lives in
    the user's settings file.
*/
class AbstractProcessorSetting
{
public:
    virtual ~AbstractProcessorSetting() = default;

    virtual void loadFromXml (const juce::XmlElement& xml) = 0;
    virtual void saveToXml (juce::XmlElement& xml) const = 0;
};

/** A setting of type int, double or bool. Its value may be read from any thread; everything else belongs to the message
    thread or to the host's state thread. `setValue` and projects bring any value: whoever uses it bounds it.
*/
template <typename T>
class ProcessorSetting final : public AbstractProcessorSetting
{
public:
    static_assert (std::is_same_v<T, int> || std::is_same_v<T, double> || std::is_same_v<T, bool>);

    using Validator = std::function<bool (const T&)>;
    using ChangeAction = std::function<void (const T&)>;

    /** Starts at the fallback and then takes the stored default, with the change action if it differs.

        The key is the name in the settings file and the attribute in the state. `acceptsStored` refuses a stored default;
        an empty one accepts everything. `changeAction`, which may be empty, runs after a change of the value, on its
        thread. If several threads change it at once, one of them acts for all, and last on the newest value.
    */
    ProcessorSetting (juce::ApplicationProperties& file, juce::String settingKey, T fallbackValue,
                      Validator acceptsStored, ChangeAction changeAction)
        : properties (file), key (std::move (settingKey)), fallback (fallbackValue),
          validator (std::move (acceptsStored)), onChange (std::move (changeAction)), value (fallbackValue),
          acted (fallbackValue)
    {
        setValue (storedDefault());
    }

    T getValue() const noexcept { return value; }

    void setValue (T newValue)
    {
        if (newValue == value.get())
            return;

        value = newValue;
        const auto act = [this]
        {
            const T newest = value;

            if (onChange && newest != acted)
                onChange (acted = newest);
        };
        actionGate.request (act);

        while (actionGate.catchUp (act))
        {
        }
    }

    /** The user's default as the file holds it now, whichever instance wrote it; else, or if refused, the fallback. */
    T storedDefault() const
    {
        auto& file = reloadedFile();
        T stored = fallback;

        if constexpr (std::is_same_v<T, int>)
            stored = file.getIntValue (key, fallback);
        else if constexpr (std::is_same_v<T, double>)
            stored = file.getDoubleValue (key, fallback);
        else
            stored = file.getBoolValue (key, fallback);

        return ! validator || validator (stored) ? stored : fallback;
    }

    /** Writes a default for new instances at once; the value of this one stays. False if the file cannot be written. */
    bool saveAsDefault (T newDefault)
    {
        reloadedFile().setValue (key, newDefault);
        return properties.saveIfNeeded();
    }

    void loadFromXml (const juce::XmlElement& xml) override
    {
        setValue (xml.hasAttribute (key) ? read (xml) : storedDefault());
    }

    void saveToXml (juce::XmlElement& xml) const override
    {
        if constexpr (std::is_same_v<T, bool>)
            xml.setAttribute (key, static_cast<int> (value.get()));
        else
            xml.setAttribute (key, value.get());
    }

private:
    T read (const juce::XmlElement& xml) const
    {
        if constexpr (std::is_same_v<T, int>)
            return wholePart (xml.getDoubleAttribute (key));
        else if constexpr (std::is_same_v<T, double>)
            return xml.getDoubleAttribute (key);
        else
            return xml.getBoolAttribute (key);
    }

    /** The nearest int to the whole part; 0 for what is not a number. */
    static int wholePart (double number)
    {
        constexpr double lowest = std::numeric_limits<int>::min(), highest = std::numeric_limits<int>::max();
        return std::isnan (number) ? 0 : static_cast<int> (juce::jlimit (lowest, highest, number));
    }

    /** Each instance keeps a copy of the file, and would overwrite what another has saved unless it reads it again. */
    juce::PropertiesFile& reloadedFile() const
    {
        auto* const file = properties.getUserSettings();
        jassert (file != nullptr);
        file->reload();

        // A missing file counts as loaded, and the copy stays: a default that it holds would not be written again.
        if (! file->getFile().existsAsFile())
        {
            file->clear();
            file->setNeedsToBeSaved (false);
        }

        return *file;
    }

    juce::ApplicationProperties& properties;
    const juce::String key;
    const T fallback;
    const Validator validator;
    const ChangeAction onChange;
    RelaxedValue<T> value;
    UpdateGate actionGate;
    T acted; ///< What the action last knew; belongs to the gate's owner.
};

} // namespace tarvik
