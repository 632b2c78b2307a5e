// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ModuleHost.h"

#include "plugin/ParameterTable.h"
#include "plugin/StripReadOuts.h"
#include "tools/OutputFile.h"
#include "tools/ParameterArguments.h"
#include "tools/System.h"
#include "tools/ToolError.h"

#include <pluginterfaces/vst/ivstcomponent.h>

namespace tarvik
{

namespace
{
constexpr const char* productName = "Tarvik 41 Channel";
constexpr const char* bundleName = "Tarvik 41 Channel.vst3";

/** A VST3 host knows a parameter by a number, which JUCE's wrapper makes from the ID's text. */
juce::String hostedID (const juce::String& id)
{
    constexpr int withoutTopBit = 0x7fffffff;
    return juce::String (id.hashCode() & withoutTopBit);
}

/** Calls an action with what only a VST3 module offers beyond JUCE's plug-in class. */
template <typename Action>
void withVST3Client (const juce::AudioPluginInstance& instance, Action&& action)
{
    struct Visitor final : juce::ExtensionsVisitor
    {
        explicit Visitor (Action& todo) : act (todo) {}

        void visitVST3Client (const VST3Client& client) override { act (client); }

        Action& act;
    };

    Visitor visitor (action);
    instance.getExtensions (visitor);
}
} // namespace

//==============================================================================
juce::File ModuleHost::findBundle (const juce::String& path)
{
    if (path.isNotEmpty())
    {
        const auto bundle = fileAt (path);

        if (! bundle.exists())
            throw ToolError ("there is no module '" + path + "'");

        return bundle;
    }

    const auto toolFolder = juce::File::getSpecialLocation (juce::File::currentExecutableFile).getParentDirectory();
    juce::Array<juce::File> folders { toolFolder, toolFolder.getChildFile (TARVIK_MODULE_FOLDER_FROM_TOOL) };
    const auto installed = juce::VST3PluginFormat().getDefaultLocationsToSearch();

    for (int i = 0; i < installed.getNumPaths(); ++i)
        folders.add (installed[i]);

    for (const auto& folder : folders)
        if (const auto bundle = folder.getChildFile (bundleName); bundle.exists())
            return bundle;

    throw ToolError (juce::String ("there is no '") + bundleName
                     + "' beside this program, in its build or installed (see --module)");
}

ModuleHost::ModuleHost (const juce::File& bundle)
{
    const auto fail = [&bundle] (const juce::String& reason)
    { throw ToolError ("cannot load the module '" + bundle.getFullPathName() + "': " + reason); };

    juce::VST3PluginFormat format;
    juce::OwnedArray<juce::PluginDescription> found;
    format.findAllTypesForFile (found, openableModule (bundle).getFullPathName());

    if (found.isEmpty())
        fail ("it is not a VST3 module for this system");

    if (found[0]->name != productName)
        fail ("it is '" + found[0]->name + "'");

    // The rate and block size mean nothing before preparing.
    constexpr double anyRate = 44100.0;
    constexpr int anyBlock = 512;
    juce::String error;
    instance = format.createInstanceFromDescription (*found[0], anyRate, anyBlock, error);
    version = found[0]->version;

    if (instance == nullptr)
        fail (error.isEmpty() ? juce::String ("it makes no plug-in") : error);

    withVST3Client (*instance,
                    [this] (const auto& client)
                    {
                        void* object = nullptr;

                        if (client.getIComponentPtr()->queryInterface (IStripReadOuts::iid, &object)
                            == Steinberg::kResultOk)
                            readOuts = static_cast<IStripReadOuts*> (object);
                    });

    if (readOuts == nullptr)
        fail ("it is of another version, without read-outs");

    for (int index = 0; index < numParameters; ++index)
        parameterAt (index);
}

ModuleHost::~ModuleHost()
{
    if (readOuts != nullptr)
        readOuts->release();
}

//==============================================================================
juce::StringArray ModuleHost::programNames() const
{
    juce::StringArray names;

    for (int i = 0; i < instance->getNumPrograms(); ++i)
        names.add (instance->getProgramName (i));

    return names;
}

int ModuleHost::findProgram (const juce::String& nameOrNumber) const
{
    return programNamed (programNames(), nameOrNumber);
}

juce::StringArray ModuleHost::describeBuses() const
{
    juce::StringArray lines;

    for (const auto isInput : { true, false })
        for (int i = 0; i < instance->getBusCount (isInput); ++i)
        {
            const auto* const bus = instance->getBus (isInput, i);
            lines.add (juce::String (isInput ? "in   " : "out  ") + bus->getName() + ", "
                       + bus->getLastEnabledLayout().getDescription().toLowerCase());
        }

    return lines;
}

//==============================================================================
void ModuleHost::setLayout (int numMainChannels, bool withSidechain)
{
    const auto width = juce::AudioChannelSet::canonicalChannelSet (numMainChannels);
    juce::AudioProcessor::BusesLayout layout;
    layout.inputBuses = { width, width };
    layout.outputBuses = { width };

    // The module is asked for both buses at one width before the side chain goes: a bus that is off keeps its last
    // width, and would be refused with it.
    auto isAccepted = instance->setBusesLayout (layout);

    if (! withSidechain)
    {
        layout.inputBuses.getReference (1) = juce::AudioChannelSet::disabled();
        isAccepted = isAccepted && instance->setBusesLayout (layout);
    }

    if (! isAccepted)
        throw ToolError ("the module refuses " + width.getDescription().toLowerCase());
}

juce::MemoryBlock ModuleHost::savePreset() const
{
    juce::MemoryBlock preset;
    withVST3Client (*instance, [&preset] (const auto& client) { preset = client.getPreset(); });

    if (preset.isEmpty())
        throw ToolError ("the module gives no state");

    return preset;
}

void ModuleHost::loadPreset (const juce::MemoryBlock& preset)
{
    bool isTaken = false;
    withVST3Client (*instance, [&] (const auto& client) { isTaken = client.setPreset (preset); });

    if (! isTaken)
        throw ToolError ("the module refuses the state");

    hasLoadedPreset = true;
}

void ModuleHost::selectProgram (int index)
{
    constexpr int millisecondsAfterLoading = 600; // the strip waits 500

    if (hasLoadedPreset)
        juce::Thread::sleep (millisecondsAfterLoading);

    // Asked for the program that it takes for the current one, the module would do nothing, although the settings may
    // have changed since.
    if (instance->getCurrentProgram() == index)
        instance->setCurrentProgram (index == 0 ? 1 : index - 1);

    instance->setCurrentProgram (index);
    passOnChanges();
}

void ModuleHost::passOnChanges()
{
    // A program changes the strip's values without the edit controller's knowledge. The module tells them with its next
    // block: left until the first one of the audio, they would undo what was set in between, and a controller that has
    // not heard of them does not pass on a value that it believes to be there. A block without samples brings them out.
    constexpr double anyRate = 48000.0;
    constexpr int anyBlock = 512;
    prepare (anyRate, anyBlock);
    juce::AudioBuffer<float> nothing (std::max (instance->getTotalNumInputChannels(), 1), 0);
    process (nothing);
    instance->releaseResources();
}

juce::AudioProcessorParameter& ModuleHost::parameterAt (int index) const
{
    const auto* const id = parameterRow (index).id;

    for (auto* const parameter : instance->getParameters())
        if (const auto* const hosted = dynamic_cast<juce::HostedAudioProcessorParameter*> (parameter))
            if (hosted->getParameterID() == hostedID (id))
                return *parameter;

    throw ToolError ("the module has no parameter '" + juce::String (id) + "': it is of another version");
}

void ModuleHost::setParameter (int index, float normalised) { parameterAt (index).setValue (normalised); }

juce::String ModuleHost::parameterText (int index) const
{
    constexpr int longest = 64;
    const auto& parameter = parameterAt (index);
    return parameter.getText (parameter.getValue(), longest);
}

//==============================================================================
void ModuleHost::prepare (double sampleRate, int largestBlock)
{
    instance->setNonRealtime (true);
    instance->prepareToPlay (sampleRate, largestBlock);
}

void ModuleHost::release() { instance->releaseResources(); }

int ModuleHost::latency() const { return instance->getLatencySamples(); }

void ModuleHost::process (juce::AudioBuffer<float>& buffer)
{
    juce::MidiBuffer noEvents;
    instance->processBlock (buffer, noEvents);
}

float ModuleHost::gainReductionDb() const { return readOuts->getGainReductionDb(); }

} // namespace tarvik
