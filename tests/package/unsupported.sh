#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Unsupported switches and compilers are reported first, in one line: unsupported.sh CXX SOURCE
set -u
cxx=$1 source=$2
faults=0

# expect MESSAGE FLAGS...
expect()
{
    local message=$1 said
    shift
    said=$(echo '#include "core/nxCore.h"' | "$cxx" "$@" -I"$source" -fsyntax-only -x c++ - 2>&1 | grep -m 1 'error:')
    [[ $said == *"$message"* ]] || { echo "$*: wanted '$message', got '$said'"; faults=1; }
}

expect "needs C++20" -std=c++17
expect "64-bit Linux" -std=c++20 -U__LP64__
expect "64-bit Linux" -std=c++20 -U__linux__
expect "supports the processors" -std=c++20 -U__x86_64__ -U__aarch64__
expect "_GLIBCXX_DEBUG" -std=c++20 -D_GLIBCXX_DEBUG
expect "C++11 strings" -std=c++20 -D_GLIBCXX_USE_CXX11_ABI=0
exit $faults
