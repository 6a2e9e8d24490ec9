#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks the Debian packages for arm64 without running anything of them: armDebs.sh PACKAGES
set -eu
packages=$1
root=$packages/root
faults=0

# expect WHAT PATTERN TEXT
expect() { grep -qE "$2" <<<"$3" || { echo "$1: $3"; faults=1; }; }

rm -rf "$root"
for package in "$packages"/*.deb; do
    name=$(dpkg-deb -f "$package" Package)
    case $name in
        nxcore-doc | nxcore-source) wanted=all ;;
        *) wanted=arm64 ;;
    esac
    expect "$name: architecture" "^$wanted$" "$(dpkg-deb -f "$package" Architecture)"
    depends=$(dpkg-deb -f "$package" Depends)
    case $name in
        libnxcore1 | nxcore-tools)
            expect "$name: depends" '(^|, )libc6 \(>=' "$depends"
            expect "$name: depends" '(^|, )libstdc\+\+6 \(>=' "$depends"
            ;;
    esac
    # A package that names the processor can be satisfied by no system that has only this one.
    if grep -qE ':arm64|-cross' <<<"$depends"; then echo "$name depends on packages of the cross compiler: $depends"; faults=1; fi
    dpkg-deb -x "$package" "$root"
done
for file in "$root"/usr/lib/aarch64-linux-gnu/libnxcore.so "$root"/usr/bin/nxtick; do
    expect "$file" 'Machine: +AArch64' "$(readelf -h "$file")"
    bash "$(dirname "$0")/hardened.sh" "$file" aarch64 || faults=1
done
grep -rqs aarch64-linux-gnu "$root"/usr/lib/aarch64-linux-gnu/pkgconfig/nxcore.pc || { echo "nxcore.pc names another folder"; faults=1; }
# What is built against them links.
aarch64-linux-gnu-g++ -std=c++20 "$(dirname "$0")/../consumer/main.cpp" -I"$root/usr/include/nxcore" -L"$root/usr/lib/aarch64-linux-gnu" \
    -lnxcore -o "$packages/consumer" || faults=1
[ $faults -eq 0 ] && echo "packages: $(ls "$packages"/*.deb | wc -l)"
exit $faults
