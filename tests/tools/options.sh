#!/usr/bin/env bash
# What the user asks for, rightly and wrongly.
set -u
completion=$(cd "$(dirname "$0")/../../tools/nxtick/completions" && pwd)/nxtick
. "$(dirname "$0")/cases.sh"

snap='-increment 0.05 -column Price'
refused "nothing to do; try nxtick -help"
refused "'price.csv' belongs to no option; try nxtick -help" price.csv $snap
refused "unknown option '-colum'; did you mean '-column'?" -colum Price
refused "unknown option '-xyzzy'" -xyzzy
refused "option -csv needs a value" $snap -csv
refused "option -list takes no value, yet 'CME' follows it" -list CME
refused "option -column is missing: the column that holds the prices" -increment 0.05 -csv x.csv
refused "-column needs -table ID or -increment I" -column Price
refused "-table and -increment exclude each other" $snap -table NFX_1
refused "option -step does not go with -column" $snap -step 3
refused "option -tables does not go with -increment" -increment 0.05 -tables missing.csv -price 1
refused "option -price is given twice" -increment 0.05 -price -1 -step -1 -price 2
refused "option -price is missing: where to step from" -table NFX_1 -step 3
refused "-increment '0' is not positive" -increment 0 -column Price
refused "-increment '-0.05' is not positive" -increment -0.05 -column Price
refused "-increment 'abc' is not a number" -increment abc -column Price
refused "-increment '1234567890123456789' has more than 18 digits" -increment 1234567890123456789 -column Price
refused "-increment '0.0000000000000000001' has more than 18 decimals" -increment 0.0000000000000000001 -column Price
run 0 -increment 0.000000000000000001 -price 0.5
refused "'-' is no file name here; without -csv and -out, standard input and output are used" $snap -csv -
refused "unknown method 'neares'; did you mean 'nearest'?" $snap -method neares
refused "unknown method '?'; there are nearest, modified-nearest, up and down" $snap -method '?'
refused "stdin:1: there is no header line" $snap
refused "cannot read missing.csv: No such file or directory" $snap -csv missing.csv
refused "cannot read .: Is a directory" $snap -csv .
refused "cannot write missing/out.csv: No such file or directory" $snap -out missing/out.csv

# What the user wrote is shown in 40 bytes that any terminal can take.
digits=$(printf '%039d' 0)
known='; there are nearest, modified-nearest, up and down'
refused "unknown method '${digits}1'$known" $snap -method "${digits}1"
refused "unknown method '$digits...'$known" $snap -method "$digits"$'\xC3\xA9'
refused "unknown method '\\\\xC3\\\\x1B\\\\xA9\xC3\xA9'$known" $snap -method $'\xC3\x1B\xA9\xC3\xA9'

# column FILE COLUMN MESSAGE: a header without the column.
column()
{
    printf '%b' "$1" >header.csv
    refused "header.csv:1: $3" -increment 1 -csv header.csv -column "$2"
}
names="; there are 'Date', 'Price', 'Price 2', 'x' and 'x'"
column 'Date,Price,Price 2,x,x\n' price "there is no column 'price'$names; did you mean 'Price'?"
column 'Date,Price,Price 2,x,x\n' volume "there is no column 'volume'$names"
column 'Date,Price,Price 2,x,x\n' x "there are several columns 'x'"
column "$(seq -s, -f c%g 22)\n" y "there is no column 'y'; there are $(seq -s, -f "'c%g'" 20 | sed 's/,/, /g') and 2 more"
column 'Date;Price\n' Price \
    "there is no column 'Price'; there is only 'Date;Price'; are the fields divided by ';' instead of commas?"
column '2020-01-02,36.98\n' Price "there is no column 'Price'; there are '2020-01-02' and '36.98'; is the header line missing?"
column 'Pric\x1b[2J\xC2\xA0e,b\n' Price \
    "there is no column 'Price'; there are 'Pric\\\\x1B[2J\\\\xC2\\\\xA0e' and 'b'"
column 'Pric\xC2\x9b\n' Price \
    "there is no column 'Price'; there is only 'Pric\\\\xC2\\\\x9B'; did you mean 'Pric\\\\xC2\\\\x9B'?"
column 'Date,"P\r"\r1,2\r' Date "a line ends in CR alone; convert the file first: tr '\\\\r' '\\\\n'"
for text in '\xFF\xFEP\0r\0\n\0' '\xFE\xFF\0P\0\n' 'P\0r\0\n\0'; do
    column "$text" P 'this looks like UTF-16; convert the file first: iconv -f UTF-16 -t UTF-8'
done

for option in -help --help -h; do
    run 0 $option
    err_is ''
    same "first line" "nxtick" "$(head -c 6 out)"
    same "fits a screen" "yes" "$(awk 'length > 80 || NR > 24 {exit 1}' out && echo yes)"
    same "ends with a line end" "" "$(tail -c 1 out)"
done
case="what a program in the current directory can do"
same "empty elements of the path to libraries" "" "$(readelf -d "$nxtick" | grep -E 'R(UN)?PATH' | grep -E '\[:|::|:\]')"
printf '#!/bin/sh\ntouch ran\n' >planted && chmod +x planted
offered=$(. "$completion"; PATH=${nxtick%/*}:$PATH COMP_WORDS=(./planted -table '') COMP_CWORD=2 && _nxtick; echo "${#COMPREPLY[@]}")
same "identifiers offered, and what ran" "150" "$offered$(ls ran 2>/dev/null)"

run 0 -version
same "version" "nxtick 1" "$(grep -oE '^nxtick [0-9]+' out)"
finish
