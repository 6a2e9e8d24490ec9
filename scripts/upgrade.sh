#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Upgrades the Debian packages of version 1.0 to today's, as apt does on a user's machine, and fails on a difference:
#
# - programs built with 1.0 print the same with today's library, and so do they when they are built with today's headers;
# - a program built with today's headers does not start silently with the library of 1.0, nor does its package accept it;
# - after a purge nothing is left.
#
#     scripts/upgrade.sh [PACKAGES]     the folder of today's packages; without it scripts/release.sh makes them
#
# It runs as root, in a mount namespace with a layer above the machine's files, so that nothing is installed on the machine.
# It needs the history of the repository back to 1.0.
set -eu
cd "$(dirname "$0")/.."
first=be025f42fddda42052b13f6c3d9389376b77d0be  # version 1.0
work=$PWD/build/upgrade
programs=(options_and_log tick_table_threads values_and_errors)

fail() { echo "upgrade: $*" >&2; exit 1; }

# The packages of 1.0, which are built once.
build_first()
{
    git cat-file -e "$first^{commit}" 2>/dev/null || fail "commit $first is missing: fetch the whole history (git fetch --unshallow)"
    ls "$work"/packages-1.0/libnxcore1_*.deb >/dev/null 2>&1 && return
    mkdir -p "$work/1.0"
    git archive "$first" | tar -x -C "$work/1.0"
    cmake -S "$work/1.0" --preset package -DNXCORE_UNITY=ON >"$work/1.0.log"
    cmake --build "$work/1.0/build/package" >>"$work/1.0.log"
    cpack --config "$work/1.0/build/package/CPackConfig.cmake" -B "$work/packages-1.0" >>"$work/1.0.log"
}

# --- inside the namespace

step() { printf '== %s\n' "$*"; }

apt() { apt-get -y -q -o Dpkg::Use-Pty=0 "$@" >"$work/apt.log" 2>&1 || { cat "$work/apt.log"; fail "apt-get $*"; }; }

# compile FOLDER: the programs of 1.0 with the headers and the library that are installed.
compile()
{
    mkdir -p "$work/$1"
    local program
    for program in "${programs[@]}"; do
        # shellcheck disable=SC2046
        g++ -std=c++20 -O1 "$work/1.0/examples/$program/main.cpp" -o "$work/$1/$program" $(pkg-config --cflags --libs nxcore)
    done
}

# run FOLDER: what its programs print.
run()
{
    local program arguments
    for program in "${programs[@]}"; do
        arguments=
        [ "$program" != options_and_log ] || arguments="-symbol WTI -price -36.98 -verbose"
        echo "$program:"
        # shellcheck disable=SC2086
        (scratch=$(mktemp -d) && cd "$scratch" && "$work/$1/$program" $arguments) || fail "$program of $1: exit status $?"
    done
}

# The files of the system, without what apt keeps for itself.
files() { find /usr /etc /opt /var -xdev \( -path /var/lib/dpkg -o -path /var/lib/apt -o -path /var/cache -o -path /var/log \) -prune -o -print | sort; }

# The dependency that a package of the program gets.
dependency()
{
    (cd "$(mktemp -d)" && mkdir debian && printf 'Source: x\n\nPackage: x\nArchitecture: any\n' >debian/control && dpkg-shlibdeps -O "$1" 2>/dev/null)
}

# inside PACKAGES
inside()
{
    unset QRX_LOG_DIRECTORY QRX_LOG_LEVEL QRX_LOG_TO_CONSOLE
    local new library said
    new=$(sed -n 's/^project(nxcore VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
    files >"$work/before.txt"

    step "install 1.0.0, build and run its programs"
    apt install "$work"/packages-1.0/*deb
    compile built-with-first
    run built-with-first >"$work/first.txt"
    library=$(dirname "$(readlink -f /usr/lib/*/libnxcore.so.1)")
    cp -a "$library"/libnxcore.so.1* "$work/built-with-first/"

    step "upgrade to $new, run the same programs"
    apt install "$1"/*deb
    readlink -f /usr/lib/*/libnxcore.so.1 | grep -q "\.$new\$" || fail "the library is not $new"
    run built-with-first | diff "$work/first.txt" - || fail "programs of 1.0 print something else"

    step "build the same programs with $new"
    compile built-with-new
    run built-with-new | diff "$work/first.txt" - || fail "programs print something else when they are built with $new"
    said=$(dependency "$work/built-with-new/values_and_errors")
    [[ $said == *"libnxcore1 (>= ${new%.*}.0)"* ]] || fail "a package would depend on: $said"
    echo "a package of them depends on: $said"

    step "a program built with $new meets the library of 1.0.0"
    said=$(LD_LIBRARY_PATH=$work/built-with-first "$work/built-with-new/values_and_errors" 2>&1 >/dev/null || true)
    [[ $said == *"no version information available"* || $said == *"undefined symbol"* ]] || fail "it starts silently"
    echo "the loader says: ${said%%$'\n'*}"

    step "purge"
    apt purge libnxcore1 libnxcore-dev libnxcore1-dbgsym nxcore-tools nxcore-tools-dbgsym nxcore-doc nxcore-source
    files >"$work/after.txt"
    diff "$work/before.txt" "$work/after.txt" || fail "files are left, or gone"
    ! ldconfig -p | grep nxcore || fail "the linker's cache still knows the library"
    echo "nothing is left"
}

if [ "${1:-}" = --inside ]; then
    inside "$2"
    exit
fi
[ "$(id -u)" -eq 0 ] || fail "only root can install packages, even in a namespace"
. scripts/packages.sh
need "${build_tools[@]}" pkg-config pkg-config dpkg-shlibdeps dpkg-dev
! dpkg-query -W 'libnxcore*' >/dev/null 2>&1 || fail "nxcore is installed on this machine already"
mkdir -p "$work"
build_first
packages=${1:-}
if [ -z "$packages" ]; then
    scripts/release.sh
    packages=build/packages
fi
rm -rf "$work/packages"
mkdir "$work/packages"
cp "$packages"/*deb "$work/packages/"

# The layer is in memory and vanishes with the namespace.
root=$(mktemp -d)
trap 'rmdir "$root"' EXIT
# shellcheck disable=SC2016
unshare --mount bash -eu -c '
    mount -t tmpfs layer "$1"
    mkdir "$1/upper" "$1/work" "$1/all"
    mount -t overlay machine -o "lowerdir=/,upperdir=$1/upper,workdir=$1/work" "$1/all"
    for folder in /proc /dev "$2/build/upgrade"; do mount --bind "$folder" "$1/all$folder"; done
    mount -t tmpfs scratch "$1/all/tmp"
    exec chroot "$1/all" bash "$2/scripts/upgrade.sh" --inside "$2/build/upgrade/packages"' upgrade "$root" "$PWD"
