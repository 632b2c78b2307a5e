// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/LayoutList.h"

#include "editor/ConsoleLayout.h"
#include "editor/ControlGeometry.h"
#include "plugin/ParameterTable.h"
#include "tools/ToolError.h"

namespace tarvik
{

namespace
{
using namespace consoleLayout;

/** The texts of a scale's marks, one word each, for the parameters that are not a choice. */
struct ScaleMarks
{
    int parameter;
    const char* texts;
};

constexpr ScaleMarks scaleMarks[] = {
    { parameter ("thd"), "-30 -20 -10 0 10 20 30" },
    { parameter ("gain"), "-12 -6 0 6 12 18 24 30 36 42 48" },
    { parameter ("midGain"), "0 3 6 9 12 15" },
    { parameter ("lowGain"), "0 3 6 9 12 15" },
    { parameter ("compMix"), "0 10 20 30 40 50 60 70 80 90 100" },
    { parameter ("compHPF"), "Off 30 40 60 90 120 160 200 250 300 400" },
    { parameter ("compThreshold"), "-20 -16 -12 -8 -4 0" },
    { parameter ("compInput"), "0 1 2 3 4 5" },
    { parameter ("compOutput"), "0 1 2 3 4 5" },
    { parameter ("expThreshold"), "-40 -30 -20 -10 0 10" },
    { parameter ("expRange"), "-20 -16 -12 -8 -4 0" },
    { parameter ("expRelease"), "0.025 0.05 0.1 0.2 0.4 0.8 1.6" },
    { parameter ("level"), "-80 -60 -50 -40 -30 -20 -15 -10 -5 0 5 10" },
};

juce::StringArray marksOf (int index)
{
    const auto& row = parameterTable()[static_cast<std::size_t> (index)];

    if (! row.choices.empty())
        return { row.choices.data(), static_cast<int> (row.choices.size()) };

    for (const auto& marks : scaleMarks)
        if (marks.parameter == index)
            return juce::StringArray::fromTokens (marks.texts, false);

    throw ToolError ("no scale is known for " + juce::String (row.id));
}

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
        const auto& row = parameterTable()[static_cast<std::size_t> (index)];
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

    for (const auto& text : marksOf (index))
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
        control->setProperty ("unit", row.unit);
        control->setProperty ("startDegrees", row.startDegrees);
        control->setProperty ("endDegrees", row.endDegrees);
        const RotaryArc arc { row.startDegrees, row.endDegrees };
        addScale (control, row.parameter, "degrees", [&] (float value) { return rounded (arc.angleAt (value)); });
    }

    const auto trimPot = listing.add ("trim", trim.box, trim.parameter);
    trimPot->setProperty ("unit", trim.unit);
    addScale (trimPot, trim.parameter, "degrees",
              [] (float value) { return rounded (juce::radiansToDegrees (static_cast<double> (trimAngle (value)))); });

    const auto level = listing.add ("fader", levelFader.box, levelFader.parameter);
    const auto place = levelFader.box.on (designWidth, designHeight);
    level->setProperty ("unit", levelFader.unit);
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
