# Warnings for our own files only: JUCE's modules are compiled inside the shared code target as well, with their own rules.
# g++ 12 sees overlapping copies in std::string where there are none (its bug 105651), hence no -Wrestrict.
set (TARVIK_WARNINGS
     -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-align
     -Woverloaded-virtual -Wnon-virtual-dtor -Wnull-dereference -Wdouble-promotion -Wformat=2 -Wimplicit-fallthrough
     -Wmissing-declarations -Wredundant-decls -Wunused -Wzero-as-null-pointer-constant -Wno-unknown-pragmas -Wno-restrict)

# JUCE's headers are not ours to mend. A folder given both ways counts as a system folder.
get_target_property (juce_folder juce::juce_core INTERFACE_INCLUDE_DIRECTORIES)
set (TARVIK_JUCE_FOLDERS ${juce_folder} ${juce_folder}/juce_audio_processors/format_types/VST3_SDK)

# Adds source files to a target and compiles just those with warnings as errors.
function (tarvik_add_sources target)
    target_sources (${target} PRIVATE ${ARGN})
    set (own_files ${ARGN})
    list (FILTER own_files INCLUDE REGEX "\\.cpp$")
    set_source_files_properties (${own_files} TARGET_DIRECTORY ${target} PROPERTIES COMPILE_OPTIONS "${TARVIK_WARNINGS}")
    target_include_directories (${target} SYSTEM PRIVATE ${TARVIK_JUCE_FOLDERS})
endfunction()
