#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Compares what gdb shows for values of the library: check.sh PROGRAM PRINTERS
set -u
export TZ=UTC
expected=$(dirname "$0")/expected.txt
# Texts as another standard library stores them, and one that could control the terminal.
texts='FIRM
A_TEXT_OF_MORE_THAN_22_B
\x1B[2J\xE2\x80\xAE é'
prints=()
for name in $(cut -d' ' -f1 "$expected"); do
    prints+=(-ex "echo $name\\040" -ex "output $name" -ex 'echo \n')
done
for name in shortText longText; do
    prints+=(-ex "python print(read_bytes(*std_string(int(gdb.parse_and_eval('&$name')))).decode())")
done
prints+=(-ex 'python print(printable("\x1b[2J\u202e \u00e9"))')
wanted=$(cat "$expected")$'\n'$texts
# Printers call no function of the program, and gdb's printf is not used because it does: on some machines gdb cannot
# call.
shown=$(gdb -q -batch -nx -iex 'set auto-load off' -iex 'set may-call-functions off' -ex "source $2" \
    -ex 'python PRINTERS["(anonymous namespace)::Undescribed"] = DecimalPrinter' \
    -ex 'break Pause' -ex run -ex 'up 2' -ex 'echo values\n' "${prints[@]}" "$1" 2>&1)
got=$(printf '%s\n' "$shown" | sed '1,/^values$/d')
if [ "$got" != "$wanted" ]; then
    diff <(printf '%s\n' "$wanted") <(printf '%s\n' "$got")
    printf '%s\n' "$shown"
    exit 1
fi
