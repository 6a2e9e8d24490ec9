#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Tick tables: lists, bands, prices, ladders, charts and added columns.
set -u
. "$(dirname "$0")/cases.sh"

cp "$cases/own.csv" own.csv
own='-tables own.csv'

# The catalogue, with the user's own tables first.
run 0 -list
same "heading and tables" "151 identifier bands smallest tick largest tick source" \
    "$(wc -l <out) $(head -n 1 out | tr -s ' ')"
same "one of them" "VTT_CHIX_CPH1 7 0.010 5.000 given" "$(grep CHIX_CPH1 out | tr -s ' ')"

# Using a table whose roundings leave the grid causes a warning; the name of its file is made safe to show.
cp own.csv $'own\x1b.csv'
run 0 -tables $'own\x1b.csv' -table ODD
same "no escape" "custom: own\\x1B.csv" "$(sed -n 2p out)"
same "warning" "nxtick: own\\x1B.csv: table ODD: band 1: upper bound 10 plus increment 0.01 is no multiple" \
    "$(grep -o '^.*no multiple' err)"
run 0 $own -list
err_is ''

# The message for a wrong file of tables names the line.
sed 's/0.05/0/' own.csv >zero.csv
run 2 -tables zero.csv -table TWO
same "file and line" "nxtick: zero.csv: line 3" "$(grep -oE '^nxtick: zero.csv: line [0-9]+' err)"
run 2 -tables missing.csv -list
same "one line" "1" "$(wc -l <err)"

# Lists, tables, prices, steps, neighbours and ladders: shown.txt holds the command lines and their output.
while read -r _ _ options; do
    run 0 $options
    { echo "$ nxtick $options"; cat out; } >>shown
done < <(grep '^\$' "$cases/shown.txt")
case="shown.txt"
same "what is shown" "" "$(diff "$cases/shown.txt" shown)"

# A table adds its neighbours to the rows.
printf 'Price\n9.995\n10\n-10.07\nx\n' >prices.csv
run 1 $own -table TWO -csv prices.csv -column Price
out_is "Price,tick,snapped,moved,below,above
9.995,0.01,10.00,0.005,9.99,10.00
10,0.01,10.00,0.00,9.99,10.05
-10.07,0.05,-10.05,0.02,-10.10,-10.05
x,,,,,\n"

# The chart is a picture: well-formed, one step for each band.
run 0 $own -table TWO -chart chart.svg
out_is ''
same "steps and dots" "2 1" "$(grep -c "class='line'" chart.svg) $(grep -c '<circle' chart.svg)"
same "ends" "<svg </svg>" "$(head -c 5 chart.svg)$(tail -n 1 chart.svg)"
# Its text is always UTF-8: other bytes of the path are replaced, and no character is cut in two.
x79=$(printf '%079d' 0)
for row in $'\xC3\xA9\xC3.csv|\xC3\xA9\xEF\xBF\xBD.csv' "$x79"$'\xC3\xA9|'"$x79..." "${x79}1|${x79}1"; do
    cp own.csv "${row%|*}"
    run 0 -tables "${row%|*}" -table TWO -chart chart.svg
    same "source" "custom: ${row#*|}<" "$(LC_ALL=C grep -ao 'custom: [^<]*<' chart.svg)"
done
finish
