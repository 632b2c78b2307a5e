// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tools/ToolProcess.h"

#include <algorithm>
#include <cmath>

namespace tarvik
{
namespace
{
/** The figures that the tool prints, one in each line, behind what it measured. */
class PlotTool : public RenderTool
{
protected:
    juce::StringArray draw (const juce::String& kind, const juce::String& pictureFolder)
    {
        printed =
            juce::StringArray::fromLines (runWell ({ "plot", kind, pictureFolder, "--module", moduleBundle() }).out);
        juce::StringArray names;

        for (const auto& line : printed)
            if (line.endsWith (".svg"))
                names.add (line);

        return names;
    }

    /** The figure in the only line that begins with the words. */
    double figure (const juce::String& beginning) const
    {
        juce::StringArray found;

        for (const auto& line : printed)
            if (line.trim().startsWith (beginning))
                found.add (line);

        EXPECT_EQ (found.size(), 1) << beginning;

        // The last two words are the number and its unit.
        const auto words = juce::StringArray::fromTokens (found[0], " ", {});
        return words[words.size() - 2].getDoubleValue();
    }

    juce::StringArray printed;
};
} // namespace

TEST_F (PlotTool, EveryPictureIsAWholeSmallDocumentWithCurvesOnPaper)
{
    const auto names = draw ("all", "new/pictures");
    EXPECT_EQ (names.joinIntoString (" "),
               "eq-high.svg eq-mid.svg eq-low.svg eq-channels.svg compressor-transfer.svg compressor-times.svg "
               "expander-transfer.svg expander-times.svg saturation-harmonics.svg");

    for (const auto& name : names)
    {
        SCOPED_TRACE (name);
        const auto file = fileNamed ("new/pictures/" + name);
        EXPECT_LT (file.getSize(), 150 * 1024);
        EXPECT_FALSE (file.loadFileAsString().containsIgnoreCase ("nan"));
        const auto svg = juce::parseXML (file);
        ASSERT_NE (svg, nullptr);
        ASSERT_TRUE (svg->hasTagName ("svg"));
        const auto* const paper = svg->getChildByName ("rect");
        ASSERT_NE (paper, nullptr);
        EXPECT_EQ (paper->getStringAttribute ("fill"), "#ffffff");

        for (const auto* const side : { "width", "height" })
            EXPECT_EQ (paper->getStringAttribute (side), svg->getStringAttribute (side));

        // Some curve of every chart bends: it is no point, and no line from one end to the other.
        int numCharts = 0;

        for (const auto* const chart : svg->getChildWithTagNameIterator ("g"))
        {
            int mostPoints = 0;

            for (const auto* const curve : chart->getChildWithTagNameIterator ("polyline"))
                mostPoints = std::max (
                    mostPoints, juce::StringArray::fromTokens (curve->getStringAttribute ("points"), " ", {}).size());

            EXPECT_GT (mostPoints, 2);
            ++numCharts;
        }

        EXPECT_GT (numCharts, 0);
    }

    // From the circuit: a short-circuited mid pot gives back what the make-up gain makes up for. At rest 25 kilohms
    // stand over 5.1 for a boost, and 22 over 5.1 beside 25.47 for a cut.
    constexpr auto outputShunt = 5.1, cutArm = 0.47 + 25.0, midGainPot = 25.0, seriesRes = 22.0;
    constexpr auto shunt = outputShunt * cutArm / (outputShunt + cutArm);
    const auto boostOverCutDb =
        20.0 * std::log10 (outputShunt / (outputShunt + midGainPot) * (shunt + seriesRes) / shunt);
    EXPECT_NEAR (figure ("mid boost 2000 Hz"), 15.42, 0.02);
    EXPECT_NEAR (figure ("low boost 60 Hz"), 15.4, 0.05);
    EXPECT_NEAR (figure ("mid at 0, Boost over Cut"), boostOverCutDb, 0.01);
    EXPECT_NEAR (figure ("high pass 80 Hz"), 84.0, 1.5);
    EXPECT_GT (figure ("channels: farthest"), 0.3);

    // At 1:1 nothing but the two potentiometers and the gain element at rest, which come to 0 dB in the middle.
    EXPECT_NEAR (figure ("threshold -20 dB, 1:1"), 0.0, 0.1);
    EXPECT_LT (figure ("threshold -20 dB, 20:1"), figure ("threshold -20 dB, 2:1") - 6.0);
    EXPECT_LT (figure ("limiter on"), figure ("limiter off") - 3.0);
    EXPECT_NEAR (figure ("limiter at 0 dBFS: half of that after"), 0.7, 0.5); // ms; the latency would add 1.1
    EXPECT_LT (figure ("attack Fast"), figure ("attack Slow") / 2.0);
    EXPECT_LT (figure ("AUTO after a peak of 5 ms"), figure ("AUTO after a peak of 5000 ms") / 4.0);
    EXPECT_NEAR (figure ("expander, range 0 dB"), 0.0, 0.1);
    EXPECT_LT (figure ("expander, range -20 dB"), -10.0);
    EXPECT_EQ (figure ("gate, threshold -10 dB") - figure ("gate, threshold -40 dB"), 30.0);
    EXPECT_EQ (figure ("expander, threshold -20 dB") - figure ("gate, threshold -20 dB"), 4.0);
    EXPECT_GT (figure ("gate, attack Slow, hold off"), 1.5 * figure ("gate, attack Fast, hold off"));
    EXPECT_NEAR (figure ("gate, release 0.3 s") / figure ("gate, release 0.1 s"), 3.0, 0.1);
    EXPECT_LT (figure ("THD 0 dB: farthest from the table"), 0.5);
}

TEST_F (PlotTool, TheUsersDefaultsDoNotCountAndThePictureIsTheSameEachTime)
{
    draw ("saturation", "first");
    writeSettings ({ { "Analog", "1" }, { "Oversampling", "8" }, { "Calibration", "24" } });
    draw ("saturation", "second");
    const auto first = fileNamed ("first/saturation-harmonics.svg").loadFileAsString();
    EXPECT_TRUE (first.isNotEmpty());
    EXPECT_EQ (first, fileNamed ("second/saturation-harmonics.svg").loadFileAsString());
}

TEST_F (PlotTool, AComparisonTellsLevelsAndWhatLiesBetween)
{
    constexpr double rateHz = 48000.0;
    const auto writeTones = [this] (const juce::String& name, int numSamples, double lowPeak, double highPeak)
    {
        juce::AudioBuffer<float> tones (2, numSamples);
        tones.clear();

        for (int i = 0; i < 48000; ++i)
        {
            // They come and go slowly, so that nothing is heard between them.
            const auto turns = juce::MathConstants<double>::twoPi * i / rateHz;
            const auto share = std::pow (std::sin (turns / 2.0), 2.0);
            const auto low = share * lowPeak * std::sin (100.0 * turns);
            const auto high = share * highPeak * std::sin (10000.0 * turns);
            tones.setSample (0, i, static_cast<float> (low + high));
            tones.setSample (1, i, static_cast<float> (low - high));
        }

        writeAudio (name, tones, rateHz);
    };
    writeTones ("in.wav", 48000, 0.5, 0.25);
    writeTones ("out.wav", 96000, 0.25, 0.4); // with silence behind
    printed = juce::StringArray::fromLines (runWell ({ "compare", "in.wav", "out.wav", "x.svg" }).out);

    const auto db = [] (double gain) { return 20.0 * std::log10 (gain); };
    const auto rmsOfShare = std::sqrt (3.0 / 8.0 / 2.0); // over the longer time
    EXPECT_NEAR (figure ("before: peak"), db (0.75), 0.1);
    EXPECT_NEAR (figure ("after: RMS"), db (std::hypot (0.25, 0.4) / std::sqrt (2.0) * rmsOfShare), 0.02);
    EXPECT_NEAR (figure ("before: loudest third of an octave, at 100 Hz"), db (0.5 * rmsOfShare), 0.02);
    EXPECT_NEAR (figure ("after: loudest third of an octave, at 10000 Hz"), db (0.4 * rmsOfShare), 0.02);
    EXPECT_NEAR (figure ("change at 100 Hz"), db (0.5), 0.02);
    EXPECT_NEAR (figure ("change at 10000 Hz"), db (1.6), 0.02);
    EXPECT_FALSE (printed.joinIntoString ("\n").contains ("at 1000 Hz")) << "there is nothing";
    const auto svg = fileNamed ("x.svg").loadFileAsString();
    EXPECT_NE (juce::parseXML (svg), nullptr);
    EXPECT_FALSE (svg.contains ("nan") || svg.contains ("inf"));
}
} // namespace tarvik
