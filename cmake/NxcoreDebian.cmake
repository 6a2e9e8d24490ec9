# SPDX-License-Identifier: Apache-2.0
# What a Debian package holds beside the files that are installed: copyright, changelog, the trigger of the linker's cache,
# and the version on which other packages depend.

set(debian "${PROJECT_SOURCE_DIR}/cmake/debian")
set(library "libnxcore${PROJECT_VERSION_MAJOR}")

# The packages' changelog, compressed as Debian wants it and without the time at which that was done.
find_program(NXCORE_GZIP gzip REQUIRED)
set(changelog "${PROJECT_BINARY_DIR}/debian/changelog.gz")
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)  # or what SOURCE_DATE_EPOCH says
file(WRITE "${PROJECT_BINARY_DIR}/debian/changelog" "nxcore (${PROJECT_VERSION}) unstable; urgency=medium

  * See CHANGELOG.md in the package nxcore-doc for the changes of each version.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
execute_process(COMMAND "${NXCORE_GZIP}" -9nc "${PROJECT_BINARY_DIR}/debian/changelog" OUTPUT_FILE "${changelog}"
    COMMAND_ERROR_IS_FATAL ANY)
foreach(component ${CPACK_COMPONENTS_ALL})
    string(TOUPPER ${component} name)
    install(FILES "${changelog}" "${debian}/copyright"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${name}_PACKAGE_NAME}" COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()

# A package that links the library depends on this minor version or a later one. There is no list by symbols beside it: a
# program also has inline code of the headers that it was built with, so that it needs their version even where it uses
# nothing new.
set(shlibs "${PROJECT_BINARY_DIR}/debian/shlibs")
file(WRITE "${shlibs}" "libnxcore ${PROJECT_VERSION_MAJOR} ${library} (>= ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.0)\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${debian}/triggers;${shlibs}")
