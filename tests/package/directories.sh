#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Absolute folders inside the prefix are installed like relative ones, and folders outside the prefix are refused:
# directories.sh SOURCE SCRATCH CXX. Nothing is built.
set -eu
source=$1 scratch=$2 cxx=$3
prefix=$scratch/prefix

# What would be installed, and where, with LIBDIR in PREFIX.
plan() {
    cmake -S "$source" -B "$scratch/build" -DCMAKE_CXX_COMPILER="$cxx" -DNXCORE_BUILD_TESTS=OFF -DNXCORE_BUILD_EXAMPLES=OFF \
        -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR="$1" -DCMAKE_INSTALL_INCLUDEDIR="$2" >"$scratch/log" 2>&1 || return 1
    cat "$scratch/build/nxcore.pc"
    find "$scratch/build" -name cmake_install.cmake -exec cat {} +
}

rm -rf "$scratch" && mkdir -p "$scratch"
relative=$(plan lib/many include/our)
[ -n "$relative" ]
absolute=$(plan "$prefix/lib/many" "$prefix/./include/our")
diff <(printf '%s\n' "$relative") <(printf '%s\n' "$absolute")
if plan "$scratch/elsewhere/lib" include/our; then
    echo "a folder outside the prefix is accepted"
    exit 1
fi
grep -q "CMAKE_INSTALL_LIBDIR is" "$scratch/log"
