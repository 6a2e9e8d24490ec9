# SPDX-License-Identifier: Apache-2.0
# An absolute folder inside the prefix, as some packagers pass it, becomes the relative one that all else is written for: the
# package may be moved. One outside cannot move with it.

foreach(kind BINDIR LIBDIR INCLUDEDIR DATADIR DOCDIR MANDIR)
    set(folder "${CMAKE_INSTALL_${kind}}")
    cmake_path(IS_ABSOLUTE folder isAbsolute)
    if(NOT isAbsolute)
        continue()
    endif()
    cmake_path(NORMAL_PATH folder)
    cmake_path(IS_PREFIX CMAKE_INSTALL_PREFIX "${folder}" NORMALIZE isInside)
    if(isInside)
        cmake_path(RELATIVE_PATH folder BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" OUTPUT_VARIABLE CMAKE_INSTALL_${kind})
    elseif(PROJECT_IS_TOP_LEVEL)
        message(FATAL_ERROR "CMAKE_INSTALL_${kind} is ${folder}, outside of CMAKE_INSTALL_PREFIX, ${CMAKE_INSTALL_PREFIX}: give "
            "a folder inside the prefix, relative or absolute")
    endif()
endforeach()
