// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/HostStream.h"

#include <pluginterfaces/base/ipluginbase.h>
#include <pluginterfaces/base/smartpointer.h>
#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstcomponent.h>
#include <pluginterfaces/vst/ivsteditcontroller.h>
#include <pluginterfaces/vst/ivstmessage.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace tarvik::test
{

/** The built module, or the one that TARVIK_OTHER_MODULE names, opened as a host opens it. */
class Module
{
public:
    Module()
    {
        if (! library.open (juce::File (other != nullptr ? other : TARVIK_MODULE).getFullPathName()) || ! enter())
            throw std::runtime_error ("cannot open the module");
    }

    ~Module() { leave(); }

    Module (const Module&) = delete;
    Module& operator= (const Module&) = delete;

    IPtr<IPluginFactory> getFactory() const { return owned (entry<IPluginFactory* (*) ()> ("GetPluginFactory")()); }

    template <typename Function>
    Function entry (const char* name) const
    {
        return reinterpret_cast<Function> (library.getFunction (name));
    }

private:
#if JUCE_WINDOWS
    bool enter() const { return entry<bool (*)()> ("InitDll")(); }

    bool leave() const { return entry<bool (*)()> ("ExitDll")(); }
#else
    bool enter() const { return entry<bool (*) (void*)> ("ModuleEntry") (library.getNativeHandle()); }

    bool leave() const { return entry<bool (*)()> ("ModuleExit")(); }
#endif

    const char* const other = std::getenv ("TARVIK_OTHER_MODULE");
    mutable juce::DynamicLibrary library; // whose looking-up is not const
};

template <typename Interface>
IPtr<Interface> query (FUnknown& object, const TUID iid)
{
    void* result = nullptr;
    object.queryInterface (iid, &result);
    return owned (static_cast<Interface*> (result));
}

/** Of the class with that number. */
template <typename Interface>
IPtr<Interface> create (IPluginFactory& factory, int32 index, const TUID iid)
{
    PClassInfo info;
    void* result = nullptr;
    factory.getClassInfo (index, &info);
    factory.createInstance (info.cid, iid, &result);
    return owned (static_cast<Interface*> (result));
}

/** A component of the module with its controller, connected as a host connects them: without that, a controller has no
    parameters.
*/
class ModuleInstance
{
public:
    static constexpr int blockLength = 64;

    explicit ModuleInstance (IPluginFactory& factory)
        : component (create<Vst::IComponent> (factory, 0, INLINE_UID_OF (Vst::IComponent))),
          controller (create<Vst::IEditController> (factory, 1, INLINE_UID_OF (Vst::IEditController))),
          processor (query<Vst::IAudioProcessor> (*component, INLINE_UID_OF (Vst::IAudioProcessor))),
          componentEnd (query<Vst::IConnectionPoint> (*component, INLINE_UID_OF (Vst::IConnectionPoint))),
          controllerEnd (query<Vst::IConnectionPoint> (*controller, INLINE_UID_OF (Vst::IConnectionPoint)))
    {
        if (component->initialize (nullptr) != kResultOk || controller->initialize (nullptr) != kResultOk)
            throw std::runtime_error ("cannot make an instance");

        componentEnd->connect (controllerEnd.get());
        controllerEnd->connect (componentEnd.get());
    }

    ~ModuleInstance()
    {
        processor->setProcessing (false);
        component->setActive (false);
        componentEnd->disconnect (controllerEnd.get());
        controllerEnd->disconnect (componentEnd.get());
        controller->terminate();
        component->terminate();
    }

    ModuleInstance (const ModuleInstance&) = delete;
    ModuleInstance& operator= (const ModuleInstance&) = delete;

    void startPlaying()
    {
        Vst::ProcessSetup setup { Vst::kRealtime, Vst::kSample32, blockLength, 48000.0 };

        for (const auto& [direction, bus] : { std::pair (Vst::kInput, 0), { Vst::kInput, 1 }, { Vst::kOutput, 0 } })
            component->activateBus (Vst::kAudio, direction, bus, true);

        if (processor->setupProcessing (setup) != kResultOk || component->setActive (true) != kResultOk)
            throw std::runtime_error ("cannot play");

        processor->setProcessing (true);
    }

    /** A square wave on all inputs; gives what the left output says, which is not finite if any sample is not. */
    float play()
    {
        float input[blockLength], left[blockLength], right[blockLength];

        for (int i = 0; i < blockLength; ++i)
            input[i] = (i & 16) != 0 ? 0.1f : -0.1f;

        float *in[] = { input, input }, *out[] = { left, right };
        Vst::AudioBusBuffers inputs[2], output;
        inputs[0].numChannels = inputs[1].numChannels = output.numChannels = 2;
        inputs[0].channelBuffers32 = inputs[1].channelBuffers32 = in;
        output.channelBuffers32 = out;

        Vst::ProcessData data;
        data.processMode = Vst::kRealtime;
        data.symbolicSampleSize = Vst::kSample32;
        data.numSamples = blockLength;
        data.numInputs = 2;
        data.numOutputs = 1;
        data.inputs = inputs;
        data.outputs = &output;
        processor->process (data);
        auto result = left[0];

        for (int i = 0; i < blockLength; ++i)
            result += 0.0f * (left[i] + right[i]); // not a number if either is not finite

        return result;
    }

    /** As a host hands a state over, at most `piece` bytes at a time. */
    void load (std::string_view state, int32 piece = std::numeric_limits<int32>::max())
    {
        HostStream forComponent (state, piece), forController (state, piece);
        component->setState (&forComponent);
        controller->setComponentState (&forController);
    }

    std::string saved() const
    {
        HostStream stream;
        component->getState (&stream);
        return { stream.getData(), static_cast<std::size_t> (stream.getSize()) };
    }

    Vst::ParameterInfo infoOf (int32 index) const
    {
        Vst::ParameterInfo info;
        controller->getParameterInfo (index, info);
        return info;
    }

    bool allParametersAreInRange() const
    {
        for (int32 i = 0; i < controller->getParameterCount(); ++i)
            if (const auto value = controller->getParamNormalized (infoOf (i).id); ! (value >= 0.0 && value <= 1.0))
                return false;

        return true;
    }

    const IPtr<Vst::IComponent> component;
    const IPtr<Vst::IEditController> controller;
    const IPtr<Vst::IAudioProcessor> processor;

private:
    const IPtr<Vst::IConnectionPoint> componentEnd, controllerEnd;
};

} // namespace tarvik::test
