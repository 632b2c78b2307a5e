// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/FactoryPrograms.h"
#include "plugin/ParameterTable.h"
#include "tests/support/StripTestTools.h"
#include "tests/tools/ToolProcess.h"

namespace tarvik
{
namespace
{
using Audio = juce::AudioBuffer<float>;

/** What the strip makes of the audio in this process, without noise: aligned, and as long as its input. The side chain,
    if it is not empty, has as many channels.
*/
Audio throughStrip (const Audio& in, double rateHz, const test::PlainValues& settings, int program = 0,
                    const Audio& side = {})
{
    const auto numMain = in.getNumChannels(), numAll = numMain + side.getNumChannels();
    const auto strip = test::makeNoiselessStrip (numMain, 2, numAll > numMain);
    strip->setCurrentProgram (program);
    test::setPlain (*strip, settings);
    strip->prepareToPlay (rateHz, 512);
    const auto latency = strip->getLatencySamples();
    Audio padded (numAll, in.getNumSamples() + latency), out (numMain, in.getNumSamples());
    padded.clear();

    for (int c = 0; c < numMain; ++c)
        padded.copyFrom (c, 0, in, c, 0, in.getNumSamples());

    for (int c = numMain; c < numAll; ++c)
        padded.copyFrom (c, 0, side, c - numMain, 0, std::min (side.getNumSamples(), padded.getNumSamples()));

    juce::MidiBuffer midi;
    strip->processBlock (padded, midi);

    for (int c = 0; c < numMain; ++c)
        out.copyFrom (c, 0, padded, c, latency, in.getNumSamples());

    return out;
}

void expectEqual (const Audio& actual, const Audio& expected, float tolerance = 1e-6f)
{
    ASSERT_EQ (actual.getNumChannels(), expected.getNumChannels());
    ASSERT_EQ (actual.getNumSamples(), expected.getNumSamples());

    for (int c = 0; c < expected.getNumChannels(); ++c)
        for (int i = 0; i < expected.getNumSamples(); ++i)
            ASSERT_NEAR (actual.getSample (c, i), expected.getSample (c, i), tolerance)
                << "channel " << c << ", sample " << i;
}
} // namespace

//==============================================================================
TEST_F (RenderTool, EveryKindAndLengthComesBackInPlaceAndWhole)
{
    struct Case
    {
        const char* name;
        int bits, channels, length;
        double rate;
        const char* block;
    };

    const Case cases[] = { { "a.wav", 16, 2, 100000, 44100.0, "512" },    { "b.wav", 32, 1, 257, 8000.0, "1" },
                           { "c.flac", 24, 2, 100000, 96000.0, "65536" }, { "d.flac", 16, 1, 256, 48000.0, "256" },
                           { "e.aiff", 24, 2, 255, 192000.0, "100" },     { "f.aiff", 16, 1, 100000, 11025.0, "4096" },
                           { "g.wav", 24, 2, 1, 192000.0, "512" },        { "h.wav", 32, 2, 0, 44100.0, "512" } };

    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.name);
        writeAudio (c.name, noise (c.channels, c.length), c.rate, c.bits);
        const auto outcome = runWell ({ "--set", "inLevel=-7 dB", "--set", "compIn=off", "--set", "outLevel=1.5",
                                        "--block", c.block, c.name, "out.wav" });
        EXPECT_TRUE (outcome.err.isEmpty()) << outcome.err; // no bar where there is no terminal
        EXPECT_EQ (outcome.out.contains ("gain reduction"), c.length > 0.5 * c.rate) << "the needle rises for so long";
        EXPECT_EQ (readerFor ("out.wav")->sampleRate, c.rate);
        EXPECT_TRUE (readerFor ("out.wav")->usesFloatingPointData);
        expectEqual (readAudio ("out.wav"),
                     throughStrip (readAudio (c.name), c.rate,
                                   { { "inLevel", -7.0f }, { "outLevel", 1.5f }, { "compIn", 0.0f } }),
                     2e-6f);
    }
}

