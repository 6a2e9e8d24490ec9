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
    # The cross compiler's libraries are said to be those of one processor, which a package for that one does not say.
    file(READ "${folder}/DEBIAN/control" control)
    string(REGEX REPLACE "([a-z0-9+.-]+):arm64" "\\1" control "${control}")
    file(WRITE "${folder}/DEBIAN/control" "${control}")
    execute_process(COMMAND dpkg-deb --root-owner-group -b "${folder}" "${package}" OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
