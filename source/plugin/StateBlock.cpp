// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/StateBlock.h"

#include "plugin/ParameterTable.h"
#include "plugin/StateSchema.h"

#include <algorithm>
#include <expat.h>
#include <set>
#include <string_view>

namespace tarvik
{

namespace
{
constexpr juce::uint32 blockMark = 0x21324356; ///< Of JUCE's binary wrapper around a document.
constexpr int markBytes = 4, headerBytes = 8;  ///< The mark, and the length of the text after it.

/** A document of ours has 1.5 KB. This much of anything is read in some hundredths of a second. */
constexpr std::size_t longestText = 1 << 18;

/** Whether the strip reads an attribute of this name. Others must not enter JUCE's list of all names ever seen, which
    gets slower with each.
*/
bool isKnown (std::string_view name)
{
    static const auto names = []
    {
        std::set<std::string_view> all (std::begin (stateSchema::settingKeys), std::end (stateSchema::settingKeys));
        all.insert (stateSchema::currentSlot);

        for (const auto& row : parameterRows)
            all.insert (row.id);

        return all;
    }();
    return names.contains (name);
}

/** Takes what Expat finds, from one document. */
class DocumentReader
{
public:
    std::unique_ptr<juce::XmlElement> read (std::string_view text)
    {
        if (parser == nullptr) // out of memory
            return {};

        XML_SetUserData (parser.get(), this);
        XML_SetElementHandler (parser.get(), elementStarts, elementEnds);
        XML_SetStartDoctypeDeclHandler (parser.get(), doctypeStarts);
        XML_Parse (parser.get(), text.data(), static_cast<int> (text.size()), XML_TRUE);
        return isWhole ? std::move (root) : nullptr;
    }

private:
    static void XMLCALL elementStarts (void* reader, const char* name, const char** attributes)
    {
        static_cast<DocumentReader*> (reader)->start (name, attributes);
    }

    static void XMLCALL elementEnds (void* reader, const char*) { static_cast<DocumentReader*> (reader)->end(); }

    /** Declarations make short texts long: by entities, and by attributes that come with each element. */
    static void XMLCALL doctypeStarts (void* reader, const char*, const char*, const char*, int hasDeclarations)
    {
        if (hasDeclarations != 0)
            static_cast<DocumentReader*> (reader)->stop();
    }

    void start (const char* name, const char** attributes)
    {
        const auto depth = numOpen++;

        if (depth == 0 && std::string_view (name) == stateSchema::root)
        {
            root = std::make_unique<juce::XmlElement> (name);
            takeAttributes (*root, attributes);
        }
        else if (depth == 0)
        {
            stop();
        }
        else if (depth == 1 && isNewSlot (name))
        {
            takeAttributes (*root->createNewChildElement (name), attributes);
        }
    }

    bool isNewSlot (std::string_view name) const
    {
        const auto& tags = stateSchema::slotTags;
        return std::find (std::begin (tags), std::end (tags), name) != std::end (tags)
               && root->getChildByName (name.data()) == nullptr;
    }

    static void takeAttributes (juce::XmlElement& element, const char** namesAndValues)
    {
        for (auto* const* pair = namesAndValues; *pair != nullptr; pair += 2)
            if (isKnown (pair[0]))
                element.setAttribute (pair[0], juce::String::fromUTF8 (pair[1]));
    }

    void end()
    {
        if (--numOpen == 0)
        {
            isWhole = ! isStopped;
            stop();
        }
    }

    void stop()
    {
        isStopped = true;
        XML_StopParser (parser.get(), XML_FALSE);
    }

    struct Free
    {
        void operator() (XML_Parser expat) const { XML_ParserFree (expat); }
    };

    // The encoding that the text itself may name does not count: JUCE writes UTF-8.
    std::unique_ptr<std::remove_pointer_t<XML_Parser>, Free> parser { XML_ParserCreate ("UTF-8") };
    std::unique_ptr<juce::XmlElement> root;
    int numOpen = 0;
    bool isStopped = false;
    bool isWhole = false;
};

/** XML itself forbids space before its declaration. */
std::string_view withoutSpaceAtTheStart (std::string_view text)
{
    constexpr std::string_view space = " \t\r\n", byteOrderMark = "\xef\xbb\xbf";
    const auto skipSpace = [&] { text.remove_prefix (std::min (text.find_first_not_of (space), text.size())); };
    skipSpace();

    if (text.starts_with (byteOrderMark))
        text.remove_prefix (byteOrderMark.size());

    skipSpace();
    return text;
}
} // namespace

std::unique_ptr<juce::XmlElement> parseStateBlock (const void* data, int sizeInBytes)
{
    if (sizeInBytes <= headerBytes || juce::ByteOrder::littleEndianInt (data) != blockMark)
        return {};

    const auto* const bytes = static_cast<const char*> (data);
    const auto statedLength = static_cast<int> (juce::ByteOrder::littleEndianInt (bytes + markBytes));
    const auto length = std::clamp (statedLength, 0, sizeInBytes - headerBytes);
    const std::string_view whole (bytes + headerBytes, static_cast<std::size_t> (length));
    const auto text = withoutSpaceAtTheStart (whole.substr (0, whole.find ('\0')));

    if (text.empty() || text.size() > longestText)
        return {};

    return DocumentReader().read (text);
}

} // namespace tarvik
