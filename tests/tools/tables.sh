#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Tick tables: lists, bands, prices, ladders, charts and added columns.
set -u
. "$(dirname "$0")/cases.sh"

cp "$cases/own.csv" own.csv
own='-tables own.csv'

# The catalogue and the tables of today.
run 0 -list
same "tables" "$((150 + $(tail -n +2 "$cases/../../data/tick-tables/tick-tables-today-sources.csv" | wc -l)))" \
    "$(tail -n +2 out | wc -l)"

# A table that is expired or assumed says so once where it is used; its day is the last on which it counts.
cp "$cases"/today*.csv .
expired="VTT_LATE: expired on 2026-12-21, looked up on 2026-11-21: compare it with the exchange's own document"
while IFS="|" read -r options message; do
    run 0 -tables-today today.csv $options
    err_is "${message:+nxtick: ${message/EXPIRED/$expired}\n}"
done <<'END'
-table LATE -today 2026-12-21|
-table LATE -today 2026-12-22|EXPIRED
-table VTT_LATE -price 1 -today 2026-12-22|EXPIRED
-table LATE -price 1 -ladder 1 -format json -today 2026-12-22|EXPIRED
-table LATE -today 2026-12-22 -quiet|
-table LATE -today 2026-12-22 -chart late.svg|EXPIRED
-list -status expired -today 2026-12-22|
-table CHIX_ETF1|VTT_CHIX_ETF1: assumed: the link of its values to this table is not confirmed; compare it with the exchange's own document
END
same "the chart says so too" "1" "$(grep -c 'This table: expired on 2026-12-21' late.svg)"
run 2 -tables-today today.csv -table LATE -today 2026-12-22 -csv /dev/null -column Price
same "one warning" "nxtick: $expired" "$(head -n 1 err)"
sed 's/^LATE,/LATER,/' today.csv >other.csv
sed 's/2026-12-21/soon/' today-sources.csv >other-sources.csv
refused "other-sources.csv: no row for table LATER" -tables-today other.csv -list
cp today.csv other.csv
refused "other-sources.csv: no expires_on for table LATE" -tables-today other.csv -list

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