TEST_F (RenderTool, TwentyFourBitsAreRoundedAndClippingIsReported)
{
    writeAudio ("in.wav", noise (1, 1000), 44100.0, 32);
    const auto outcome = runWell ({ "--set", "compIn=off", "--set", "outLevel=7", "--bits", "24", "in.wav", "o.wav" });
    auto expected = throughStrip (readAudio ("in.wav"), 44100.0, { { "outLevel", 7.0f }, { "compIn", 0.0f } });
    const auto peakDb = juce::Decibels::gainToDecibels (expected.getMagnitude (0, 1000));
    EXPECT_TRUE (outcome.out.contains (juce::String (peakDb, 2) + " dBFS")) << outcome.out;

    constexpr float halfStep = 0.5f / 8388608.0f;
    const auto out = readAudio ("o.wav");
    EXPECT_EQ (readerFor ("o.wav")->bitsPerSample, 24U);
    int numBeyond = 0;
    double sumOfErrors = 0.0;

    for (int i = 0; i < expected.getNumSamples(); ++i)
    {
        const auto unclipped = expected.getSample (0, i), clipped = juce::jlimit (-1.0f, 1.0f, unclipped);
        numBeyond += unclipped != clipped ? 1 : 0;
        expected.setSample (0, i, clipped);
        sumOfErrors += static_cast<double> (out.getSample (0, i)) - static_cast<double> (clipped);
    }

    ASSERT_GE (numBeyond, 1);
    EXPECT_TRUE (outcome.out.contains (" " + juce::String (numBeyond) + " samples were beyond full scale"))
        << outcome.out;
    expectEqual (out, expected, halfStep + 2e-7f);

    // Cut off instead of rounded, the samples would lie half a step too low on average.
    EXPECT_NEAR (sumOfErrors / expected.getNumSamples(), 0.0, 0.25 * static_cast<double> (halfStep));
}

TEST_F (RenderTool, TextsAreReadInTheParametersOwnUnits)
{
    const std::pair<const char*, const char*> texts[] = {
        { "gain=+6", "gain = 6.00 dB" },
        { "gain = -12.00 db", "gain = -12.00 dB" },
        { "compHPF=off", "compHPF = Off" },
        { "compHPF=90 Hz", "compHPF = 90.0 Hz" },
        { "compMix=47 %", "compMix = 47 %" },
        { "lowGain=3.34 dB", "lowGain = 3.34 dB" },
        { "midGain=15.42", "midGain = 15.42 dB" },
        { "lowFreq=-9 dB", "lowFreq = -9 dB" },
        { "compRelease=auto", "compRelease = AUTO" },
        { "expRelease=1.6s", "expRelease = 1.600 s" },
        { "TolChannel=32", "TolChannel = 32" },
        { "pad=YES", "pad = On" },
        { "equalizer=0", "equalizer = Off" },
        { "level@0", "level = -80.00 dB" },
    };
    juce::StringArray arguments { "in.wav", "out.wav" };

    for (const auto& [argument, shown] : texts)
        arguments.addArray ({ "--set", argument });

    writeAudio ("in.wav", noise (2, 100));
    const auto outcome = runWell (arguments);

    for (const auto& [argument, shown] : texts)
        EXPECT_TRUE (outcome.out.contains (juce::String (shown) + "\n")) << argument << " is not shown as " << shown;
}

TEST_F (RenderTool, TheListNamesAllThereIs)
{
    const auto outcome = runWell ({ "list" });
    EXPECT_EQ (run ({ "--list" }).out, outcome.out);

    for (const auto& row : parameterRows)
        EXPECT_TRUE (outcome.out.contains ("\n" + juce::String (row.id) + " ")) << row.id;

    for (const auto& program : factoryPrograms())
        EXPECT_TRUE (outcome.out.contains ("  " + juce::String (program.name) + "\n")) << program.name;

    for (const auto* const words : { "Latency: 52 samples", "Sidechain, stereo", "-12.00 to 48.00 dB" })
        EXPECT_TRUE (outcome.out.contains (words)) << words;
}

