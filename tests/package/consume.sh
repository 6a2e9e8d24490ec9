#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds and runs the consumer against the library in one of three ways. As a part of the consumer's build it is static.
#
#     consume.sh find_package|pkg-config PREFIX SOURCE SCRATCH LIBDIR CXX     against an installation
#     consume.sh add_subdirectory - SOURCE SCRATCH - CXX                     as a part of the consumer's own build
set -eu
way=$1 prefix=$2 source=$3 scratch=$4 libdir=$5 cxx=$6

# Shows the output of a build only when it fails.
build() { cmake --build "$1" >"$scratch/build.log" || { cat "$scratch/build.log"; exit 1; }; }

rm -rf "$scratch" && mkdir -p "$scratch"
case $way in
find_package)
    cmake -S "$source/tests/consumer" -B "$scratch/build" -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_PREFIX_PATH="$prefix" >"$scratch/configure.log"
    build "$scratch/build"
    program=$scratch/build/consumer
    ;;
pkg-config)
    export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
    # shellcheck disable=SC2046
    "$cxx" -std=c++20 -Wall -Wextra -Werror "$source/tests/consumer/main.cpp" -o "$scratch/consumer" $(pkg-config --define-variable=prefix="$prefix" --cflags --libs nxcore) -Wl,-rpath,"$prefix/$libdir"
    program=$scratch/consumer
    ;;
add_subdirectory)
    cmake -S "$source/tests/consumer" -B "$scratch/build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DNXCORE_UNITY=ON -DNXCORE_PRECOMPILED=ON -DBUILD_SHARED_LIBS=OFF -DCMAKE_CXX_COMPILER="$cxx" -DNXCORE_SOURCE="$source" >"$scratch/configure.log"
    if grep -qE 'NXCORE_BUILD_(TESTS|TOOLS|EXAMPLES|BENCHMARKS):BOOL=ON' "$scratch/build/CMakeCache.txt"; then
        echo "a part of another project must build the library alone"; exit 1
    fi
    build "$scratch/build"
    program=$scratch/build/consumer
    cmake --install "$scratch/build" --prefix "$scratch/installed" >"$scratch/install.log"
    if [ -e "$scratch/installed" ]; then
        echo "a part of another project must not be installed with it"; exit 1
    fi
    ;;
esac

version=$(sed -n 's/^project(nxcore VERSION \([0-9.]*\).*/\1/p' "$source/CMakeLists.txt")
[ "$("$program")" = "$version not found" ]
