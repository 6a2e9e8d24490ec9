# SPDX-License-Identifier: Apache-2.0
# Run by cpack when the packages are made. It takes out of them what cpack puts in and Debian does not want: in the checksums
# of debug packages the folder where they were packed, and scripts that renew the linker's cache beside the trigger that does.

foreach(package IN LISTS CPACK_PACKAGE_FILES)
    set(folder "${CPACK_TEMPORARY_DIRECTORY}/finish")
    file(REMOVE_RECURSE "${folder}")
    execute_process(COMMAND dpkg-deb -R "${package}" "${folder}" COMMAND_ERROR_IS_FATAL ANY)
    file(READ "${folder}/DEBIAN/md5sums" sums)
    string(REGEX REPLACE "(^|\n)([0-9a-f]+)  /[^\n]*-dbgsym/usr/" "\\1\\2  usr/" sums "${sums}")
    file(WRITE "${folder}/DEBIAN/md5sums" "${sums}")
    if(EXISTS "${folder}/DEBIAN/triggers")
        file(REMOVE "${folder}/DEBIAN/postinst" "${folder}/DEBIAN/postrm")
    endif()
    if(CPACK_NXCORE_CROSS_COMPILER)
        # The cross compiler's libraries have names of their own, and their packages ask for no version of the C++ library.
        file(READ "${folder}/DEBIAN/control" control)
        string(REGEX REPLACE "(-arm64-cross|:arm64)" "" control "${control}")
        string(REGEX REPLACE "libstdc\\+\\+6([,\n])" "libstdc++6 (>= ${CPACK_NXCORE_CROSS_COMPILER})\\1" control "${control}")
        file(WRITE "${folder}/DEBIAN/control" "${control}")
    endif()
    execute_process(COMMAND dpkg-deb --root-owner-group -b "${folder}" "${package}" OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
