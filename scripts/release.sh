#!/usr/bin/env bash
# Builds the Debian packages into build/packages, then unpacks them elsewhere and compiles and runs a program with them.
# Two builds of one commit give the same packages, wherever they are made.
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
need_build_tools
need dpkg-deb dpkg file file dpkg-shlibdeps dpkg-dev objcopy binutils

# All files get the time of the commit.
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct 2>/dev/null || date +%s)}
export SOURCE_DATE_EPOCH
umask 022

cmake --preset package
cmake --build --preset package
# The libraries and tools of an earlier run are kept; cpack writes all packages again.
rm -rf build/packages
cpack --config build/package/CPackConfig.cmake -B build/packages
rm -rf build/packages/_CPack_Packages
ls -l build/packages
bash tests/package/debs.sh "$PWD/build/packages" "$PWD"
