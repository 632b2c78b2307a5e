# Puts the pictures of source/editor/PictureCatalogue.h and the window's font into a target as constant data: one symbol for
# each file, with its size beside it. An assembler file that includes them is ready at once and costs no compiler.
function (tarvik_embed_resources target catalogue picture_folder font)
    set_property (DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${catalogue})
    file (READ ${catalogue} text)
    string (REGEX MATCHALL "    X \\([A-Za-z0-9]+, +\"[a-z0-9-]+\"" rows "${text}")
    set (files ${font})
    set (symbols tarvikFont)

    foreach (row IN LISTS rows)
        string (REGEX MATCH "\\(([A-Za-z0-9]+), +\"([a-z0-9-]+)\"" row_start "${row}")
        list (APPEND files ${picture_folder}/${CMAKE_MATCH_2}.png)
        list (APPEND symbols tarvikPicture_${CMAKE_MATCH_1})
    endforeach()

    # ELF is told that the code needs no executable stack, and that the symbols are not for other modules. The format of
    # Windows knows neither.
    if (WIN32)
        set (text "")
        set (section ".section .rdata,\"dr\"")
        set (visibility "")
    else()
        set (text ".section .note.GNU-stack,\"\",%progbits\n")
        set (section ".section .rodata.@symbol@,\"a\",%progbits")
        set (visibility ".hidden @symbol@, @symbol@_size")
    endif()

    foreach (file symbol IN ZIP_LISTS files symbols)
        if (NOT EXISTS ${file})
            message (FATAL_ERROR "The window needs ${file}: see resources/README.md")
        endif()

        string (CONFIGURE "${section}" own_section @ONLY)
        string (CONFIGURE "${visibility}" own_visibility @ONLY)
        string (APPEND text "
${own_section}
.global ${symbol}, ${symbol}_size
${own_visibility}
.balign 16
${symbol}:
    .incbin \"${file}\"
${symbol}_end:
    .balign 8
${symbol}_size:
    .quad ${symbol}_end - ${symbol}
")
    endforeach()

    set (assembler_file ${CMAKE_CURRENT_BINARY_DIR}/EmbeddedResources.s)
    file (CONFIGURE OUTPUT ${assembler_file} CONTENT "${text}" @ONLY)
    set_source_files_properties (${assembler_file} PROPERTIES OBJECT_DEPENDS "${files}")
    target_sources (${target} PRIVATE ${assembler_file})
endfunction()
