#!/usr/bin/env bash
# check.sh PROGRAM EXPECTED: runs an example and compares what it prints with the file, where there is one.
set -eu
printed=$("$1")
[ ! -e "$2" ] || diff "$2" <(printf '%s\n' "$printed")
