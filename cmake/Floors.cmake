# The floors of the source, each an object library: dsp, strip, plugin, editor. A floor is compiled with a view of its own, a
# folder in the build tree with links to just those folders that it may include from; anything else is not found, and
# ./format --check refuses paths upwards.
#     tarvik_add_floor (NAME [ON FLOOR...] FILES...)
function (tarvik_add_floor name)
    cmake_parse_arguments (PARSE_ARGV 1 floor "" "" "ON")
    set (files ${floor_ON})
    set (lower ${floor_ON})
    list (FILTER files INCLUDE REGEX "\\.cpp$")
    list (FILTER lower EXCLUDE REGEX "\\.cpp$")
    list (APPEND files ${floor_UNPARSED_ARGUMENTS})
    set (target tarvik41-${name})
    add_library (${target} OBJECT ${files})
    target_compile_options (${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:${TARVIK_WARNINGS}>)

    set (view ${CMAKE_BINARY_DIR}/floors/${name})
    target_include_directories (${target} PRIVATE ${view})

    foreach (folder IN ITEMS ${name} LISTS lower)
        tarvik_link_folder (${CMAKE_CURRENT_SOURCE_DIR}/${folder} ${view}/${folder})
    endforeach()

    foreach (folder IN LISTS lower)
        target_link_libraries (${target} PRIVATE tarvik41-${folder})
    endforeach()
endfunction()

# The modules of JUCE that a floor may include, or all of them. They are compiled in the shared code target alone.
#     tarvik_let_include (FLOOR MODULES...|all)
function (tarvik_let_include name)
    set (target tarvik41-${name})

    if (ARGN STREQUAL "all")
        target_include_directories (${target} SYSTEM PRIVATE ${TARVIK_JUCE_FOLDERS})
        target_compile_definitions (${target} PRIVATE $<TARGET_PROPERTY:Tarvik41Channel,COMPILE_DEFINITIONS>)
        return()
    endif()

    set (view ${CMAKE_BINARY_DIR}/floors/${name}-juce)
    target_include_directories (${target} SYSTEM PRIVATE ${view})
    target_compile_definitions (${target} PRIVATE ${TARVIK_JUCE_SETTINGS})

    foreach (module IN LISTS ARGN)
        get_target_property (folder juce::${module} INTERFACE_JUCE_MODULE_PATH)
        tarvik_link_folder (${folder}/${module} ${view}/${module})
        target_compile_definitions (${target} PRIVATE $<TARGET_PROPERTY:juce::${module},INTERFACE_COMPILE_DEFINITIONS>)
    endforeach()
endfunction()

function (tarvik_link_folder from to)
    get_filename_component (parent ${to} DIRECTORY)
    file (MAKE_DIRECTORY ${parent})
    file (CREATE_LINK ${from} ${to} SYMBOLIC)
endfunction()
