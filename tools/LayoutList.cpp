// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/LayoutList.h"

#include "editor/ConsoleLayout.h"
#include "editor/ControlGeometry.h"
#include "plugin/ParameterTable.h"

namespace tarvik
{

namespace
{
using namespace consoleLayout;

static_assert (std::ranges::all_of (knobs,
                                    [] (const auto& knob)
                                    {
                                        const auto& row = parameterRow (knob.parameter);
                                        return ! row.choices.empty() || *row.scale != '\0';
                                    }),
               "a knob without a scale");

/** A JSON object's properties in their order. */
using Fields = std::vector<std::pair<const char*, juce::var>>;

juce::var object (const Fields& fields)
{
    const juce::DynamicObject::Ptr result = new juce::DynamicObject();

    for (const auto& [name, value] : fields)
        result->setProperty (name, value);

    return result.get();
}

/** Values to a millionth are exact enough for a picture and read well. */
juce::var rounded (double value) { return std::round (value * 1e6) / 1e6; }

juce::var degrees (float radians) { return rounded (juce::radiansToDegrees (static_cast<double> (radians))); }

class Listing
{
public:
    void add (const char* kind, const Box& box, const Fields& fields)
    {
        const auto pixels = box.on (designWidth, designHeight);
        Fields all { { "kind", kind },
                     { "x", pixels.getX() },
                     { "y", pixels.getY() },
                     { "w", pixels.getWidth() },
                     { "h", pixels.getHeight() } };
        all.insert (all.end(), fields.begin(), fields.end());
        controls.add (object (all));
    }

    void add (const char* kind, const Box& box, const char* name) { add (kind, box, { { "name", name } }); }

    /** A parameter's control. */
    void add (const char* kind, const Box& box, int index, const Fields& fields = {})
    {
        const auto& row = parameterRow (index);
        Fields all { { "parameter", row.id }, { "title", row.name } };
        all.insert (all.end(), fields.begin(), fields.end());
        add (kind, box, all);
    }

