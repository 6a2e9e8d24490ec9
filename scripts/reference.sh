#!/usr/bin/env bash
# Makes the reference of the public headers with Doxygen; fails on every warning, an undocumented entity included.
#
#     scripts/reference.sh            the pages, in build/reference/html
#     scripts/reference.sh --check    the warnings alone
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
need doxygen doxygen

version=$(sed -n 's/^project(nxcore VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
settings=("PROJECT_NUMBER = $version")
if [ "${1:-}" = --check ]; then
    scratch=$(mktemp -d)
    trap 'rm -rf "$scratch"' EXIT
    settings+=("OUTPUT_DIRECTORY = $scratch" "GENERATE_HTML = NO" "GENERATE_XML = YES")
else
    mkdir -p build
fi
{ cat docs/Doxyfile; printf '%s\n' "${settings[@]}"; } | doxygen -
[ "${1:-}" = --check ] || echo "build/reference/html/index.html"
