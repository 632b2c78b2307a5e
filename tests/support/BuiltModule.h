// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/base/ipluginbase.h>

#include <cstdlib>
#include <dlfcn.h>
#include <memory>
#include <stdexcept>
#include <string>

namespace tarvik::test
{

using namespace Steinberg;

/** The built module, or the one that TARVIK_OTHER_MODULE names, opened as a host opens it. */
class Module
{
public:
    Module()
    {
        if (handle == nullptr || ! entry<bool (*) (void*)> ("ModuleEntry") (handle))
            throw std::runtime_error ("cannot open the module");
    }

    ~Module()
    {
        entry<bool (*)()> ("ModuleExit")();
        dlclose (handle);
    }

    Module (const Module&) = delete;
    Module& operator= (const Module&) = delete;

    IPluginFactory* getFactory() const { return entry<IPluginFactory* (*) ()> ("GetPluginFactory")(); }

    template <typename Function>
    Function entry (const char* name) const
    {
        return reinterpret_cast<Function> (dlsym (handle, name));
    }

private:
    const char* const other = std::getenv ("TARVIK_OTHER_MODULE");
    void* const handle = dlopen (other != nullptr ? other : TARVIK_MODULE, RTLD_NOW | RTLD_LOCAL);
};

/** A reference that the host holds and gives back. */
struct GiveBack
{
    void operator() (FUnknown* object) const { object->release(); }
};

template <typename Interface>
using Held = std::unique_ptr<Interface, GiveBack>;

template <typename Interface>
Held<Interface> query (FUnknown& object, const TUID iid)
{
    void* result = nullptr;
    return Held<Interface> (object.queryInterface (iid, &result) == kResultOk ? static_cast<Interface*> (result)
                                                                              : nullptr);
}

template <typename Interface>
Held<Interface> create (IPluginFactory& factory, const TUID cid, const TUID iid)
{
    void* result = nullptr;
    factory.createInstance (cid, iid, &result);
    return Held<Interface> (static_cast<Interface*> (result));
}

/** A class identifier from its four words, by the interface's rule for inline identifiers. */
inline std::string identifier (uint32 word1, uint32 word2)
{
    constexpr uint32 manufacturer = 0x516d7278; // "Qmrx"
    constexpr uint32 plugin = 0x54564368;       // "TVCh"
    const TUID uid = INLINE_UID (word1, word2, manufacturer, plugin);
    return { uid, sizeof (TUID) };
}

inline const auto componentId = identifier (0xABCDEF01, 0x9182FAEB);
inline const auto controllerId = identifier (0xABCDEF01, 0x1234ABCD);

} // namespace tarvik::test
