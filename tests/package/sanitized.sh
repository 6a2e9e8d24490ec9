#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The thread sanitizer of a program finds no race with a library that is built without it: sanitized.sh CXX LIBRARY FOLDER...
set -eu
cxx=$1 library=$2
program=$(mktemp)
trap 'rm -f "$program"' EXIT
flags=(-std=c++20 -O1 -g -fsanitize=thread -pthread "${@:3}")
if ! echo 'int main() {}' | "$cxx" "${flags[@]}" -x c++ - -o "$program" || ! "$program"; then
    echo "skipped: no thread sanitizer"; exit 77
fi
"$cxx" "${flags[@]}" "${0%.sh}.cpp" -o "$program" "$library" "-Wl,-rpath,${library%/*}"
"$program"
