// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/ProductRecord.h"

namespace tarvik
{

namespace
{
constexpr int frameworkVersion[] = { 4, 9, 3 };

juce::String formatOf (const juce::File& module)
{
    constexpr std::pair<const char*, const char*> formats[] = {
        { ".vst3", "VST3" }, { ".dll", "VST2" }, { ".aaxplugin", "AAX" }, { ".plugin", "RTAS" }, { ".component", "AU" }
    };

    for (const auto& [suffix, name] : formats)
        if (module.hasFileExtension (suffix))
            return name;

    return "Standalone";
}
} // namespace

ProductRecord productRecord (const juce::File& module)
{
    const auto version = juce::StringArray::fromTokens (JucePlugin_VersionString, ".", {});
    return { "Software\\Nomvale\\Common\\PluginInfo\\" + module.getFullPathName().replaceCharacter ('\\', '/'),
             { { "Product", JucePlugin_Name },
               { "ProductVersion_Major", version[0].getIntValue() },
               { "ProductVersion_Minor", version[1].getIntValue() },
               { "ProductVersion_Revision", version[2].getIntValue() },
               { "Format", formatOf (module) },
               { "Bitness", static_cast<int> (sizeof (void*)) * 8 },
               { "OS", "Windows" },
               { "Framework", "KVLLib" },
               { "FrameworkVersion_Major", frameworkVersion[0] },
               { "FrameworkVersion_Minor", frameworkVersion[1] },
               { "FrameworkVersion_Revision", frameworkVersion[2] } } };
}

void writeProductRecord()
{
#if JUCE_WINDOWS
    const auto record = productRecord (juce::File::getSpecialLocation (juce::File::currentExecutableFile));

    for (const auto& [name, content] : record.values)
    {
        const auto path = "HKEY_CURRENT_USER\\" + record.key + "\\" + name;

        if (content.isString())
            juce::WindowsRegistry::setValue (path, content.toString());
        else
            juce::WindowsRegistry::setValue (path, static_cast<juce::uint32> (static_cast<int> (content)));
    }
#endif
}

} // namespace tarvik
