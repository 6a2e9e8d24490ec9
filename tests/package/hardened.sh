#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installed files are compiled and linked so that a fault in them is hard to exploit: hardened.sh FILE PROCESSOR
set -u
file=$1 processor=$2
faults=0

# expect WHAT PATTERN TEXT: the pattern is in the text; expect_not: it is not.
expect() { grep -qE "$2" <<<"$3" || { echo "$file: $1"; faults=1; }; }
expect_not() { ! grep -E "$2" <<<"$3" || { echo "$file: $1"; faults=1; }; }

segments=$(readelf -lW "$file")
dynamic=$(readelf -dW "$file")
imports=$(readelf --dyn-syms -W "$file" | awk '$7 == "UND" {print $8}')
expect "the loader's tables are not made read-only" GNU_RELRO "$segments"
expect "functions are not bound at the start, so that their table stays writable" 'BIND_NOW|FLAGS_1.*NOW' "$dynamic"
expect_not "memory that is written and executed" '(LOAD|GNU_STACK).* RWE ' "$segments"
expect_not "code that is changed when it is loaded" TEXTREL "$dynamic"
expect "nothing guards the stack" '^__stack_chk_fail' "$imports"
case $file in *.so*) expect "nothing guards copies" '_chk(@|$)' "$imports" ;; esac
# The note that switches the processor's check on also depends on the C library's start files, which not every system
# marks.
if [ "$processor" = x86_64 ] && [ "$(objdump -d "$file" | grep -c endbr64)" -lt 100 ]; then
    echo "$file: targets of jumps are not marked"; faults=1
fi
exit $faults
