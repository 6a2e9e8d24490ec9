#!/usr/bin/env bash
# Unpacks the Debian packages into a scratch root and consumes them, in a multi-arch library folder: debs.sh PACKAGES SOURCE
set -eu
packages=$1 source=$2
root=$packages/root

rm -rf "$root"
for package in "$packages"/*.deb; do
    dpkg -x "$package" "$root"
done
libdir=$(cd "$root/usr" && dirname "$(find lib -name libnxcore.so)")
for way in find_package pkg-config; do
    bash "$(dirname "$0")/consume.sh" "$way" "$root/usr" "$source" "$root/$way" "$libdir" g++
done
for wanted in usr/bin/nxtick usr/share/man/man1/nxtick.1 usr/share/bash-completion/completions/nxtick usr/share/doc/nxcore/docs/guide usr/share/doc/nxcore/examples; do
    ls -d "$root/$wanted"* >/dev/null
done
grep -qx prefix=/usr "$root/usr/$libdir/pkgconfig/nxcore.pc"
LD_LIBRARY_PATH=$root/usr/$libdir "$root/usr/bin/nxtick" -version
# Debian's own checker finds no error.
if command -v lintian >/dev/null 2>&1; then
    lintian --fail-on error --tag-display-limit 0 --allow-root "$packages"/*.deb
else
    echo "skipped: there is no lintian"
fi
