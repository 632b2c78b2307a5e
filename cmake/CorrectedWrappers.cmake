# Lets a format be built from a corrected copy of its JUCE wrapper, made here from the one that is installed: JUCE's own
# trust what a project or a settings file holds, and crash the host where that is damaged (docs/formats.md). The checks
# themselves are ours, in source/plugin; a correction only has the wrapper call them.
get_target_property (juce_client_folder juce::juce_audio_plugin_client INTERFACE_JUCE_MODULE_PATH)
string (APPEND juce_client_folder "/juce_audio_plugin_client")
set (corrected_folder ${CMAKE_BINARY_DIR}/corrected/juce_audio_plugin_client)

# Takes a file of the wrappers over, with nothing changed if no more is asked for. Each text must be there exactly once.
#     tarvik_take_over (FILE [HEADER of ours that it needs [TEXT REPLACEMENT]...])
function (tarvik_take_over file)
    set_property (DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${juce_client_folder}/${file})
    file (READ ${juce_client_folder}/${file} code)

    if (ARGN)
        list (POP_FRONT ARGN header)
        string (PREPEND code "// Changed: see cmake/CorrectedWrappers.cmake of Tarvik 41 Channel.\n#include \"${header}\"\n")
    endif()

    while (ARGN)
        list (POP_FRONT ARGN text replacement)
        string (FIND "${code}" "${text}" first)
        string (FIND "${code}" "${text}" last REVERSE)

        if (first EQUAL -1 OR NOT first EQUAL last)
            message (FATAL_ERROR "JUCE's ${file} is not the one that cmake/CorrectedWrappers.cmake corrects: instead of "
                                 "once it has this never or more often:\n    ${text}\nCompare the two, and see "
                                 "docs/formats.md for what the correction is for.")
        endif()

        string (REPLACE "${text}" "${replacement}" code "${code}")
    endwhile()

    # Only if it differs, so that nothing is compiled again without need.
    file (WRITE ${corrected_folder}/${file}.new "${code}")
    file (COPY_FILE ${corrected_folder}/${file}.new ${corrected_folder}/${file} ONLY_IF_DIFFERENT)
endfunction()

# Has a format built from the copies, whose own inclusions then look in JUCE's folder for what was not taken over.
function (tarvik_build_from_copies format)
    set (source juce_audio_plugin_client_${format}.cpp)
    tarvik_take_over (${source})
    get_target_property (sources juce_audio_plugin_client_${format} INTERFACE_SOURCES)
    set (whole ${sources})
    list (REMOVE_ITEM sources ${juce_client_folder}/${source})

    if (sources STREQUAL whole)
        message (FATAL_ERROR "JUCE no longer builds its ${format} wrapper from ${source}: see cmake/CorrectedWrappers.cmake.")
    endif()

    list (APPEND sources ${corrected_folder}/${source})
    set_target_properties (juce_audio_plugin_client_${format} PROPERTIES INTERFACE_SOURCES "${sources}")
    target_include_directories (juce_audio_plugin_client_${format} INTERFACE ${juce_client_folder}/${format})
endfunction()

# The bypass switch after our own bytes is read only where all of it is in order; a host's stream may give the state in
# pieces; and a host that sets a parameter with steps to anything between two of them reads the step back. A host may have
# no menu for a parameter, and one that it gives is the caller's to release.
tarvik_take_over (VST3/juce_VST3_Wrapper.cpp plugin/Vst3Corrections.h
                  "if (magic == kJucePrivateDataIdentifier)"
                  "if (tarvik::endsInPrivateState (data, sizeAsInt))"
                  "state->read (block.getData(), static_cast<int32> (block.getSize()), &bytesRead)"
                  "state->read (addBytesToPointer (block.getData(), len), static_cast<int32> (block.getSize()) - len, &bytesRead)"
                  "v = jlimit (0.0, 1.0, v)"
                  "v = tarvik::heldValue (v, info.stepCount, valueNormalized)"
                  "(handler->createContextMenu (view, &idToUse))"
                  "(handler->createContextMenu (view, &idToUse), false)"
                  "return std::make_unique<EditorContextMenu> (editor, menu)"
                  "return menu.get() != nullptr ? std::make_unique<EditorContextMenu> (editor, menu) : nullptr")
tarvik_build_from_copies (VST3)

# The number of bytes in front of the text is not believed. The descriptor is the stereo plug-in's, beside which ours makes
# one for mono; an instance asks for its buses by the name of its own.
tarvik_take_over (LV2/juce_LV2_Client.cpp plugin/Lv2Forms.h
                  "String text (static_cast<const char*> (data), (size_t) size)"
                  "const std::string_view text (static_cast<const char*> (data), size)"
                  "block.fromBase64Encoding (text)"
                  "tarvik::readStateText (text, block)"
                  "LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor (uint32_t index)"
                  "const LV2_Descriptor* stereoDescriptor (uint32_t index)"
                  "[] (const LV2_Descriptor*,"
                  "[] (const LV2_Descriptor* self,"
                  "LV2PluginInstance { sampleRate, *blockSize, pathToBundle, *mapFeature }"
                  "LV2PluginInstance { sampleRate, *blockSize, self->URI, *mapFeature }"
                  "const char*,\n                       LV2_URID_Map mapFeatureIn)\n        : mapFeature (mapFeatureIn),"
                  "const char* uri, LV2_URID_Map mapFeatureIn)
        : processor (createProcessorInstance (uri)), mapFeature (mapFeatureIn), patchSetHelper (mapFeature, uri),"
                  "std::unique_ptr<AudioProcessor> createProcessorInstance()"
                  "std::unique_ptr<AudioProcessor> createProcessorInstance (const char* uri = JucePlugin_LV2URI)"
                  "result->enableAllBuses()"
                  "tarvik::setLv2Buses (*result, uri)")
tarvik_build_from_copies (LV2)

tarvik_take_over (Standalone/juce_StandaloneFilterWindow.h plugin/StateText.h
                  "data.fromBase64Encoding (settings->getValue (\"filterState\"))"
                  "tarvik::readStateText (settings->getValue (\"filterState\").toStdString(), data)")
tarvik_take_over (Standalone/juce_StandaloneFilterApp.cpp)
tarvik_build_from_copies (Standalone)
