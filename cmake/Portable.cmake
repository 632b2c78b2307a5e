# A build that runs on other systems than the one that made it: whatever is not certain to be there in the same version is
# linked as an archive. What stays shared is glibc, its libm, ALSA in the program, and what JUCE opens by name.
option (TARVIK_PORTABLE "Link all but the C library from archives, for other distributions" OFF)

if (NOT TARVIK_PORTABLE)
    return()
endif()

# Where scripts/package.sh unpacks the source of the Highway that Debian's headers belong to: there is no archive of it.
set (TARVIK_HIGHWAY_SOURCE "${CMAKE_SOURCE_DIR}/build/highway" CACHE PATH "The source of Highway")

if (NOT EXISTS ${TARVIK_HIGHWAY_SOURCE}/hwy/targets.cc)
    message (FATAL_ERROR "Highway's source is not in ${TARVIK_HIGHWAY_SOURCE}: scripts/package.sh puts it there")
endif()

add_library (tarvik_highway STATIC ${TARVIK_HIGHWAY_SOURCE}/hwy/aligned_allocator.cc ${TARVIK_HIGHWAY_SOURCE}/hwy/targets.cc)
target_compile_features (tarvik_highway PUBLIC cxx_std_17)
target_include_directories (tarvik_highway PRIVATE ${TARVIK_HIGHWAY_SOURCE})
add_library (hwy::hwy ALIAS tarvik_highway)

# Stands on the line before LAPACK, whose own routines of these names then stay out.
add_library (tarvik_substitute_code OBJECT ${CMAKE_SOURCE_DIR}/source/portable/Substitutes.cpp)
target_compile_options (tarvik_substitute_code PRIVATE $<TARGET_PROPERTY:tarvik41-dsp,COMPILE_OPTIONS>)
add_library (tarvik_substitutes INTERFACE)
target_link_libraries (tarvik_substitutes INTERFACE -Wl,--wrap=stderr,--wrap=hypot,--wrap=hypotf
                                                    $<TARGET_OBJECTS:tarvik_substitute_code>)

# Archives stand before shared libraries of the same name: those that CMake looks for, and those that JUCE and others name
# to the linker. An archive does not tell what it needs, so all come once more at the end of each line.
set (CMAKE_FIND_LIBRARY_SUFFIXES .a)
set (archive_folder ${CMAKE_BINARY_DIR}/archives)
set (archive_line "-Wl,--start-group")
file (MAKE_DIRECTORY ${archive_folder})

foreach (name IN ITEMS brotlicommon brotlidec freetype jpeg png16 z)
    execute_process (COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=lib${name}.a OUTPUT_VARIABLE archive
                     OUTPUT_STRIP_TRAILING_WHITESPACE)

    if (NOT IS_ABSOLUTE "${archive}")
        message (FATAL_ERROR "There is no lib${name}.a, which TARVIK_PORTABLE links")
    endif()

    file (CREATE_LINK ${archive} ${archive_folder}/lib${name}.a SYMBOLIC)
    string (APPEND archive_line " -l${name}")
endforeach()

link_directories (BEFORE ${archive_folder})
set (CMAKE_CXX_STANDARD_LIBRARIES "${archive_line} -Wl,--end-group")

# The map tells scripts/package.sh whose archives went in, and so which licences go along.
add_link_options (-static-libgcc -static-libstdc++ "LINKER:-Map=${CMAKE_BINARY_DIR}/$<TARGET_PROPERTY:NAME>.map")
