# SPDX-License-Identifier: Apache-2.0
# The versions of the exported symbols, by which the loader refuses a program that needs a later library.
#
# symbols/1.N.txt has the names that came with version 1.N. It is made once, when that version is released
# (`cmake --build --preset release --target freeze_symbols`), and never changes again. Everything that is in none of the
# lists gets the version that is being built, so that a new function needs no entry anywhere. A new major version begins
# without lists. 1.0 was released without versions: its list has what was exported when versions were introduced.

set(frozen "${PROJECT_SOURCE_DIR}/cmake/symbols")
set(script "")
set(previous "")
foreach(minor RANGE 0 ${PROJECT_VERSION_MINOR})
    if(minor EQUAL 0)
        set(node NXCORE_1)
    else()
        set(node "NXCORE_1.${minor}")
    endif()
    if(minor EQUAL PROJECT_VERSION_MINOR)
        set(names "*")
    elseif(EXISTS "${frozen}/1.${minor}.txt")
        file(STRINGS "${frozen}/1.${minor}.txt" names)
    else()
        message(FATAL_ERROR "cmake/symbols/1.${minor}.txt is missing: build version 1.${minor} with the target freeze_symbols")
    endif()
    string(APPEND script "${node} {\n")
    foreach(name IN LISTS names)
        string(APPEND script "    ${name};\n")
    endforeach()
    string(APPEND script "}${previous};\n")
    set(previous " ${node}")
endforeach()
set(NXCORE_VERSION_SCRIPT "${PROJECT_BINARY_DIR}/generated/nxcore.map")
file(CONFIGURE OUTPUT "${NXCORE_VERSION_SCRIPT}" CONTENT "${script}" @ONLY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${frozen}")
