// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/FactoryPrograms.h"
#include "tests/support/StripTestTools.h"

#include <juce_audio_formats/juce_audio_formats.h>

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

juce::StringArray operator+ (juce::StringArray words, const juce::StringArray& more)
{
    words.addArray (more);
    return words;
}

/** A folder of its own for each test, in which the offline host runs with its own settings file, which turns the noise
    off.
*/
class RenderTool : public testing::Test
{
protected:
    RenderTool() : folder (juce::File::createTempFile ("tarvik-render"))
    {
        const auto settings = folder.getChildFile ("Tarvik Plugins/Tarvik 41 Channel.settings");
        settings.create();
        settings.replaceWithText ("<PROPERTIES><VALUE name=\"Analog\" val=\"0\"/></PROPERTIES>");
    }

    ~RenderTool() override { folder.deleteRecursively(); }

    juce::File fileNamed (const juce::String& name) const { return folder.getChildFile (name); }

    /** Runs the tool in the folder and returns all that it prints. */
    juce::String run (const juce::StringArray& arguments, unsigned int expectedStatus = 0) const
    {
        const auto path = folder.getFullPathName();
        juce::ChildProcess process;

        // By a shell, whose status tells of a signal as well.
        process.start (juce::StringArray { "sh", "-c", "env -C \"$0\" XDG_CONFIG_HOME=\"$0\" \"$@\"; exit", path,
                                           TARVIK_RENDER_TOOL }
                       + arguments);
        const auto printed = process.readAllProcessOutput();
        EXPECT_TRUE (process.waitForProcessToFinish (60000)); // or there is no status yet
        EXPECT_EQ (process.getExitCode(), expectedStatus) << arguments.joinIntoString (" ") << "\n" << printed;
        return printed;
    }

    static juce::AudioBuffer<float> noise (int numChannels, int numSamples, int seed = 41)
    {
        juce::AudioBuffer<float> audio (numChannels, numSamples);
        juce::Random random (seed);

        for (int c = 0; c < numChannels; ++c)
            for (int i = 0; i < numSamples; ++i)
                audio.setSample (c, i, random.nextFloat() - 0.5f);

        return audio;
    }

    juce::MemoryBlock bytesOf (const juce::String& name) const
    {
        juce::MemoryBlock bytes;
        EXPECT_TRUE (fileNamed (name).loadFileAsData (bytes)) << name;
        return bytes;
    }

    /** The file's kind goes by its name. bitDepth 32 is floating point. */
    void writeAudio (const juce::String& name, const juce::AudioBuffer<float>& audio, double rate = 44100.0,
                     int bitDepth = 24) const
    {
        fileNamed (name).deleteFile(); // a stream would append to it
        juce::AudioFormatManager formats;
        formats.registerBasicFormats();
        auto* const format = formats.findFormatForFileExtension (fileNamed (name).getFileExtension());
        const std::unique_ptr<juce::AudioFormatWriter> writer (
            format->createWriterFor (fileNamed (name).createOutputStream().release(), rate,
                                     static_cast<unsigned int> (audio.getNumChannels()), bitDepth, {}, 0));
        ASSERT_NE (writer, nullptr) << name;
        ASSERT_TRUE (audio.getNumSamples() == 0
                     || writer->writeFromAudioSampleBuffer (audio, 0, audio.getNumSamples()));
    }

    std::unique_ptr<juce::AudioFormatReader> readerFor (const juce::String& name) const
    {
        juce::AudioFormatManager formats;
        formats.registerBasicFormats();
        return std::unique_ptr<juce::AudioFormatReader> (formats.createReaderFor (fileNamed (name)));
    }

    juce::AudioBuffer<float> readAudio (const juce::String& name) const
    {
        const auto reader = readerFor (name);
        juce::AudioBuffer<float> audio (static_cast<int> (reader->numChannels),
                                        static_cast<int> (reader->lengthInSamples));
        reader->read (audio.getArrayOfWritePointers(), audio.getNumChannels(), 0, audio.getNumSamples());
        return audio;
    }

private:
    const juce::File folder;
};
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
        const auto printed = run ({ "--set", "inLevel=-7 dB", "--set", "compIn=off", "--set", "outLevel=1.5", "--block",
                                    c.block, c.name, "out.wav" });
        EXPECT_EQ (printed.contains ("gain reduction"), c.length > 0.5 * c.rate) << "the needle rises for so long";
        EXPECT_EQ (readerFor ("out.wav")->sampleRate, c.rate);
        EXPECT_TRUE (readerFor ("out.wav")->usesFloatingPointData);
        expectEqual (readAudio ("out.wav"),
                     throughStrip (readAudio (c.name), c.rate,
                                   { { "inLevel", -7.0f }, { "outLevel", 1.5f }, { "compIn", 0.0f } }),
                     2e-6f);
    }
}

TEST_F (RenderTool, ADamagedFlacFileIsRefused)
{
    writeAudio ("in.flac", noise (2, 5000));
    const auto whole = bytesOf ("in.flac");
    constexpr std::size_t sumOfAllSamples = 30;

    for (const auto place : { sumOfAllSamples, whole.getSize() / 2, whole.getSize() })
    {
        auto damaged = whole;

        if (place < whole.getSize())
            damaged[place] = static_cast<char> (damaged[place] ^ 1);
        else
            damaged.setSize (place / 2);

        fileNamed ("in.flac").replaceWithData (damaged.getData(), damaged.getSize());
        EXPECT_TRUE (run ({ "in.flac", "out.wav" }, 2).contains ("damaged")) << place;
        EXPECT_FALSE (fileNamed ("out.wav").exists());
    }
}

TEST_F (RenderTool, TwentyFourBitsAreRoundedAndClippingIsReported)
{
    writeAudio ("in.wav", noise (1, 1000), 44100.0, 32);
    const auto printed = run ({ "--set", "compIn=off", "--set", "outLevel=7", "--bits", "24", "in.wav", "o.wav" });
    auto expected = throughStrip (readAudio ("in.wav"), 44100.0, { { "outLevel", 7.0f }, { "compIn", 0.0f } });
    const auto peakDb = juce::Decibels::gainToDecibels (expected.getMagnitude (0, 1000));
    EXPECT_TRUE (printed.contains (juce::String (peakDb, 2) + " dBFS")) << printed;

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
    EXPECT_TRUE (printed.contains (" " + juce::String (numBeyond) + " samples were beyond full scale")) << printed;
    expectEqual (out, expected, halfStep + 2e-7f);

    // Cut off instead of rounded, the samples would lie half a step too low on average.
    EXPECT_NEAR (sumOfErrors / expected.getNumSamples(), 0.0, 0.25 * static_cast<double> (halfStep));
}

//==============================================================================
TEST_F (RenderTool, StateProgramAndSettingsAreAllHeardInThisOrder)
{
    writeAudio ("in.wav", noise (2, 2000), 44100.0, 32);
    const auto in = readAudio ("in.wav");

    const auto expect = [&] (const juce::StringArray& arguments, const test::PlainValues& settings, int program = 0)
    {
        SCOPED_TRACE (arguments.joinIntoString (" "));
        run (juce::StringArray { "in.wav", "out.wav" } + arguments);
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
                run ({ "in.wav", "out.wav", "--sidechain", "side.wav", "--set", "compExtSideChain=on", "--set",
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
