#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The main job, for a newcomer: builds nxtick and snaps forty years of oil prices to the tick that oil trades in.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
need_build_tools

build=build/demo
prices=examples/data/wti-daily.csv
oil=(-tables examples/data/oil-ticks.csv -table NYMEX_CL)
shares=JPX_TOPIX500
averages=$build/wti-averages.csv
snapped=$build/wti-snapped.csv
nxtick=$build/tools/nxtick/nxtick
bonds=$build/examples/example_bond_values

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

if [ ! -x "$nxtick" ] || [ ! -x "$bonds" ]; then echo "Building nxtick and an example, once; this takes a minute or two."; fi
mkdir -p "$build"
if ! { cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DNXCORE_BUILD_TESTS=OFF -DNXCORE_BUILD_EXAMPLES=ON &&
    cmake --build "$build" --target nxtick example_bond_values; } >"$build/build.log" 2>&1; then
    grep -E 'error|Error' "$build/build.log" >&2 || tail -n 20 "$build/build.log" >&2
    echo "The build failed; all of it is in $build/build.log" >&2
    exit 1
fi

heading "What oil trades in: the tick of the futures on a barrel, from a file with its source"
show "${oil[@]}"

heading "Is every daily price since 1986 one that an order could have? What is off the grid would be moved"
show "${oil[@]}" -csv $prices -column Price -out "$build/wti-prices.csv"

# A mean of five prices has a tenth of a cent, which no order may have.
awk -F, 'NR == 1 {print "Date,Price,Average"; next}
    {sum += $2 - last[NR % 5]; last[NR % 5] = $2; if (NR > 5) printf "%s,%s,%.3f\n", $1, $2, sum / 5}' $prices >"$averages"
heading "The average of five days is no price of an order. Snapped, it is one"
show "${oil[@]}" -csv "$averages" -column Average -out "$snapped"

heading "The first rows: the average, its tick, the price on the grid, the distance, the grid below and above"
head -n 6 "$snapped" | rows

heading "April 2020, when a barrel cost less than nothing"
{ head -n 1 "$snapped"; grep -B 3 -A 3 '^2020-04-20' "$snapped"; } | rows

heading "Where the tick depends on the price: shares in Tokyo, one of the tables of today"
show -table $shares

heading "A price ladder where that tick changes"
show -table $shares -price 3001 -ladder 3

heading "The same for a program"
show -table $shares -price 3001 -ladder 1 -format json

heading "A program with the library: bonds in 32nds, rounded and valued in euros on two threads"
printf '$ %s examples/data %s\n' "$bonds" "$build/bond-values.csv"
"$bonds" examples/data "$build/bond-values.csv"

"$nxtick" -quiet -table $shares -chart "$build/tick-sizes.svg"
heading "Next"
printf '  %-36s %s\n' "$snapped" "the rows, all of them" "$build/tick-sizes.svg" "the shares' table as a picture" \
    "$build/bond-values.csv" "the values of the bonds" \
    "$nxtick -list" "the other tables, with sources" "$nxtick -help" "what else it can do" "examples/" "programs to copy from"
