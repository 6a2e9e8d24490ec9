#!/usr/bin/env bash
# What gdb shows of the library's values: check.sh PROGRAM PRINTERS
set -u
export TZ=UTC
wanted='price 25.0
cents -0.05
nothing NULL
same NO_CHANGE
error NX_ERR_NOT_FOUND
truth TRUE
state CLOSED | EXPIRING
none NULL
stamp 05Mar24 09:07:03.123.456
volume 7
noVolume NULL
ratio 2.5
noRatio NULL
date 20240305
noDate NULL
time 09:07:03.500
noTime NULL
dateTime 05 Mar 2024 17:30:00
timeAlone 08:30:00
never NULL
fee 12.50 EUR
noFee NULL
text "A-1"
noText NULL'
prints=()
for name in $(printf '%s\n' "$wanted" | cut -d' ' -f1); do
    prints+=(-ex "echo $name\\040" -ex "output $name" -ex 'echo \n')
done
# Nothing in the program is called, neither by a printer nor by gdb's printf, which puts its texts there: there are
# machines on which gdb cannot call.
shown=$(gdb -q -batch -nx -iex 'set auto-load off' -iex 'set may-call-functions off' -ex "source $2" \
    -ex 'rbreak ^.*Look<.*' -ex run -ex up -ex 'echo values\n' "${prints[@]}" "$1" 2>&1)
got=$(printf '%s\n' "$shown" | sed '1,/^values$/d')
if [ "$got" != "$wanted" ]; then
    diff <(printf '%s\n' "$wanted") <(printf '%s\n' "$got")
    printf '%s\n' "$shown"
    exit 1
fi
