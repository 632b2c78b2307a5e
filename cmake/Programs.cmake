# What a program takes over from the shared code target: the headers' places and JUCE's settings, so that it sees the
# same classes as the code that it links. JUCE's modules are not compiled again.
function (tarvik_add_program target)
    add_executable (${target})
    tarvik_add_sources (${target} ${ARGN})
    target_include_directories (${target} PRIVATE $<TARGET_PROPERTY:Tarvik41Channel,INCLUDE_DIRECTORIES>
                                                  ${CMAKE_SOURCE_DIR})
    target_compile_definitions (${target} PRIVATE $<TARGET_PROPERTY:Tarvik41Channel,COMPILE_DEFINITIONS>)
    target_link_libraries (${target} PRIVATE Tarvik41Channel)
    target_link_options (${target} PRIVATE -Wl,--gc-sections)
endfunction()
