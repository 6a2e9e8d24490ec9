#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Valid and invalid options.
set -u
. "$(dirname "$0")/cases.sh"
completion=$cases/../../tools/nxtick/completions/nxtick

snap='-increment 0.05 -column Price'
cp "$cases/own.csv" own.csv
set -f  # a question mark among the options is one
while IFS="|" read -r options message; do
    refused "$message" $options
done <"$cases/refused.txt"
set +f
run 0 -increment 0.000000000000000001 -price 0.5

# Messages show at most 40 bytes of what the user wrote, and nothing that controls a terminal.
digits=$(printf '%039d' 0)
known='; there are nearest, modified-nearest, up and down'
refused "unknown method '${digits}1'$known" $snap -method "${digits}1"
refused "unknown method '$digits...'$known" $snap -method "$digits"$'\xC3\xA9'
refused "unknown method '\\\\xC3\\\\x1B\\\\xA9\xC3\xA9'$known" $snap -method $'\xC3\x1B\xA9\xC3\xA9'

while IFS="|" read -r header column message; do
    printf '%b' "$header" >header.csv
    refused "header.csv:1: $message" -increment 1 -csv header.csv -column "$column"
done <"$cases/columns.txt"

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
same "identifiers offered, and what ran" "$(("$("$nxtick" -list | wc -l)" - 1))" "$offered$(ls ran 2>/dev/null)"

run 0 -version
same "version" "nxtick 1" "$(grep -oE '^nxtick [0-9]+' out)"
finish
