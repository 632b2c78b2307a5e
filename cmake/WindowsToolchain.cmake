# Windows, x86-64, by Debian's MinGW-w64 with POSIX threads. Used by the preset `windows` and for the libraries that
# scripts/windows/libraries.sh puts into the prefix.
set (CMAKE_SYSTEM_NAME Windows)
set (CMAKE_SYSTEM_PROCESSOR x86_64)

set (mingw x86_64-w64-mingw32)
set (CMAKE_C_COMPILER ${mingw}-gcc-posix)
set (CMAKE_CXX_COMPILER ${mingw}-g++-posix)
set (CMAKE_Fortran_COMPILER ${mingw}-gfortran-posix)
set (CMAKE_RC_COMPILER ${mingw}-windres)

# The stack is aligned to 16 bytes here, but the compiler spills wider vectors to it by moves that trust 32 or 64: they
# would end the process. The assembler writes the unaligned forms instead, which are as fast where the data is aligned.
set (unaligned_moves -Wa,-muse-unaligned-vector-move)
set (CMAKE_C_FLAGS_INIT ${unaligned_moves})
set (CMAKE_CXX_FLAGS_INIT ${unaligned_moves})

# Nothing beside Windows' own DLLs is needed to run.
set (CMAKE_EXE_LINKER_FLAGS_INIT -static)
set (CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set (CMAKE_MODULE_LINKER_FLAGS_INIT -static)

# Programs are this machine's. Headers and libraries are Windows': never those of this machine.
get_filename_component (TARVIK_WINDOWS_PREFIX ${CMAKE_CURRENT_LIST_DIR}/../build/windows/prefix ABSOLUTE)
set (CMAKE_FIND_ROOT_PATH ${TARVIK_WINDOWS_PREFIX} /usr/${mingw})
set (CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set (CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set (CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set (CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
file (GLOB JUCE_DIR /usr/lib/*/cmake/JUCE-*) # sources and a tool of this machine
set (ENV{PKG_CONFIG_LIBDIR} ${TARVIK_WINDOWS_PREFIX}/lib/pkgconfig)
set (ENV{PKG_CONFIG_PATH} "")
