#!/usr/bin/env bash
# Builds the library and everything on it, then runs every test.
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
need_test_tools

cmake --preset release
cmake --build --preset release
ctest --preset release --no-tests=error --output-on-failure -j "$(nproc)"
