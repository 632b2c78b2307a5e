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

juce::StringArray marksOf (const ParameterRow& row)
{
    if (! row.choices.empty())
        return { row.choices.data(), static_cast<int> (row.choices.size()) };

    return juce::StringArray::fromTokens (row.scale, false);
}

static_assert (std::ranges::all_of (knobs,
                                    [] (const auto& knob)
                                    {
                                        const auto& row = parameterRow (knob.parameter);
                                        return ! row.choices.empty() || *row.scale != '\0';
                                    }),
               "a knob without a scale");

using Object = juce::DynamicObject::Ptr;

/** Values to a millionth are exact enough for a picture and read well. */
juce::var rounded (double value) { return std::round (value * 1e6) / 1e6; }

class Listing
{
public:
    /** An object for a control, in the list already. */
    Object add (const char* kind, const Box& box)
    {
        const Object control = new juce::DynamicObject();
        const auto pixels = box.on (designWidth, designHeight);
        control->setProperty ("kind", kind);
        control->setProperty ("x", pixels.getX());
        control->setProperty ("y", pixels.getY());
        control->setProperty ("w", pixels.getWidth());
        control->setProperty ("h", pixels.getHeight());
        controls.add (control.get());
        return control;
    }

    Object add (const char* kind, const Box& box, int index)
    {
        const auto control = add (kind, box);
        const auto& row = parameterRow (index);
        control->setProperty ("parameter", row.id);
        control->setProperty ("title", row.name);
        return control;
    }

    Object add (const char* kind, const Box& box, const char* name)
    {
        const auto control = add (kind, box);
        control->setProperty ("name", name);
        return control;
    }

    juce::String toJson() const
    {
        const Object all = new juce::DynamicObject();
        all->setProperty ("width", designWidth);
        all->setProperty ("height", designHeight);
        all->setProperty ("controls", controls);
        return juce::JSON::toString (all.get());
    }

private:
    juce::Array<juce::var> controls;
};

/** Adds the marks of a parameter's scale, each with its value of 0 to 1 and with its place by `place (value)`. */
template <typename PlaceOf>
void addScale (const Object& control, int index, const char* placeName, PlaceOf&& placeOf)
{
    const auto parameter = createParameter (index);
    juce::Array<juce::var> marks;

    for (const auto& text : marksOf (parameterRow (index)))
    {
        const auto value = parameter->getValueForText (text);
        const Object mark = new juce::DynamicObject();
        mark->setProperty ("text", text);
        mark->setProperty ("value", rounded (value));
        mark->setProperty (placeName, placeOf (value));
        marks.add (mark.get());
    }

    control->setProperty ("scale", marks);
}

void addSliders (Listing& listing)
{
    for (const auto& row : knobs)
    {
        const auto control = listing.add ("knob", row.box, row.parameter);
        control->setProperty ("style", row.style);
        control->setProperty ("unit", parameterRow (row.parameter).unitAfterText());
        control->setProperty ("startDegrees", row.startDegrees);
        control->setProperty ("endDegrees", row.endDegrees);
        const RotaryArc arc { row.startDegrees, row.endDegrees };
        addScale (control, row.parameter, "degrees", [&] (float value) { return rounded (arc.angleAt (value)); });
    }

    const auto trimPot = listing.add ("trim", trim.box, trim.parameter);
    trimPot->setProperty ("unit", parameterRow (trim.parameter).unitAfterText());
    addScale (trimPot, trim.parameter, "degrees",
              [] (float value) { return rounded (juce::radiansToDegrees (static_cast<double> (trimAngle (value)))); });

    const auto level = listing.add ("fader", levelFader.box, levelFader.parameter);
    const auto place = levelFader.box.on (designWidth, designHeight);
    level->setProperty ("unit", parameterRow (levelFader.parameter).unitAfterText());
    level->setProperty ("capHeight", fader::capHeight (place.getHeight()));
    addScale (level, levelFader.parameter, "y",
              [&] (float value)
              {
                  const auto top = place.getY() + fader::trackTop (place.getHeight());
                  return rounded (top + (1.0 - static_cast<double> (value)) * fader::trackHeight (place.getHeight()));
              });

    for (const auto& row : switches)
    {
        const auto control = listing.add ("switch", row.box, row.parameter);
        control->setProperty ("plate", row.plate);
        addScale (control, row.parameter, "lever",
                  [] (float value)
                  {
                      constexpr const char* names[] = { "low", "middle", "high" };
                      return juce::var (names[static_cast<int> (leverPosition (static_cast<double> (value)))]);
                  });
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
            listing.add ("lamp", row.lampBox, row.parameter)->setProperty ("picture", rowOf (row.lamp).name);
    }

    listing.add ("mute", mute.box, mute.parameter);
    listing.add ("phase", phase.box, phase.parameter);
    listing.add ("link", link.box, link.parameter);
}

/** The marks of a meter's scale: whole decibels from the lowest to the highest. */
template <typename AngleOf>
void addMeter (Listing& listing, const char* name, const Box& box, float lowestDb, float highestDb, AngleOf&& angleOf)
{
    const auto control = listing.add ("meter", box, name);
    const auto place = box.on (designWidth, designHeight);
    const auto scale = place.getHeight() / static_cast<double> (meter::designHeight);
    const auto pivotY = static_cast<double> (meter::pivotY), tipY = static_cast<double> (meter::needleTipY);
    control->setProperty ("pivotX", place.getX() + place.getWidth() / 2.0);
    control->setProperty ("pivotY", place.getY() + scale * pivotY);
    control->setProperty ("needleRadius", scale * (pivotY - tipY));
    juce::Array<juce::var> marks;

    for (auto decibels = lowestDb; decibels <= highestDb; ++decibels)
    {
        const Object mark = new juce::DynamicObject();
        mark->setProperty ("decibels", decibels);
        mark->setProperty ("degrees", rounded (juce::radiansToDegrees (static_cast<double> (angleOf (decibels)))));
        marks.add (mark.get());
    }

    control->setProperty ("scale", marks);
}

void addPicture (Listing& listing, const char* kind, const char* name, const PictureButtonRow& row)
{
    const auto control = listing.add (kind, row.box, name);

    if (juce::String (row.words.tooltip).isNotEmpty())
        control->setProperty ("tooltip", row.words.tooltip);
}

void addLabel (Listing& listing, const char* name, const LabelRow& row)
{
    const auto control = listing.add ("label", row.box, name);
    constexpr auto designPixelsPerPixel = static_cast<double> (designWidth) / width;
    control->setProperty ("textHeight", static_cast<double> (row.height) * designPixelsPerPixel);
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
