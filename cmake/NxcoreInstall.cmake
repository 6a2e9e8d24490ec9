# SPDX-License-Identifier: Apache-2.0
# What is installed, in four components: runtime, development, tools, documentation. The fifth, sources, is for packages.

include(CMakePackageConfigHelpers)

set(NXCORE_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/nxcore")

install(TARGETS nxcore nxcore_testing EXPORT nxcoreTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
install(EXPORT nxcoreTargets NAMESPACE nxcore:: DESTINATION "${NXCORE_CMAKE_DIR}" COMPONENT development)

# The public headers, and those that they need inline. What lies in internal/ is the library's own, and so are platform/ and
# process/ but for their inline/ folders. A test checks that no installed header includes one that is not, and that none is
# superfluous.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/core" DESTINATION "${NXCORE_INSTALL_INCLUDEDIR}" COMPONENT development
    FILES_MATCHING PATTERN "*.h" PATTERN "*.inc" PATTERN "internal" EXCLUDE PATTERN "platform" EXCLUDE PATTERN "process" EXCLUDE)
foreach(folder platform/inline platform/${NXCORE_SYSTEM}/inline process/inline)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/core/${folder}/" COMPONENT development
        DESTINATION "${NXCORE_INSTALL_INCLUDEDIR}/core/${folder}" FILES_MATCHING PATTERN "*.h" PATTERN "*.inc")
endforeach()
install(FILES "${PROJECT_BINARY_DIR}/generated/core/nxVersion.h"
    DESTINATION "${NXCORE_INSTALL_INCLUDEDIR}/core" COMPONENT development)

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/nxcoreConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/nxcoreConfig.cmake" INSTALL_DESTINATION "${NXCORE_CMAKE_DIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/nxcoreConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/nxcoreConfig.cmake" "${PROJECT_BINARY_DIR}/nxcoreConfigVersion.cmake"
    DESTINATION "${NXCORE_CMAKE_DIR}" COMPONENT development)

# The whole path, which only the installation knows: pkg-config leaves out the folders that compilers search anyway.
set(NXCORE_PC_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
configure_file("${PROJECT_SOURCE_DIR}/cmake/nxcore.pc.in" "${PROJECT_BINARY_DIR}/nxcore.pc" @ONLY)
install(CODE "
    file(READ \"${PROJECT_BINARY_DIR}/nxcore.pc\" text)
    string(REGEX REPLACE \"^prefix=[^\n]*\" \"prefix=\${CMAKE_INSTALL_PREFIX}\" text \"\${text}\")
    file(WRITE \"${PROJECT_BINARY_DIR}/installed/nxcore.pc\" \"\${text}\")
    file(INSTALL \"${PROJECT_BINARY_DIR}/installed/nxcore.pc\" DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${NXCORE_PC_DIR}\")
" COMPONENT development)

# gdb looks for printers under the whole path of the library, which only the installation knows.
install(CODE "
    set(path \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/gdb/auto-load\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}\")
    file(INSTALL \"${PROJECT_SOURCE_DIR}/tools/gdb/nxcore_printers.py\" DESTINATION \"\${path}\"
        RENAME \"libnxcore.so.${PROJECT_VERSION}-gdb.py\")
" COMPONENT development)

# lnav's formats for the log's lines. Debian's lnav finds them by a link in /etc.
set(format "${CMAKE_INSTALL_DATADIR}/nxcore/lnav/nxcore_log.json")
install(FILES "${PROJECT_SOURCE_DIR}/tools/lnav/nxcore_log.json"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/nxcore/lnav" COMPONENT tools)
install(CODE "
    if(CMAKE_INSTALL_PREFIX STREQUAL \"/usr\" AND EXISTS /etc/debian_version)
        file(MAKE_DIRECTORY \"\$ENV{DESTDIR}/etc/lnav/formats/nxcore\")
        file(CREATE_LINK \"/usr/${format}\" \"\$ENV{DESTDIR}/etc/lnav/formats/nxcore/nxcore_log.json\" SYMBOLIC)
    endif()
" COMPONENT tools)

# Laid out as in the source, so that the documents' links lead somewhere.
install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${PROJECT_SOURCE_DIR}/CONTRIBUTING.md" "${PROJECT_SOURCE_DIR}/SECURITY.md"
    "${PROJECT_SOURCE_DIR}/LICENSE"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" "${PROJECT_SOURCE_DIR}/examples"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation
    FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "main.cpp" PATTERN "output.txt" PATTERN "data" EXCLUDE PATTERN "reference" EXCLUDE)
# The reference, if it was made: cmake --build ... --target reference
add_custom_target(reference COMMAND bash "${PROJECT_SOURCE_DIR}/scripts/reference.sh" "${PROJECT_BINARY_DIR}/reference"
    VERBATIM USES_TERMINAL)
install(DIRECTORY "${PROJECT_BINARY_DIR}/reference/html/" DESTINATION "${CMAKE_INSTALL_DOCDIR}/reference"
    COMPONENT documentation OPTIONAL)

# For debuggers. Outside of packages nobody expects them below the prefix.
string(REGEX REPLACE "^/usr/" "" sources "${NXCORE_SOURCES_DIR}")
foreach(folder core tools/nxtick)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}/" DESTINATION "${sources}/${folder}"
        COMPONENT sources EXCLUDE_FROM_ALL FILES_MATCHING PATTERN "*.h" PATTERN "*.inc" PATTERN "*.cpp")
endforeach()
