#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
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
for wanted in usr/bin/nxtick usr/share/man/man1/nxtick.1 usr/share/man/man7/nxcore.7 usr/share/bash-completion/completions/nxtick usr/share/zsh/vendor-completions/_nxtick usr/share/nxcore/tick-tables-today-sources.csv usr/share/nxcore/lnav/nxcore_log.json etc/lnav/formats/nxcore/nxcore_log.json usr/share/doc/nxcore/docs/guide usr/share/doc/nxcore/reference/error_codes.html usr/share/doc/nxcore/examples usr/src/nxcore-; do
    ls -d "$root/$wanted"* >/dev/null
done
grep -qx prefix=/usr "$root/usr/$libdir/pkgconfig/nxcore.pc"
LD_LIBRARY_PATH=$root/usr/$libdir "$root/usr/bin/nxtick" -version
# Where the build has debug information, a debugger shows the sources of library and tool from their package.
find "$packages" -maxdepth 1 -name '*.ddeb' -exec dpkg -x {} "$root" \;
if grep -rqs debug_info "$root/usr/lib/debug"; then
    # listed FILE FUNCTION: the source of the function, as gdb shows it.
    listed() {
        gdb -q -batch -nx -iex 'set auto-load off' -ex "set debug-file-directory $root/usr/lib/debug" -ex "file $root/$1" \
            -ex "set substitute-path /usr/src $root/usr/src" -ex "list $2" 2>&1
    }
    shown=$(listed "usr/$libdir/libnxcore.so" nxVersionNumber::GetVersionNumber; listed usr/bin/nxtick nxtick::OutputFile::Print)
    if ! grep -q 'return NX_CORE_VERSION;' <<<"$shown" || ! grep -q 'OutputFile::Print(' <<<"$shown"; then
        echo "gdb shows no sources: $shown"; exit 1
    fi
fi
# Debian's own checker finds no error.
if command -v lintian >/dev/null 2>&1; then
    lintian --fail-on error --tag-display-limit 0 --allow-root "$packages"/*.deb
else
    echo "skipped: there is no lintian"
fi
