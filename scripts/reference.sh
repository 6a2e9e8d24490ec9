#!/usr/bin/env bash
# Makes the reference of the public headers with Doxygen; fails on every warning, an undocumented entity included.
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
need doxygen doxygen
mkdir -p build
doxygen docs/Doxyfile
echo "build/reference/html/index.html"
