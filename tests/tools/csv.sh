#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Rows of prices and what nxtick makes of them.
set -u
. "$(dirname "$0")/cases.sh"

header='D,Price'
added='D,Price,tick,snapped,moved'
while IFS="|" read -r name input output grid moved; do
    run 0 -increment 0.05 -column Price < <(printf '%b' "$input")
    case=$name
    out_is "$output"
    same counts "$grid $moved" "$(awk '/^on the grid/ {grid = $4} /^moved/ {moved = $2} END {print grid, moved}' err)"
done <"$cases/accepted.txt"

# Added columns whose names are taken are named after the column, so that runs can follow each other.
printf 'Bid,"A,""k"\n1.23,1.26\n' >chain.csv
for column in Bid 'A,"k' 'A,"k'; do
    run 0 -increment 0.05 -column "$column" -csv chain.csv
    mv out chain.csv
done
same "chain" 'Bid,"A,""k",tick,snapped,moved,"A,""k_tick","A,""k_snapped","A,""k_moved",'"\
"'"A,""k_tick_2","A,""k_snapped_2","A,""k_moved_2"
1.23,1.26,0.05,1.25,0.02,0.05,1.25,-0.01,0.05,1.25,-0.01' "$(cat chain.csv)"

# How far a price moves is exact up to the last mantissa of 64 bits; beyond it the row is rejected.
run 1 -increment 10 -column Price -method up < <(printf 'Price\n0.776627963145224193\n0.776627963145224192\n')
out_is "Price,tick,snapped,moved
0.776627963145224193,10,10,9.223372036854775807
0.776627963145224192,,,\n"
same "reason" "stdin:3: '0.776627963145224192' has too many decimals for so large a move" "$(head -n 1 err)"
same "counts" "moved 1 rejected 1" "$(awk '/^(moved|rejected)/ {print $1, $2}' err | paste -sd' ')"
run 1 -increment 100 -column Price -method up < <(printf 'Price\n0.1234567890123456\n0.12345678901234567\n')
same "exact or rejected" "0.1234567890123456,100,100,99.8765432109876544 0.12345678901234567,,," "$(tail -n 2 out | paste -sd' ')"

# A row longer than any block of a pipe, and rows that do not end where a block does.
run 0 -increment 0.05 -column Price < <(echo "$header"; printf '%300000s,1.23\n' x; seq -f '"%g",1.23' 1 60000)
case="rows across blocks"
same "last row" '"60000",1.23,0.05,1.25,0.02' "$(tail -n 1 out)"
same "rows, all alike" "60001 1.25" "$(awk -F, 'NR > 1 {++n; seen[$4] = 1} END {for (s in seen) t = t " " s; print n t}' out)"

# A rejected row goes through, a message names its line and the reason, and the run ends with 1.
cp "$cases/rejected.csv" .
run 1 -increment 0.05 -csv rejected.csv -column Price
same "rows and messages" "" "$({ cat out; sed -E '/^(time|rows a second)/d; s/  +/  /' err; } | diff "$cases/rejected.txt" -)"
run 1 -increment 0.05 -column Price < <(printf "$header\na,x\n")
same "first line" "stdin:2: 'x' is not a price" "$(head -n 1 err)"

# The methods, on both sides of zero.
for row in nearest:1.25,-1.25 modified-nearest:1.20,-1.20 up:1.25,-1.20 down:1.20,-1.25; do
    run 0 -increment 0.05 -column Price -method "${row%%:*}" < <(printf 'Price\n1.225\n-1.225\n')
    same snapped "${row#*:}" "$(awk -F, 'NR > 1 {print $3}' out | paste -sd,)"
done
finish
