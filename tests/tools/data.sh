#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The checker of the tick tables of today finds every damage in damages.txt, SED|MESSAGE, done to both files of the list.
set -u
. "$(dirname "$0")/cases.sh"
checker="python3 $cases/../../scripts/tick_tables.py"

while IFS="|" read -r damage message; do
    case="damage $damage"
    rm -rf data && cp -r "$cases/../../data/tick-tables" data
    sed -i "$damage" data/tick-tables-today*.csv
    $checker check --data data >out 2>&1 && same "status" failure success
    same "message" "$message" "$(grep -oF "$message" out | head -n 1)"
done <"$cases/damages.txt"
case="expiry"
rows=$(tail -n +2 "$cases/../../data/tick-tables/tick-tables-today-sources.csv" | wc -l)
same "expired long ago and at last" "0 $rows" \
    "$($checker expired --today 2000-01-01 | wc -l) $($checker expired --today 9999-12-31 | wc -l)"
finish
