# LAPACK and BLAS for the roots of polynomials, the reference versions and as archives: those that the system has chosen as
# its shared ones may take memory or start threads, and designs may run on the audio thread.
if (WIN32)
    find_library (LAPACK_ARCHIVE NAMES liblapack_dgeev.a REQUIRED) # with what it calls of BLAS: scripts/windows/libraries.sh
    add_library (tarvik_linear_algebra INTERFACE)
    target_link_libraries (tarvik_linear_algebra INTERFACE ${LAPACK_ARCHIVE} gfortran quadmath)
    return()
endif()

find_library (LAPACK_ARCHIVE NAMES liblapack_pic.a REQUIRED)
find_library (BLAS_ARCHIVE NAMES libblas.a HINTS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/blas NO_DEFAULT_PATH REQUIRED)

add_library (tarvik_linear_algebra INTERFACE)
target_link_libraries (tarvik_linear_algebra
                       INTERFACE $<TARGET_NAME_IF_EXISTS:tarvik_substitutes> ${LAPACK_ARCHIVE} ${BLAS_ARCHIVE}
                                 $<$<NOT:$<BOOL:${TARVIK_PORTABLE}>>:gfortran>)
