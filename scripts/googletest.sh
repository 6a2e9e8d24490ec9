#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Sourced by scripts/arm.sh and scripts/toolchains.sh: GoogleTest for a tool chain that cannot use the system's.

# step FOLDER NAME COMMAND...: runs the command quietly into FOLDER/NAME.log, and shows the faults when it fails.
step()
{
    local log=$1/$2.log
    shift 2
    "$@" >"$log" 2>&1 || { grep -aE 'error|FAILED' "$log" || tail -n 30 "$log"; return 1; }
}

# build_googletest FOLDER ARGUMENT...: builds it from Debian's sources and installs it into FOLDER/prefix, once. The arguments
# are for CMake.
build_googletest()
{
    local folder=$1
    shift
    [ ! -e "$folder/prefix/lib/cmake/GTest/GTestConfig.cmake" ] || return 0
    mkdir -p "$folder"
    step "$folder" googletest-configure cmake -S /usr/src/googletest -B "$folder/googletest" -G Ninja \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$folder/prefix" "$@" &&
        step "$folder" googletest cmake --build "$folder/googletest" --target install
}
