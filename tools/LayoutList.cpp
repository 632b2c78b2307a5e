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
using Field = std::pair<const char*, juce::var>;
using Fields = std::vector<Field>;

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

    /** A control: a row with a parameter and a legend. The one without a parameter switches what the meter shows. */
    void add (const char* kind, const auto& row, const Fields& fields = {})
    {
        const auto id = row.parameter == noParameter ? Field { "name", "meter mode" }
                                                     : Field { "parameter", parameterRow (row.parameter).id };
        Fields all { id, { "legend", row.legend } };
        all.insert (all.end(), fields.begin(), fields.end());
        add (kind, row.box, all);
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
        listing.add ("knob", row,
                     { { "style", row.style },
                       { "unit", unitOf (row.parameter) },
                       { "startDegrees", row.startDegrees },
                       { "endDegrees", row.endDegrees },
                       { "scale", scaleOf (row.parameter, "degrees", place) } });
    }

    const auto trimPlace = [] (float value) { return degrees (trimAngle (value)); };
    listing.add ("trim", trim,
                 { { "unit", unitOf (trim.parameter) }, { "scale", scaleOf (trim.parameter, "degrees", trimPlace) } });

    const auto box = levelFader.box.on (designWidth, designHeight);
    const auto faderPlace = [&] (float value)
    {
        const auto top = box.getY() + fader::trackTop (box.getHeight());
        return rounded (top + (1.0 - static_cast<double> (value)) * fader::trackHeight (box.getHeight()));
    };
    listing.add ("fader", levelFader,
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
        listing.add ("switch", row, { { "plate", row.plate }, { "scale", scaleOf (row.parameter, "lever", lever) } });
    }
}

void addPushButtons (Listing& listing)
{
    for (const auto& row : pushButtons)
    {
        listing.add ("push", row);

        if (row.lamp != Picture::none)
            listing.add ("lamp", row.lampBox, { { "picture", rowOf (row.lamp).name } });
    }

    listing.add ("mute", mute);
    listing.add ("phase", phase);
    listing.add ("link", link);
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
    listing.add ("picture", outputLegend.box, "output legend");
    listing.add ("led", compressorLed.box, "compressor LED");
    listing.add ("led", expanderLed.box, "expander LED");
    listing.add ("picture", plateMono.box, "channel display");
    listing.add ("button", previousChannel.box, "previous channel");
    listing.add ("button", nextChannel.box, "next channel");
    listing.add ("button", randomChannel.box, "random channel");
    listing.add ("button", randomInAll.box, "random channel in all");
    addLabel (listing, "channel name", channelName);
    addLabel (listing, "left channel number", leftNumber);
    addLabel (listing, "right channel number", rightNumber);
    addLabel (listing, "mix readout", mixReadout);
    addLabel (listing, "filter readout", filterReadout);
    return listing.toJson();
}

} // namespace tarvik
