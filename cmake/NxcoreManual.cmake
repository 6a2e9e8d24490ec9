# SPDX-License-Identifier: Apache-2.0
# Manual pages, which the tools' package has.

find_program(NXCORE_GZIP gzip)

# Installs `page`, a file such as nxtick.1, with the version in it. Compressed where gzip is, without the time at which that
# was done.
function(nxcore_install_manual page)
    get_filename_component(name "${page}" NAME)
    string(REGEX MATCH "[0-9]$" section "${name}")
    set(manual "${PROJECT_BINARY_DIR}/manual/${name}")
    configure_file("${page}" "${manual}" @ONLY)
    if(NXCORE_GZIP)
        execute_process(COMMAND "${NXCORE_GZIP}" -9nc "${manual}" OUTPUT_FILE "${manual}.gz" COMMAND_ERROR_IS_FATAL ANY)
        string(APPEND manual ".gz")
    endif()
    install(FILES "${manual}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man${section}" COMPONENT tools)
endfunction()
