#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the build into a scratch prefix, moves it and consumes it: installed.sh WAY BUILD SOURCE SCRATCH LIBDIR CXX
set -eu
way=$1 build=$2 source=$3 scratch=$4 libdir=$5 cxx=$6

rm -rf "$scratch" && mkdir -p "$scratch"
cmake --install "$build" --prefix "$scratch/installed" >"$scratch/install.log"
grep -qx "prefix=$scratch/installed" "$scratch/installed/$libdir/pkgconfig/nxcore.pc"
mv "$scratch/installed" "$scratch/moved"  # CMake finds it there by itself, pkg-config is told
if [ -x "$scratch/moved/bin/nxtick" ]; then "$scratch/moved/bin/nxtick" -list -venue XTKS >/dev/null; fi  # finds its data
bash "$(dirname "$0")/consume.sh" "$way" "$scratch/moved" "$source" "$scratch/consumer" "$libdir" "$cxx"
