#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The main job, for a newcomer: builds nxtick and snaps forty years of oil prices to an exchange's tick table.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need_build_tools

build=build/demo
table=VTT_CHIX_CPH1
prices=examples/data/wti-daily.csv
snapped=$build/wti-snapped.csv
nxtick=$build/tools/nxtick/nxtick

bold='' plain=''
if [ -t 1 ] && [ -z "${NO_COLOR:-}" ]; then bold=$'\e[1m' plain=$'\e[0m'; fi
heading() { printf '\n%s%s%s\n\n' "$bold" "$1" "$plain"; }
# Shows a command as one would type it, and runs it.
show()
{
    printf '$ nxtick %s\n' "$*"
    "$nxtick" "$@"
}
# Lines up the columns of the snapped file.
rows() { awk -F, '{printf "%-12s", $1; for (i = 2; i <= NF; ++i) printf "%10s", $i; print ""}'; }

if [ ! -x "$nxtick" ]; then echo "Building nxtick, once; this takes a minute or two."; fi
mkdir -p "$build"
if ! { cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DNXCORE_BUILD_TESTS=OFF -DNXCORE_BUILD_EXAMPLES=OFF &&
    cmake --build "$build" --target nxtick; } >"$build/build.log" 2>&1; then
    grep -E 'error|Error' "$build/build.log" >&2 || tail -n 20 "$build/build.log" >&2
    echo "The build failed; all of it is in $build/build.log" >&2
    exit 1
fi

heading "A tick table: how large one price step is depends on the price"
show -table $table

heading "The daily price of a barrel of oil since 1986, every price snapped to that table"
show -table $table -csv $prices -column Price -out $snapped

heading "The first rows: the price, its tick, the price on the grid, the distance, the grid below and above"
head -n 6 "$snapped" | rows

heading "April 2020, when a barrel cost less than nothing"
{ head -n 1 "$snapped"; grep -B 3 -A 3 '^2020-04-20' "$snapped"; } | rows

heading "A price ladder where the tick changes"
show -table $table -price 249.75 -ladder 3

last=$(tail -n 1 "$prices" | cut -d, -f2)
heading "A ladder around the last price, $last"
show -table $table -price "$last" -ladder 5

"$nxtick" -table $table -chart "$build/tick-sizes.svg"
heading "Next"
printf '  %-36s %s\n' "$snapped" "the rows, all of them" "$build/tick-sizes.svg" "the table as a picture" \
    "$nxtick -help" "what else it can do" "examples/" "programs to copy from"
