#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes the reference of the public headers, the constants and the documents with Doxygen. Fails on every warning, an
# undocumented entity included, on a link that leads nowhere and on text that was left as markdown.
#
#     scripts/reference.sh [FOLDER]   the pages, in FOLDER/html; FOLDER is build/reference by default
#     scripts/reference.sh --check    nothing is kept
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
need doxygen doxygen python3 python3

folder=${1:-build/reference}
if [ "$folder" = --check ]; then
    folder=$(mktemp -d)
    trap 'rm -rf "$folder"' EXIT
fi
rm -rf "$folder/html" "$folder/input"
python3 -B docs/reference/input.py "$folder/input"
python3 -B docs/reference/pages.py "$folder/input/docs/reference"
NXCORE_VERSION=$(sed -n 's/^project(nxcore VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
NXCORE_SOURCE=$PWD
NXCORE_REFERENCE=$(cd "$folder" && pwd)
export NXCORE_VERSION NXCORE_SOURCE NXCORE_REFERENCE
(cd "$folder/input" && doxygen "$NXCORE_SOURCE/docs/Doxyfile")
python3 -B docs/reference/search.py "$folder/html"
# The results of a search are a document of their own, which gets no style sheet but this one.
cat docs/reference/reference.css >>"$folder/html/search/search.css"
python3 -B tests/docs/reference.py "$folder/html" tests/package/texts.txt
[ "${1:-}" = --check ] || echo "$folder/html/index.html"
