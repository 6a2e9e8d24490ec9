#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The library exports only its own classes, never ends the process and never writes to std::cout: symbols.sh LIBRARY LIST
# It calls exit() in one place, where the log's thread is the last thread of a process that has already ended.
set -u
library=$1 list=$2
faults=0

# The compiler may export weak instantiations of the standard library's templates. They are no interface.
foreign=$(nm -DC --without-symbol-versions --defined-only "$library" | awk '$2 != "V" && $2 != "W" && $2 != "u" && $2 != "A" {sub(/^[^ ]* . /, ""); print}' |
    grep -vE '^(non-virtual thunk to |vtable for |typeinfo for |typeinfo name for |guard variable for |VTT for )?nx|^operator<<\(std::ostream&, |^(bool )?operator(==|<)|^std::hash<nx')
if [ -n "$foreign" ]; then
    echo "exported, but not the library's own:"; echo "$foreign"; faults=1
fi
fatal=$(nm -D --undefined-only "$library" | awk '{print $2}' | grep -E '^(abort|_exit|quick_exit|_ZSt4cout|_ZSt4cerr|_ZSt9terminatev|__assert_fail)(@|$)')
if [ -n "$fatal" ]; then
    echo "used, though a library keeps quiet and never ends its process:"; echo "$fatal"; faults=1
fi
destroyed=$(objdump -dC --no-show-raw-insn "$library" |
    awk '/^[0-9a-f]+ </ {name = $0} /<__cxa_atexit@plt>$/ && name !~ /<atexit>/ {print name}')
if [ -n "$destroyed" ]; then
    echo "makes objects that are destroyed while threads still use the library:"; echo "$destroyed"; faults=1
fi
# A program may have copies of exported objects. The library uses these where an object changes; nobody reads _registered.
changing=$(readelf -SW "$library" | sed -n 's/^ *\[ *\([0-9]*\)\] \.\(data\|bss\) .*/\1/p')
unlisted=$(readelf --dyn-syms -W "$library" | awk -v sections="$changing" \
    'BEGIN {split(sections, list); for (i in list) wanted[list[i]]} $4 == "OBJECT" && $7 in wanted {sub(/@.*/, "", $8); print $8}' |
    grep -v '11_registeredE$' | while read -r object; do grep -qF " $object;" "$list" || echo "$object"; done)
if [ -n "$unlisted" ]; then
    echo "exported and changing, but not in $list:"; echo "$unlisted"; faults=1
fi
exit $faults
