// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/FactoryPrograms.h"
#include "tests/support/StripTestTools.h"
#include "tests/tools/ToolProcess.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace tarvik
{
namespace
{
using Audio = juce::AudioBuffer<float>;

const juce::StringArray gainOnly { "--set", "equalizer=off", "--set", "compIn=off" };

juce::StringArray operator+ (juce::StringArray words, const juce::StringArray& more)
{
    words.addArray (more);
    return words;
}

using Settings = test::PlainValues;

/** What the strip makes of the audio in this process, without noise, with what `gainOnly` takes out taken out: aligned,
    and as long as its input.
*/
Audio throughStrip (const Audio& in, double rateHz, const Settings& settings, int factor = 1, int program = 0)
{
    const auto strip = test::makeNoiselessStrip (in.getNumChannels(), factor);
    strip->setCurrentProgram (program);
    test::setPlain (*strip, { { "equalizer", 0.0f }, { "compIn", 0.0f } });
    test::setPlain (*strip, settings);

    strip->prepareToPlay (rateHz, 512);
    const auto latency = strip->getLatencySamples();
    Audio padded (in.getNumChannels(), in.getNumSamples() + latency);
    padded.clear();

    for (int c = 0; c < in.getNumChannels(); ++c)
        padded.copyFrom (c, 0, in, c, 0, in.getNumSamples());

    juce::MidiBuffer midi;
    strip->processBlock (padded, midi);
    Audio out (in.getNumChannels(), in.getNumSamples());

    for (int c = 0; c < in.getNumChannels(); ++c)
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
TEST_F (RenderTool, EveryKindAndLengthOfFileComesBackFromItsFirstSampleToItsLast)
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
                           { "g.wav", 24, 2, 1, 192000.0, "512" },        { "h.wav", 32, 2, 0, 44100.0, "512" },
                           { "i.flac", 16, 2, 0, 44100.0, "64" } };

    writeSettings ({ { "Oversampling", "1" } }); // without its filters, samples can be compared one by one

    for (const auto& c : cases)
    {
        SCOPED_TRACE (c.name);
        writeAudio (c.name, noise (c.channels, c.length), c.rate, c.bits);
        const auto outcome = runWell (gainOnly
                                      + juce::StringArray { "--set", "inLevel=-7 dB", "--set", "outLevel=1.5",
                                                            "--block", c.block, c.name, "out.wav" });
        EXPECT_TRUE (outcome.err.isEmpty()) << outcome.err; // no bar where there is no terminal
        EXPECT_EQ (outcome.out.contains ("gain reduction"), c.length > 0.5 * c.rate) << "the needle rises for so long";
        EXPECT_EQ (readerFor ("out.wav")->sampleRate, c.rate);
        EXPECT_TRUE (readerFor ("out.wav")->usesFloatingPointData);
        expectEqual (readAudio ("out.wav"),
                     throughStrip (readAudio (c.name), c.rate, { { "inLevel", -7.0f }, { "outLevel", 1.5f } }));
    }
}

TEST_F (RenderTool, LatencyOfOversamplingIsTakenOutToTheSample)
{
    constexpr int length = 700, place = 650; // so close to the end that the tail is needed
    Audio click (1, length);
    click.clear();
    click.setSample (0, place, 0.5f);
    writeAudio ("in.wav", click, 48000.0);

    for (const auto* const block : { "512", "7" })
    {
        const auto outcome = runWell (gainOnly + juce::StringArray { "--block", block, "in.wav", "out.wav" });
        EXPECT_TRUE (outcome.out.contains ("52 samples, compensated")) << outcome.out;
        const auto out = readAudio ("out.wav");
        ASSERT_EQ (out.getNumSamples(), length);
        const auto* const samples = out.getReadPointer (0);
        EXPECT_EQ (std::max_element (samples, samples + length) - samples, place);
        expectEqual (out, throughStrip (click, 48000.0, {}, 2));
    }
}

TEST_F (RenderTool, TwentyFourBitsAreRoundedAndClippingIsReported)
{
    writeSettings ({ { "Oversampling", "1" } });
    auto audio = noise (1, 1000);
    audio.applyGain (0.5f);
    audio.setSample (0, 10, 1.0f);
    audio.setSample (0, 11, -1.0f);
    audio.setSample (0, 12, 0.8575f); // behind those two, and 3 dB louder, it is just below full scale
    writeAudio ("in.wav", audio, 44100.0, 32);

    const auto outcome =
        runWell (gainOnly + juce::StringArray { "--set", "outLevel=3", "--bits", "24", "in.wav", "o.wav" });

    auto expected = throughStrip (audio, 44100.0, { { "outLevel", 3.0f } });
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
    EXPECT_NEAR (expected.getSample (0, 12), 0.995f, 0.004f);
    EXPECT_TRUE (outcome.out.contains (" " + juce::String (numBeyond) + " samples were beyond full scale"))
        << outcome.out;
    expectEqual (out, expected, halfStep + 1e-7f);

    // Cut off instead of rounded, the samples would lie half a step too low on average.
    EXPECT_NEAR (sumOfErrors / expected.getNumSamples(), 0.0, 0.25 * static_cast<double> (halfStep));
}

//==============================================================================
TEST_F (RenderTool, TextsAreReadInTheParametersOwnUnits)
{
    const std::pair<const char*, const char*> texts[] = {
        { "gain=+6", "gain = 6.00 dB" },
        { "gain = -12.00 db", "gain = -12.00 dB" },
        { "compHPF=off", "compHPF = Off" },
        { "compHPF=90 Hz", "compHPF = 90.0 Hz" },
        { "compMix=47 %", "compMix = 47 %" },
        { "compMix=0", "compMix = 0 %" },
        { "lowGain=3.34 dB", "lowGain = 3.34 dB" },
        { "midGain=15.42", "midGain = 15.42 dB" },
        { "midMode=cut", "midMode = Cut" },
        { "lowFreq=-9 dB", "lowFreq = -9 dB" },
        { "compRelease=auto", "compRelease = AUTO" },
        { "expRelease=1.6s", "expRelease = 1.600 s" },
        { "TolChannel=32", "TolChannel = 32" },
        { "pad=YES", "pad = On" },
        { "equalizer=0", "equalizer = Off" },
        { "level=-80", "level = -80.00 dB" },
    };
    juce::StringArray arguments { "in.wav", "out.wav" };

    for (const auto& [argument, shown] : texts)
        arguments = arguments + juce::StringArray { "--set", argument };

    writeAudio ("in.wav", noise (2, 100), 44100.0);
    const auto outcome = runWell (arguments);

    for (const auto& [argument, shown] : texts)
        EXPECT_TRUE (outcome.out.contains (juce::String (shown) + "\n")) << argument << " is not shown as " << shown;
}

TEST_F (RenderTool, ARunThatIsStoppedLeavesTheOldOutputAndNothingElse)
{
    constexpr int longEnough = 4000000; // many seconds of work in blocks of one sample
    constexpr int mostPolls = 2000;
    writeAudio ("in.wav", Audio (1, longEnough), 48000.0, 16);
    fileNamed ("out.wav").replaceWithText ("old");
    const auto before = namesInFolder();

    for (const auto signalNumber : { SIGINT, SIGTERM })
    {
        const auto process = start ({ "in.wav", "out.wav", "--block", "1", "--save-state", "s.vstpreset" });

        for (int poll = 0; poll < mostPolls && namesInFolder().size() < before.size() + 2; ++poll)
            std::this_thread::sleep_for (std::chrono::milliseconds (1));

        EXPECT_EQ (namesInFolder().size(), before.size() + 2); // both hidden files are there
        kill (process, signalNumber);
        EXPECT_EQ (finish (process).status, -signalNumber);
        EXPECT_EQ (namesInFolder().joinIntoString (" "), before.joinIntoString (" "));
        EXPECT_EQ (fileNamed ("out.wav").loadFileAsString(), "old");
    }
}

//==============================================================================
TEST_F (RenderTool, StateProgramAndSettingsApplyInThisOrder)
{
    writeSettings ({ { "Oversampling", "1" } });
    writeAudio ("in.wav", noise (2, 2000), 44100.0, 32);
    const auto in = readAudio ("in.wav");
    const auto render = [this] (const juce::StringArray& arguments)
    {
        runWell (juce::StringArray { "in.wav", "out.wav" } + gainOnly + arguments);
        return readAudio ("out.wav");
    };

    const auto expected = [&in] (const Settings& settings, int program = 0)
    { return throughStrip (in, 44100.0, settings, 1, program); };

    // The last one wins, wherever the other options stand.
    expectEqual (render ({ "--set", "inLevel=9", "--set", "inLevel=-9", "--save-state", "s.vstpreset" }),
                 expected ({ { "inLevel", -9.0f } }));
    expectEqual (render ({ "--state", "s.vstpreset" }), expected ({ { "inLevel", -9.0f } }));
    render ({ "--state", "s.vstpreset", "--save-state", "bare" });
    const auto bare = bytesOf ("bare");
    EXPECT_NE (juce::AudioProcessor::getXmlFromBinary (bare.getData(), static_cast<int> (bare.getSize())), nullptr);
    expectEqual (render ({ "--state", "bare" }), expected ({ { "inLevel", -9.0f } }));
    expectEqual (render ({ "--set", "outLevel=2", "--state", "s.vstpreset" }),
                 expected ({ { "inLevel", -9.0f }, { "outLevel", 2.0f } }));
    expectEqual (render ({ "--state", "s.vstpreset", "--program", "Default" }), expected ({}));

    // A setting that names the value from before the program is a setting all the same.
    constexpr int program = 3;
    ASSERT_STREQ (factoryPrograms()[program].name, "808 3 Dist");
    const juce::StringArray choose { "--program", "808 3 dist" };
    const juce::StringArray plain { "--set", "gain=0", "--set", "unity=off" };
    const Settings plainToo { { "gain", 0.0f }, { "unity", 0.0f } };
    expectEqual (render (choose), expected ({}, program));
    expectEqual (render (choose + plain), expected (plainToo, program));
    ASSERT_NE (factoryPrograms()[program].snapshot.gain.get(), 0.0f);
}

TEST_F (RenderTool, SidechainOfAnyWidthAndLengthStaysOutOfTheMainSignal)
{
    writeSettings ({ { "Oversampling", "1" } });

    for (const auto numMain : { 1, 2 })
        for (const auto numSide : { 1, 2 })
            for (const auto sideLength : { 0, 700, 5000 })
            {
                SCOPED_TRACE (juce::String (numMain) + " with " + juce::String (numSide) + " of "
                              + juce::String (sideLength));
                writeAudio ("in.wav", noise (numMain, 2000), 48000.0, 32);
                writeAudio ("side.wav", noise (numSide, sideLength, 7), 48000.0, 32);
                runWell (
                    juce::StringArray { "in.wav", "out.wav", "--sidechain", "side.wav", "--set", "compExtSideChain=on" }
                    + gainOnly);
                expectEqual (readAudio ("out.wav"), throughStrip (readAudio ("in.wav"), 48000.0, {}));
            }
}
} // namespace tarvik
