#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Forms of files, several files, tables for each row, checks, and rows that come slowly.
set -u
. "$(dirname "$0")/cases.sh"

while IFS="|" read -r name options input output status; do
    case " $options" in *' -column '*) column= ;; *) column='-column Price' ;; esac
    printf '%b' "$input" >form.csv
    run "$status" -increment 0.05 $column $options form.csv
    case=$name
    out_is "$output"
done <"$cases/forms.txt"
same "each fault is named with its column" "2" "$(printf 'Bid,Ask\nx,y\n' | "$nxtick" -increment 1 -column Bid,Ask 2>&1 |
    grep -c "^stdin:2: column '.*': '.' is not a price$")"

# Every row that Python's csv module reads as having a price gets that price, whatever the separator and the quotes.
python3 "$cases/differential.py" "$nxtick" || failures=$((failures + 1))

# Several files become one, or each is replaced; a file that cannot be done is named, and the others are done.
printf 'P,x\n1.23,a' >1.csv
printf '\r\nP,x\r\n1.26,b\r\n' >2.csv
printf 'x,P\nb,1.26\n' >3.csv
run 0 -increment 0.05 -column P -add snapped 1.csv -csv 2.csv
out_is 'P,x,snapped\n1.23,a,1.25\n1.26,b,1.25\r\n'
printf 'P,x\n9,c\n' | run 0 -increment 0.05 -column P -add snapped --out=- -quiet -- 1.csv -
out_is 'P,x,snapped\n1.23,a,1.25\n9,c,9.00\n'
err_is ''
refused '3.csv:1: the columns are not those of the first file; -in-place takes each file by itself' \
    -increment 0.05 -column P -out all.csv 1.csv 3.csv
run 2 -increment 0.05 -column P -add snapped -in-place 1.csv missing.csv . 3.csv -quiet
err_is 'nxtick: cannot read missing.csv: No such file or directory\nnxtick: cannot replace .: it is no regular file\n'
same "in place" 'P,x,snapped 1.23,a,1.25x,P,snapped b,1.26,1.25' "$(paste -sd' ' 1.csv | tr -d '\n')$(paste -sd' ' 3.csv)"

# The row says which table it needs.
printf 'T,P\nTWO,1.234\nVTT_NFX_1,1.234\nTWQ,1\n,1\nTWO,x\n' >rows.csv
cp "$cases/own.csv" .
run 1 -tables own.csv -table-column T -column P -add snapped rows.csv
one() { printf 'P\n1.234\n' | "$nxtick" "$@" -column P -add snapped 2>/dev/null | tail -n 1; }
out_is "T,P,snapped\nTWO,$(one -tables own.csv -table TWO)\nVTT_NFX_1,$(one -table NFX_1)\nTWQ,1,\n,1,\nTWO,x,\n"
same "reasons" "rows.csv:4: there is no tick table 'TWQ'; did you mean 'VTT_TWO'?
rows.csv:5: there is no name of a table or symbol
rows.csv:6: 'x' is not a price" "$(grep '^rows' err | head -n 3)"
printf 'symbol,table,from,to\nA,NFX_1,,2026-03-31\nA,EURONEXT_07,2026-04-01,\nB,NFX_1,,\n' >map.csv
printf 'S,P,D\nA,9.9994,2026-03-31\nA,9.9994,2026-04-01T09:00\nB,1.234,2026-02-28\nB,1,2026-02-29\nC,1,2026-03-31\n' >rows.csv
by_symbol='-symbol-column S -column P -add tick rows.csv'
run 1 -mapping map.csv -date-column D $by_symbol
tick() { printf 'P\n%s\n' "$2" | "$nxtick" -table "$1" -column P -add tick 2>/dev/null | tail -n 1 | cut -d, -f2; }
out_is "S,P,D,tick\nA,9.9994,2026-03-31,$(tick NFX_1 9.9994)\nA,9.9994,2026-04-01T09:00,$(tick EURONEXT_07 9.9994)
B,1.234,2026-02-28,$(tick NFX_1 1.234)\nB,1,2026-02-29,\nC,1,2026-03-31,\n"
same "reasons" "rows.csv:5: '2026-02-29' is not a day such as 2026-11-22
rows.csv:6: the mapping has no symbol 'C'" "$(grep '^rows.csv' err)"
refused 'option -date-column is missing, because the mapping has days' -mapping map.csv $by_symbol
while IFS="|" read -r line message; do
    printf 'symbol,table,from,to\nA,NFX_1,2026-01-01,2026-06-30\n%s\n' "$line" >map.csv
    refused "map.csv:3: $message" -mapping map.csv -date-column D $by_symbol
done <<'END'
A,NFX_1,2026-06-30,|symbol 'A' has two tables on one day
B,NFX_1,2026-06-30,2026-06-29|the last day is before the first
B,NFX_1,30.6.2026,|'30.6.2026' is not a day such as 2026-11-22
B,NFX_0,,|there is no tick table 'NFX_0'; did you mean 'VTT_NFX_1'?
B,NFX_1|the row has another number of fields than the header
END

# A check changes nothing; its status tells whether all is on the grid.
name=$'a\xFF"b.csv'
printf 'P,Q\n1.25,1\n\n1.23,0.000000000000000001\n' >"$name"
run 0 -increment 0.01 -column P -check -quiet 3.csv
out_is ''
err_is ''
run 1 -increment 0.05 -column P,Q -check -quiet "$name"
out_is "a\\\\xFF\"b.csv:4: column 'P': 1.23 is off the grid, between 1.20 and 1.25
a\\\\xFF\"b.csv:4: column 'Q': 0.000000000000000001 is off the grid, between 0.00 and 0.05\n"
for format in csv json; do
    run 2 -increment 0.05 -column P,2 -check -format "$format" "$name" missing.csv
    same "$format" "1.23 1.20 1.25 4 P|1E-18 0.00 0.05 4 Q" "$(python3 -c 'import csv, json, sys, decimal
data = open("out", encoding="utf-8", errors="replace", newline="")
rows = csv.DictReader(data) if sys.argv[1] == "csv" else json.load(data, parse_float=decimal.Decimal)
print("|".join("{} {} {} {} {}".format(*(decimal.Decimal(r[k]) for k in ("price", "below", "above")), r["line"], r["column"])
               for r in rows if r["file"] == "a\ufffd\"b.csv"))' "$format")"
done
run 1 -increment 0.05 -column P -check=count -format json "$name"
out_is '[\n{"rows":2,"on_grid":1,"off_grid":1,"empty":0,"rejected":0}\n]\n'
run 2 -increment 0.05 -column P -check -out "$name" "$name"
same "the file" "3" "$(wc -w <"$name")"

# Rows go on when the input pauses: the second row is written only after the first has come out.
case="a pause of the input"
mkfifo slow answer
"$nxtick" -increment 0.05 -column P -add snapped -quiet <slow >answer &
exec 3>slow 4<answer
printf 'P\n1.23\n1.2' >&3
read -r header <&4
read -r row <&4
printf '6\n' >&3
exec 3>&-
same "rows" "P,snapped 1.23,1.25 1.26,1.25" "$header $row $(cat <&4)"
exec 4<&-
wait
finish
