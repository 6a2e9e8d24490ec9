#!/usr/bin/env bash
# Installs the build into a scratch prefix, moves it, and builds and runs the consumer against it in one of the three ways.
#
#     consume.sh find_package|pkg-config|add_subdirectory BUILD SOURCE SCRATCH LIBDIR CXX
set -eu
way=$1 build=$2 source=$3 scratch=$4 libdir=$5 cxx=$6

rm -rf "$scratch" && mkdir -p "$scratch"
prefix=$scratch/moved
if [ "$way" != add_subdirectory ]; then
    cmake --install "$build" --prefix "$scratch/installed" >"$scratch/install.log"
    mv "$scratch/installed" "$prefix"  # nothing in the package may know where it was installed first
fi

case $way in
find_package)
    cmake -S "$source/tests/consumer" -B "$scratch/build" -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_PREFIX_PATH="$prefix" >"$scratch/configure.log"
    cmake --build "$scratch/build" >"$scratch/build.log"
    program=$scratch/build/consumer
    ;;
pkg-config)
    export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
    # shellcheck disable=SC2046
    "$cxx" -std=c++20 "$source/tests/consumer/main.cpp" -o "$scratch/consumer" $(pkg-config --cflags --libs nxcore) -Wl,-rpath,"$prefix/$libdir"
    program=$scratch/consumer
    ;;
add_subdirectory)
    cmake -S "$source/tests/consumer" -B "$scratch/build" -G Ninja -DCMAKE_CXX_COMPILER="$cxx" -DNXCORE_SOURCE="$source" >"$scratch/configure.log"
    if grep -qE 'NXCORE_BUILD_(TESTS|TOOLS|EXAMPLES|BENCHMARKS):BOOL=ON' "$scratch/build/CMakeCache.txt"; then
        echo "a part of another project must build the library alone"; exit 1
    fi
    cmake --build "$scratch/build" >"$scratch/build.log"
    program=$scratch/build/consumer
    ;;
esac

[ "$("$program")" = "$(sed -n 's/.*NX_CORE_VERSION "\(.*\)"/\1/p' "$build/generated/core/nxVersion.h") not found" ]