    juce::String toJson() const
    {
        return juce::JSON::toString (
            object ({ { "width", designWidth }, { "height", designHeight }, { "controls", controls } }));
    }

private:
    juce::Array<juce::var> controls;
};

/** The marks of a parameter's scale, each with its value of 0 to 1 and with its place by `placeOf (value)`. */
template <typename PlaceOf>
juce::var scaleOf (int index, const char* placeName, PlaceOf&& placeOf)
{
    const auto& row = parameterRow (index);
    const auto parameter = createParameter (index);
    const auto texts = row.choices.empty()
                           ? juce::StringArray::fromTokens (row.scale, false)
                           : juce::StringArray { row.choices.data(), static_cast<int> (row.choices.size()) };
    juce::Array<juce::var> marks;

    for (const auto& text : texts)
    {
        const auto value = parameter->getValueForText (text);
        marks.add (object ({ { "text", text }, { "value", rounded (value) }, { placeName, placeOf (value) } }));
    }

    return marks;
}

void addSliders (Listing& listing)
{
    const auto unitOf = [] (int index) { return parameterRow (index).unitAfterText(); };

    for (const auto& row : knobs)
    {
        const RotaryArc arc { row.startDegrees, row.endDegrees };
        const auto place = [&] (float value) { return rounded (arc.angleAt (value)); };
        listing.add ("knob", row.box, row.parameter,
                     { { "style", row.style },
                       { "unit", unitOf (row.parameter) },
                       { "startDegrees", row.startDegrees },
                       { "endDegrees", row.endDegrees },
                       { "scale", scaleOf (row.parameter, "degrees", place) } });
    }

    const auto trimPlace = [] (float value) { return degrees (trimAngle (value)); };
    listing.add ("trim", trim.box, trim.parameter,
                 { { "unit", unitOf (trim.parameter) }, { "scale", scaleOf (trim.parameter, "degrees", trimPlace) } });

    const auto box = levelFader.box.on (designWidth, designHeight);
    const auto faderPlace = [&] (float value)
    {
        const auto top = box.getY() + fader::trackTop (box.getHeight());
        return rounded (top + (1.0 - static_cast<double> (value)) * fader::trackHeight (box.getHeight()));
    };
    listing.add ("fader", levelFader.box, levelFader.parameter,
                 { { "unit", unitOf (levelFader.parameter) },
                   { "capHeight", fader::capHeight (box.getHeight()) },
                   { "scale", scaleOf (levelFader.parameter, "y", faderPlace) } });

    for (const auto& row : switches)
    {
        const auto lever = [] (float value)
        {
            constexpr const char* names[] = { "low", "middle", "high" };
            return juce::var (names[static_cast<int> (leverPosition (static_cast<double> (value)))]);
        };
        listing.add ("switch", row.box, row.parameter,
                     { { "plate", row.plate }, { "scale", scaleOf (row.parameter, "lever", lever) } });
    }
}

void addPushButtons (Listing& listing)
{
    for (const auto& row : pushButtons)
    {
        if (row.parameter == noParameter)
            listing.add ("push", row.box, "meter mode");
        else
            listing.add ("push", row.box, row.parameter);

        if (row.lamp != Picture::none)
            listing.add ("lamp", row.lampBox, row.parameter, { { "picture", rowOf (row.lamp).name } });
    }

    listing.add ("mute", mute.box, mute.parameter);
    listing.add ("phase", phase.box, phase.parameter);
    listing.add ("link", link.box, link.parameter);
}

/** With the marks of its scale: whole decibels from the lowest to the highest. */
template <typename AngleOf>
void addMeter (Listing& listing, const char* name, const Box& box, float lowestDb, float highestDb, AngleOf&& angleOf)
{
    const auto place = box.on (designWidth, designHeight);
    const auto scale = place.getHeight() / static_cast<double> (meter::designHeight);
    const auto pivotY = static_cast<double> (meter::pivotY), tipY = static_cast<double> (meter::needleTipY);
    juce::Array<juce::var> marks;

    for (auto decibels = lowestDb; decibels <= highestDb; ++decibels)
        marks.add (object ({ { "decibels", decibels }, { "degrees", degrees (angleOf (decibels)) } }));

    listing.add ("meter", box,
                 { { "name", name },
                   { "pivotX", place.getX() + place.getWidth() / 2.0 },
                   { "pivotY", place.getY() + scale * pivotY },
                   { "needleRadius", scale * (pivotY - tipY) },
                   { "scale", marks } });
}

void addPicture (Listing& listing, const char* kind, const char* name, const PictureButtonRow& row)
{
    if (*row.words.tooltip == '\0')
        listing.add (kind, row.box, name);
    else
        listing.add (kind, row.box, { { "name", name }, { "tooltip", row.words.tooltip } });
}

void addLabel (Listing& listing, const char* name, const LabelRow& row)
{
    constexpr auto designPixelsPerPixel = static_cast<double> (designWidth) / width;
    listing.add ("label", row.box,
                 { { "name", name }, { "textHeight", static_cast<double> (row.height) * designPixelsPerPixel } });
}
} // namespace

juce::String layoutAsJson()
{
    Listing listing;
    addSliders (listing);
    addPushButtons (listing);
    addMeter (listing, "VU", vuMeter.box, meter::lowestDb, meter::highestDb, meterAngle);
    addMeter (listing, "gain reduction", gainReductionMeter.box, meter::lowestReductionDb, 0.0f, gainReductionAngle);
    addPicture (listing, "picture", "output legend", outputLegend);
    addPicture (listing, "led", "compressor LED", compressorLed);
    addPicture (listing, "led", "expander LED", expanderLed);
    addPicture (listing, "picture", "channel display", plateMono);
    addPicture (listing, "button", "previous channel", previousChannel);
    addPicture (listing, "button", "next channel", nextChannel);
    addPicture (listing, "button", "random channel", randomChannel);
    addPicture (listing, "button", "random channel in all", randomInAll);
    addLabel (listing, "channel name", channelName);
    addLabel (listing, "left channel number", leftNumber);
    addLabel (listing, "right channel number", rightNumber);
    addLabel (listing, "mix readout", mixReadout);
    addLabel (listing, "filter readout", filterReadout);
    return listing.toJson();
}

} // namespace tarvik
