#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the Debian packages into build/packages, then unpacks them elsewhere and compiles and runs a program with them.
#
#     scripts/release.sh                the packages
#     scripts/release.sh --reproduce    builds them once more from a copy of the source in another folder, and compares
#
# Two builds of one commit give the same packages, wherever they are made.
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
need "${build_tools[@]}" doxygen doxygen python3 python3 dpkg-deb dpkg file file dpkg-shlibdeps dpkg-dev objcopy binutils gdb gdb pkg-config pkg-config

# All files get the time of the commit.
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct 2>/dev/null || date +%s)}
export SOURCE_DATE_EPOCH
umask 022
# A compiler cache may replay objects with the folders of another build in their debug information.
export CCACHE_DISABLE=1

cmake --preset package
cmake --build --preset package
cmake --build --preset package --target reference
# The libraries and tools of an earlier run are kept; cpack writes all packages again.
rm -rf build/packages
cpack --config build/package/CPackConfig.cmake -B build/packages
rm -rf build/packages/_CPack_Packages
ls -l build/packages
bash tests/package/debs.sh "$PWD/build/packages" "$PWD"

if [ "${1:-}" = --reproduce ]; then
    copy=$(mktemp -d)
    trap 'rm -rf "$copy"' EXIT
    mkdir "$copy/source"
    git ls-files -z | xargs -0 cp -a --parents -t "$copy/source"
    cmake -S "$copy/source" --preset package >"$copy/log"
    cmake --build "$copy/source/build/package" >>"$copy/log"
    cpack --config "$copy/source/build/package/CPackConfig.cmake" -B "$copy/packages" >>"$copy/log"
    for package in build/packages/*deb; do
        cmp "$package" "$copy/packages/${package##*/}"
    done
    echo "Both builds give the same packages."
fi
