// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>
#include <juce_audio_formats/juce_audio_formats.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <map>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tarvik
{

using SettingsValues = std::map<juce::String, juce::String>;

/** A folder of its own for each test, in which the offline host runs without a display and with its own settings file.
 */
class RenderTool : public testing::Test
{
protected:
    struct Outcome
    {
        int status = -1; ///< The exit status; negative: the signal that ended the process.
        juce::String out, err;
    };

    RenderTool() : folder (juce::File::createTempFile ("tarvik-render"))
    {
        folder.createDirectory();
        writeSettings ({});
    }

    ~RenderTool() override { folder.deleteRecursively(); }

    /** What new instances of the module start with; the noise is off unless it is asked for. */
    void writeSettings (SettingsValues values)
    {
        values.insert ({ "Analog", "0" });
        juce::String text ("<PROPERTIES>");

        for (const auto& [key, value] : values)
            text << "<VALUE name=\"" << key << "\" val=\"" << value << "\"/>";

        const auto file = configFolder().getChildFile ("Tarvik Plugins/Tarvik 41 Channel.settings");
        ASSERT_TRUE (file.create().wasOk());
        ASSERT_TRUE (file.replaceWithText (text + "</PROPERTIES>"));
    }

    juce::File fileNamed (const juce::String& name) const { return folder.getChildFile ("work").getChildFile (name); }

    /** Starts the tool in the folder of the test's files and returns its process. */
    pid_t start (const juce::StringArray& arguments) const
    {
        fileNamed ({}).createDirectory();
        std::vector<const char*> words { TARVIK_RENDER_TOOL };

        for (const auto& argument : arguments)
            words.push_back (argument.toRawUTF8());

        words.push_back (nullptr);
        const auto out = folder.getChildFile ("stdout").getFullPathName().toStdString();
        const auto err = folder.getChildFile ("stderr").getFullPathName().toStdString();
        const auto work = fileNamed ({}).getFullPathName().toStdString();
        const auto config = configFolder().getFullPathName().toStdString();
        const auto process = fork();

        if (process == 0)
        {
            constexpr auto flags = O_WRONLY | O_CREAT | O_TRUNC;
            constexpr mode_t everybodyReads = 0644;
            constexpr int cannotStart = 127;
            dup2 (::open (out.c_str(), flags, everybodyReads), STDOUT_FILENO);
            dup2 (::open (err.c_str(), flags, everybodyReads), STDERR_FILENO);
            setenv ("XDG_CONFIG_HOME", config.c_str(), 1);
            if (chdir (work.c_str()) == 0)
                execv (words[0], const_cast<char* const*> (words.data())); // NOLINT: it changes none
            _exit (cannotStart);
        }

        return process;
    }

    Outcome finish (pid_t process) const
    {
        int status = 0;
        waitpid (process, &status, 0);
        return { WIFEXITED (status) ? WEXITSTATUS (status) : -WTERMSIG (status),
                 folder.getChildFile ("stdout").loadFileAsString(), folder.getChildFile ("stderr").loadFileAsString() };
    }

    Outcome run (const juce::StringArray& arguments) const { return finish (start (arguments)); }

    Outcome runWell (const juce::StringArray& arguments) const
    {
        const auto outcome = run (arguments);
        EXPECT_EQ (outcome.status, 0) << arguments.joinIntoString (" ") << "\n" << outcome.err;
        return outcome;
    }

    static juce::String moduleBundle()
    {
        return juce::File (TARVIK_MODULE)
            .getParentDirectory()
            .getParentDirectory()
            .getParentDirectory()
            .getFullPathName();
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

    /** The names in the folder of the test's files, or in one below, hidden ones too. */
    juce::StringArray namesInFolder (const juce::String& below = {}) const
    {
        juce::StringArray names;

        for (const auto& entry : juce::RangedDirectoryIterator (fileNamed (below), false, "*", juce::File::findFiles))
            names.add (entry.getFile().getFileName());

        names.sort (false);
        return names;
    }

    //==============================================================================
    /** The file's kind goes by its name. bitDepth 32 is floating point. */
    void writeAudio (const juce::String& name, const juce::AudioBuffer<float>& audio, double rate,
                     int bitDepth = 24) const
    {
        const auto file = fileNamed (name);
        file.getParentDirectory().createDirectory();
        juce::AudioFormatManager formats;
        formats.registerBasicFormats();
        auto* const format = formats.findFormatForFileExtension (file.getFileExtension());
        const std::unique_ptr<juce::AudioFormatWriter> writer (
            format->createWriterFor (file.createOutputStream().release(), rate,
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
        EXPECT_NE (reader, nullptr) << name;

        if (reader == nullptr)
            return {};

        juce::AudioBuffer<float> audio (static_cast<int> (reader->numChannels),
                                        static_cast<int> (reader->lengthInSamples));
        reader->read (audio.getArrayOfWritePointers(), audio.getNumChannels(), 0, audio.getNumSamples());
        return audio;
    }

private:
    juce::File configFolder() const { return folder.getChildFile ("config"); }

    const juce::File folder;
};

} // namespace tarvik
