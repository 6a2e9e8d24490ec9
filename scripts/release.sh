#!/usr/bin/env bash
# Builds the Debian packages into build/packages.
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
need_build_tools
need dpkg-deb dpkg file file dpkg-shlibdeps dpkg-dev

cmake --preset release
cmake --build --preset release
cpack --config build/release/CPackConfig.cmake -B build/packages
rm -rf build/packages/_CPack_Packages
ls -l build/packages/*.deb