TEST_F (RenderTool, ARunThatIsStoppedLeavesTheOldOutputAndNothingElse)
{
    writeAudio ("in.wav", Audio (1, 4000000), 48000.0, 16); // many seconds of work in blocks of one sample
    fileNamed ("out.wav").replaceWithText ("old");

    for (const auto signalNumber : { SIGINT, SIGTERM })
    {
        const auto process = start ({ "in.wav", "out.wav", "--block", "1", "--save-state", "s.vstpreset" });
        writersIn ({}, 2);
        kill (process, signalNumber);
        EXPECT_EQ (finish (process).status, -signalNumber);
        EXPECT_EQ (namesIn(), "in.wav out.wav");
        EXPECT_EQ (fileNamed ("out.wav").loadFileAsString(), "old");
    }
}

//==============================================================================
TEST_F (RenderTool, StateProgramAndSettingsAreAllHeardInThisOrder)
{
    writeAudio ("in.wav", noise (2, 2000), 44100.0, 32);
    const auto in = readAudio ("in.wav");

    const auto expect = [&] (const juce::StringArray& arguments, const test::PlainValues& settings, int program = 0)
    {
        SCOPED_TRACE (arguments.joinIntoString (" "));
        runWell (juce::StringArray { "in.wav", "out.wav" } + arguments);
        expectEqual (readAudio ("out.wav"), throughStrip (in, 44100.0, settings, program));
    };

    // The last one wins, wherever the other options stand, and what it does not name is kept.
    const test::PlainValues stored { { "inLevel", -9.0f }, { "compIn", 0.0f } };
    expect ({ "--set", "inLevel=9", "--set", "inLevel=-9", "--set", "compIn=off", "--save-state", "s.vstpreset" },
            stored);
    expect ({ "--state", "s.vstpreset", "--save-state", "bare" }, stored);
    const auto bare = bytesOf ("bare");
    EXPECT_NE (juce::AudioProcessor::getXmlFromBinary (bare.getData(), static_cast<int> (bare.getSize())), nullptr);
    expect ({ "--state", "bare" }, stored);
    expect ({ "--set", "outLevel=2", "--state", "s.vstpreset" },
            { { "inLevel", -9.0f }, { "compIn", 0.0f }, { "outLevel", 2.0f } });
    expect ({ "--state", "s.vstpreset", "--program", "Default" }, {});

    // A setting that names the value from before the program is a setting all the same.
    ASSERT_STREQ (factoryPrograms()[3].name, "808 3 Dist");
    ASSERT_NE (factoryPrograms()[3].snapshot.gain.get(), 0.0f);
    expect ({ "--program", "808 3 dist" }, {}, 3);
    expect ({ "--program", "3", "--set", "gain=0", "--set", "unity=off" }, { { "gain", 0.0f }, { "unity", 0.0f } }, 3);
}

TEST_F (RenderTool, ASidechainOfAnyWidthAndLengthIsHeardByItsDetector)
{
    const test::PlainValues ducked { { "compExtSideChain", 1.0f }, { "compThreshold", -20.0f } };

    for (const auto numMain : { 1, 2 })
        for (const auto numSide : { 1, 2 })
            for (const auto sideLength : { 0, 700, 5000 })
            {
                SCOPED_TRACE (juce::String (numMain) + ", " + juce::String (numSide) + ", "
                              + juce::String (sideLength));
                writeAudio ("in.wav", noise (numMain, 2000), 48000.0, 32);
                writeAudio ("side.wav", noise (numSide, sideLength, 7), 48000.0, 32);
                runWell ({ "in.wav", "out.wav", "--sidechain", "side.wav", "--set", "compExtSideChain=on", "--set",
                           "compThreshold=-20" });

                // One channel feeds both, two are averaged for one; after its end comes silence.
                const auto given = readAudio ("side.wav");
                Audio side (numMain, 3000);
                side.clear();

                for (int c = 0; c < numMain; ++c)
                    for (int s = 0; s < numSide; ++s)
                        if (numMain == 1 || numSide == 1 || c == s)
                            side.addFrom (c, 0, given, s, 0, std::min (sideLength, 3000),
                                          numSide > numMain ? 0.5f : 1.0f);

                expectEqual (readAudio ("out.wav"), throughStrip (readAudio ("in.wav"), 48000.0, ducked, 0, side));
            }
}
} // namespace tarvik
