#!/usr/bin/env bash
# Every public header compiles alone, with the strictest warnings as errors: headers.sh COMPILER SOURCE GENERATED
set -u
compiler=$1 source=$2 generated=$3
cd "$source" || exit 1

check()
{
    "$compiler" -std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wsign-conversion -Wold-style-cast -Werror \
        -I. -I"$generated" -include "$1" -x c++ /dev/null || { echo "$1"; return 1; }
}
export -f check
export compiler generated
if [ ! -e /usr/include/fmt/format.h ]; then skip=nxFmt.h; fi  # the one header that needs another library
find core ! -name "${skip:-none}" -name '*.h' -print0 | xargs -0 -P "$(nproc)" -I{} bash -c 'check "{}"'
