#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the development files and checks which headers they contain: headers.sh BUILD SOURCE SCRATCH INCLUDEDIR
set -eu
build=$1 source=$2 scratch=$3 includedir=$4

rm -rf "$scratch"
cmake --install "$build" --component development --prefix "$scratch" >/dev/null
python3 "$(dirname "$0")/includes.py" "$source" "$scratch/$includedir/nxcore"
