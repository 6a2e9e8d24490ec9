#!/usr/bin/env bash
# Tick tables: lists, bands, prices, ladders, charts and added columns.
set -u
. "$(dirname "$0")/cases.sh"

cp "$cases/own.csv" own.csv
own='-tables own.csv'

# The catalogue, and the user's own tables in front of it.
run 0 -list
same "heading and tables" "151 identifier bands smallest tick largest tick source" \
    "$(wc -l <out) $(head -n 1 out | tr -s ' ')"
same "one of them" "VTT_CHIX_CPH1 7 0.010 5.000 given" "$(grep CHIX_CPH1 out | tr -s ' ')"
run 0 -list -filter cph1 $own
out_is "identifier     bands  smallest tick  largest tick  source
VTT_CHIX_CPH1      1            0.5           0.5  custom\n"

run 0 -table TWO $own
out_is "VTT_TWO\ncustom: own.csv\n
band  above  up to  tick
   1            10  0.01
   2     10         0.05\n"
run 0 -table VTT_EURONEXT_07
same "given bands" "1 9.999 0.001;2 9.999 49.995 0.005;3 49.995 99.99 0.01;" \
    "$(awk '/^ +[1-3]/ {$1 = $1; printf "%s;", $0}' out)"
run 0 -table EURONEXT_07
same "name without prefix" "VTT_EURONEXT_07" "$(head -n 1 out)"

# Using a table whose roundings leave the grid causes a warning; the name of its file is made safe to show.
cp own.csv $'own\x1b.csv'
run 0 -tables $'own\x1b.csv' -table ODD
same "no escape" "custom: own\\x1B.csv" "$(sed -n 2p out)"
same "warning" "nxtick: own\\x1B.csv: table ODD: band 1: upper bound 10 plus increment 0.01 is no multiple" \
    "$(grep -o '^.*no multiple' err)"
run 0 $own -list
err_is ''

# A file of tables that is wrong names its line.
sed 's/0.05/0/' own.csv >zero.csv
run 2 -tables zero.csv -table TWO
same "file and line" "nxtick: zero.csv: line 3" "$(grep -oE '^nxtick: zero.csv: line [0-9]+' err)"
run 2 -tables missing.csv -list
same "one line" "1" "$(wc -l <err)"

# Prices: on the grid, between its prices, at a band's bound and just above it, negative.
# price ROW: PRICE WHERE TICK BELOW ABOVE NEAREST MODIFIED UP DOWN
while read -r price where tick below above nearest modified up down; do
    run 0 $own -table TWO -price "$price"
    same "all of it" "VTT_TWO at $price, $where the grid|tick $tick|next below $below|next above $above|nearest $nearest|modified nearest $modified|rounded up $up|rounded down $down" \
        "$(grep . out | tr -s ' ' | paste -sd'|')"
done <"$cases/prices.txt"
for row in '10:0:0 ticks up:10' '10:3:3 ticks up:10.11' '10.05:-2:2 ticks down:9.99' '9.99:1:1 tick up:10.00'; do
    IFS=: read -r price step what result <<<"$row"
    run 0 $own -table TWO -price "$price" -step "$step"
    same "stepped" "$what $result" "$(tail -n 1 out | tr -s ' ')"
done
run 0 -increment 0.05 -price -36.98 -step -1000000
same "a fixed increment serves too" "1000000 ticks down -50036.98" "$(tail -n 1 out | tr -s ' ')"

# Neighbours where a step would leave the grid or skip a price: every price that is on the grid by the tick there, and
# no other.
while read -r table price below above; do
    run 0 $own -table "$table" -price "$price"
    same "neighbours" "$below $above" "$(awk '/^next/ {print $3}' out | paste -sd' ')"
done <"$cases/neighbours.txt"

# Ladders are aligned on the decimal point, mark the change of bands, and have no colour in a file.
run 0 $own -table TWO -price 10.05 -ladder 3
out_is "VTT_TWO around 10.05

   price  tick
   10.20  0.05
   10.15  0.05
   10.10  0.05
>  10.05  0.05
--- ticks of 0.05 above, 0.01 below ---
   10.00  0.01
    9.99  0.01
    9.98  0.01\n"
run 0 -increment 0.5 -price 0.2 -ladder 1
out_is "ticks of 0.5 around 0.2

   price  tick
     0.5   0.5
>    0.2   0.5  off the grid
     0.0   0.5\n"
run 0 $own -table ODD -price 10.02 -ladder 2
same "beside an odd bound" "10.08 10.05 10.02 10.00 9.99" "$(tr -d '>' <out | awk '$1 ~ /[0-9]/ && NF == 2 {print $1}' | paste -sd' ')"

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
# Its text is UTF-8 whatever the path: bytes that are none are replaced, and no character is cut in two.
x79=$(printf '%079d' 0)
for row in $'\xC3\xA9\xC3.csv|\xC3\xA9\xEF\xBF\xBD.csv' "$x79"$'\xC3\xA9|'"$x79..." "${x79}1|${x79}1"; do
    cp own.csv "${row%|*}"
    run 0 -tables "${row%|*}" -table TWO -chart chart.svg
    same "source" "custom: ${row#*|}<" "$(LC_ALL=C grep -ao 'custom: [^<]*<' chart.svg)"
done
finish
