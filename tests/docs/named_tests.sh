#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Every test that a document names exists: named_tests.sh DOCUMENT TESTS_FOLDER
set -u
missing=0
for name in $(grep -o '`[a-z][A-Za-z]*\.[A-Z][A-Za-z0-9]*`' "$1" | tr -d '`' | sort -u); do
    if ! grep -rqE "TEST(_F|_P)?\(${name%%.*}, *${name##*.}\)" "$2"; then
        echo "$1 names $name, which is no test"
        missing=1
    fi
done
exit $missing
