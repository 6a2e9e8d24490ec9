#!/usr/bin/env bash
# What gdb shows of the library's values: check.sh PROGRAM PRINTERS
set -u
export TZ=UTC
shown=$(gdb -q -batch -nx -iex 'set auto-load off' -ex "source $2" -ex 'rbreak ^.*Look<.*' -ex run -ex up \
    -ex 'print price' -ex 'print cents' -ex 'print nothing' -ex 'print same' -ex 'print error' -ex 'print truth' -ex 'print state' \
    -ex 'print none' -ex 'print stamp' -ex 'print volume' -ex 'print noVolume' -ex 'print ratio' -ex 'print noRatio' "$1" 2>&1)
wanted='25.0
-0.05
NULL
NO_CHANGE
NX_ERR_NOT_FOUND
TRUE
CLOSED | EXPIRING
NULL
05Mar24 09:07:03.123.456
7
NULL
2.5
NULL'
got=$(printf '%s\n' "$shown" | sed -n 's/^\$[0-9]* = //p')
if [ "$got" != "$wanted" ]; then
    diff <(printf '%s\n' "$wanted") <(printf '%s\n' "$got")
    printf '%s\n' "$shown"
    exit 1
fi
