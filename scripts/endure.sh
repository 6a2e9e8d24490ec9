#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Looks for crashes, hangs, wrong results and lost data, for as many minutes as it is told.
#
#     scripts/endure.sh [--minutes N] [--only ROW]...      N from 1
#
# The rows are in scripts/endure/*.sh; scripts/test.sh runs the short form of each. Inputs that the fuzz targets find
# interesting are kept in build/endure/corpus, and the next run continues from there. A table of figures ends the run;
# the exit code is 1 when any row found a fault.
set -u
cd "$(dirname "$0")/.."
. scripts/packages.sh

minutes=10
only=()
usage() { sed -n '2,8s/^# \{0,1\}//p' "$0"; exit 2; }
while [ $# -gt 0 ]; do
    [ $# -ge 2 ] || usage
    case $1 in
    --minutes) minutes=$2; shift 2 ;;
    --only) only+=("$2"); shift 2 ;;
    *) usage ;;
    esac
done
# The rows take a time of 0 as no limit.
[[ $minutes =~ ^[1-9][0-9]{0,5}$ ]] || usage

# The rows take as long as they are told, and end their tests themselves.
export NX_TEST_SECONDS=0
mkdir -p build/endure
rows=()     # name:share of the time
results=()
faults=0

# add_row NAME SHARE: declares row_NAME, which gets SHARE parts of the time.
add_row() { rows+=("$1:$2"); }

# report NAME FIGURES FAULTS: what a row found; called by the rows.
report()
{
    results+=("$(printf '%-14s %-78s %s' "$1" "$2" "$([ "$3" = 0 ] && echo 'no fault' || echo "FAULTS: $3")")")
    [ "$3" = 0 ] || faults=1
}

# build PRESET: configures and builds it, quietly.
build()
{
    mkdir -p "build/endure"
    cmake --preset "$1" >"build/endure/$1.log" 2>&1 && cmake --build --preset "$1" >>"build/endure/$1.log" 2>&1 ||
        { tail -n 20 "build/endure/$1.log"; return 1; }
}

# run_tests PRESET PROGRAM FILTER: the tests of one program that match; what they printed is in build/endure/PROGRAM.log.
run_tests() { "build/$1/tests/$2" --gtest_brief=1 --gtest_filter="$3" >"build/endure/$2.log" 2>&1; }

for file in scripts/endure/*.sh; do
    # shellcheck source=/dev/null
    . "$file"
done

need_test_tools && need_clang_tools || exit 1
need /usr/sbin/logrotate logrotate gzip gzip xz xz-utils zstd zstd

wanted() { [ ${#only[@]} -eq 0 ] || printf '%s\n' "${only[@]}" | grep -qx "$1"; }
parts=0
for row in "${rows[@]}"; do
    wanted "${row%%:*}" && parts=$((parts + ${row##*:}))
done
[ "$parts" -gt 0 ] || { echo "endure: no such row; there are: ${rows[*]%%:*}" >&2; exit 2; }

for row in "${rows[@]}"; do
    name=${row%%:*}
    wanted "$name" || continue
    seconds=$((minutes * 60 * ${row##*:} / parts))
    printf '== %s, %d s\n' "$name" "$seconds"
    "row_$name"
done

printf '\n%s\n' "== Endurance, $minutes minutes"
printf '%s\n' "${results[@]}"
exit $faults
