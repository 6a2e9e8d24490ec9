#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs clang-tidy with the checks of .clang-tidy over core/ and tools/, or over the files and folders named; fails on a finding.
#
#     scripts/tidy.sh [FILE_OR_FOLDER]...
set -u
cd "$(dirname "$0")/.."
. scripts/packages.sh
need_build_tools && need clang-tidy clang-tidy clang++ clang python3 python3 || exit 1

# A compile database of clang's own: it does not know every flag of another compiler.
build=build/tidy
mkdir -p $build
cmake -S . -B $build -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DNXCORE_BUILD_TESTS=OFF -DNXCORE_BUILD_EXAMPLES=OFF >$build/configure.log ||
    { cat $build/configure.log; exit 1; }

[ $# -gt 0 ] || set -- core tools
log=$build/tidy.log
git ls-files -- "$@" | grep '\.cpp$' | xargs -r -P "$(nproc)" -n 1 nice -n 10 clang-tidy -p $build --quiet 2>/dev/null >$log
status=$?
# One header is reported by every source that includes it.
awk '/: (warning|error): /{seen = $0 in printed; printed[$0]} !seen' $log
count=$(grep -E ': (warning|error): ' $log | sort -u | wc -l)
echo "$count findings"
[ $status -eq 0 ] && [ "$count" -eq 0 ]
