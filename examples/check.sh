#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# check.sh PROGRAM EXPECTED [ARGUMENT...]: runs an example in an empty directory, and compares what it prints with the file
# where there is one.
set -eu
program=$(realpath "$1")
expected=$(realpath "$2")
shift 2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
unset QRX_LOG_DIRECTORY QRX_LOG_LEVEL QRX_LOG_TO_CONSOLE
printed=$("$program" "$@")
[ ! -e "$expected" ] || diff "$expected" <(printf '%s\n' "$printed")
