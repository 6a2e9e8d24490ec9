#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Counts the instructions of single operations under callgrind, which are the same on every run, and compares them with
# benchmarks/instructions.json. An operation that takes over five per cent more is reported, and the exit code is 1.
#
#     scripts/instructions.sh            compare
#     scripts/instructions.sh --renew    keep the counts of this build
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
need_benchmark_tools
need valgrind valgrind

cmake --preset benchmark >/dev/null
cmake --build --preset benchmark --target instructions >/dev/null
program=build/benchmark/benchmarks/instructions

# Instructions of OPERATION run COUNT times, start-up included.
count() { valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$1" "$2" 2>&1 | sed -n 's/.*Collected : //p'; }

{
    echo '{'
    separator=
    for operation in $("$program"); do
        few=$(count "$operation" 1000)
        many=$(count "$operation" 3000)
        printf '%s  "%s": %s' "$separator" "$operation" "$(awk "BEGIN {printf \"%.1f\", ($many - $few) / 2000}")"
        separator=$',\n'
    done
    printf '\n}\n'
} >build/benchmark/instructions.json

if [ "${1:-}" = --renew ]; then
    cp build/benchmark/instructions.json benchmarks/instructions.json
fi
python3 - <<'PYTHON'
import json, sys
kept = json.load(open("benchmarks/instructions.json"))
now = json.load(open("build/benchmark/instructions.json"))
worse = 0
for name, count in now.items():
    before = kept.get(name)
    change = "" if before is None else f"{100 * (count / before - 1):+6.1f} %"
    more = before is not None and count > before * 1.05
    worse += more
    print(f"{name:26} {count:9.1f}  {change}{'  MORE' if more else ''}")
sys.exit(1 if worse else 0)
PYTHON
