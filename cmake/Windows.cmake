# What is otherwise when the build is for Windows, beside cmake/WindowsToolchain.cmake.
set (TARVIK_SYSTEM windows)

set (CMAKE_FIND_LIBRARY_SUFFIXES .a) # not the .dll.a of those that are there both ways

# JUCE on Linux takes these from its own configuration.
find_package (JPEG REQUIRED)
find_package (ZLIB REQUIRED)

# Before the compiler's own functions of mathematics, which round some results differently from glibc's.
find_library (TARVIK_MATHEMATICS NAMES libtarvik_mathematics.a REQUIRED)

# The last ones are Windows' own. JUCE names most of them to Microsoft's linker alone.
set (TARVIK_SYSTEM_LIBRARIES ${TARVIK_MATHEMATICS} JPEG::JPEG PNG::PNG ZLIB::ZLIB
                             ole32 oleaut32 uuid gdi32 comdlg32 imm32 shlwapi winmm ws2_32 version wininet dxgi)

# Where Wine shows this machine's files.
set (TARVIK_ROOT Z:)

# The calls that tests/support/windows/RealTimeTrap.cpp stands in front of, for the whole test program.
set (TARVIK_TRAP_LINKING "")
foreach (function IN ITEMS malloc calloc realloc free _aligned_malloc _aligned_realloc _aligned_free pthread_mutex_lock
                           __imp_EnterCriticalSection)
    list (APPEND TARVIK_TRAP_LINKING -Wl,--wrap=${function})
endforeach()

include_directories (BEFORE ${CMAKE_CURRENT_LIST_DIR}/windows) # jpeglib.h

# Its header would take the library for a DLL.
add_compile_definitions (FLAC__NO_DLL)

# Has a module export the names of a .def file. MinGW's linker would show everything otherwise.
function (tarvik_show_windows_entries target file)
    target_sources (${target} PRIVATE ${file})
    target_link_options (${target} PRIVATE -Wl,--exclude-all-symbols -Wl,--gc-sections)
endfunction()
