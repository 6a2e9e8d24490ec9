#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the library, nxtick and the tests for 64-bit Arm with Debian's cross compiler, and runs the tests under the emulator.
#
#     scripts/arm.sh                           library, nxtick, all tests that an emulator can run
#     scripts/arm.sh --quick                   library, nxtick and the tests of text, numbers and prices
#     scripts/arm.sh --programs "log thread"   library, nxtick and the tests of these folders
#     scripts/arm.sh --packages                the Debian packages for arm64, and what can be checked of them without Arm
#
# Programs that start programs need the kernel's registration of foreign binaries. It is made in namespaces of users and mounts
# that end with the script, so that the machine keeps its own and nothing stays mounted. Without such namespaces the tests that
# start programs, and the second of the two clocks, are left out and named. A program ends after 20 minutes (ARM_SECONDS), and a
# test after 5 (NX_TEST_SECONDS). The emulator runs with the memory order of the machine below it: nothing here proves anything
# about memory order. Exit status: 0 passed, 1 failed, 3 when the compiler or the emulator cannot be had.
set -u
cd "$(dirname "$0")/.."
. scripts/packages.sh
. scripts/googletest.sh

programs="enum text numeric time price app testing cost platform thread log endurance"
kind=nxcore
flags=-O2
packages=
case "${1:-} $#" in
    " 0") ;;
    "--quick 1") programs="text numeric price" kind=quick flags=-O1 ;;
    "--programs 2") programs=$2 ;;
    "--packages 1") packages=1 ;;
    *) sed -n '5,8s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
esac

root=/usr/aarch64-linux-gnu
folder=$PWD/build/arm64
build=$folder/$kind
toolchain=$PWD/cmake/aarch64-linux-gnu.cmake

need_build_tools && need python3 python3 || exit 1
if ! need aarch64-linux-gnu-g++ g++-aarch64-linux-gnu qemu-aarch64 qemu-user /usr/src/googletest/CMakeLists.txt googletest; then
    echo "Nothing was tried for Arm, because the cross compiler, the emulator or GoogleTest's sources cannot be had." >&2
    exit 3
fi

mkdir -p "$folder"
if [ -n "$packages" ]; then
    need dpkg-shlibdeps dpkg-dev || exit 3
    step "$folder" configure-packages cmake --preset package -B "$folder/package" --toolchain "$toolchain" -DNXCORE_UNITY=ON \
        -DCMAKE_INSTALL_LIBDIR=lib/aarch64-linux-gnu &&
        step "$folder" build-packages cmake --build "$folder/package" &&
        step "$folder" cpack cpack --config "$folder/package/CPackConfig.cmake" -B "$folder/packages" &&
        bash tests/package/armDebs.sh "$folder/packages"
    exit
fi

build_googletest "$folder" --toolchain "$toolchain" || exit 1
step "$folder" "configure-$kind" cmake -S . -B "$build" -G Ninja --toolchain "$toolchain" -DNXCORE_ARM_PREFIX="$folder/prefix" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=$flags -DNXCORE_UNITY=ON -DNXCORE_WARNINGS_AS_ERRORS=ON \
    -DNXCORE_BUILD_EXAMPLES=OFF || exit 1

targets=(nxcore nxtick)
for program in $programs; do targets+=("test_$program"); done
step "$folder" "build-$kind" cmake --build "$build" --target "${targets[@]}" || exit 1

export ARM_FOLDER=$folder ARM_BUILD=$build ARM_PROGRAMS=$programs QEMU_LD_PREFIX=$root
# The emulator takes ten times as long: less is tried of what takes a number of tries, and every test may take longer.
export NX_TEST_OPERATIONS=${NX_TEST_OPERATIONS:-30000} NX_TEST_FAULTS=${NX_TEST_FAULTS:-100}
export NX_TEST_SECONDS=${NX_TEST_SECONDS:-300} ARM_SECONDS=${ARM_SECONDS:-1200}
if ! unshare -Urm true 2>/dev/null; then
    echo "There are no namespaces of users here. What is not tried for want of them is named below."
    bash scripts/arm/run.sh
elif [ "$(id -u)" -ne 0 ]; then
    ARM_NAMESPACE=1 unshare -Urm bash scripts/arm/run.sh
else
    # Root has all users in its namespace, because some tests need a second one. They are given to it from outside.
    rm -f "$folder/process"
    {
        until [ -s "$folder/process" ]; do sleep 0.1; done
        for map in gid_map uid_map; do awk '{print $1, $1, $3}' /proc/self/$map >"/proc/$(<"$folder/process")/$map"; done
    } &
    ARM_NAMESPACE=1 unshare -Um bash -c 'echo $$ >"$ARM_FOLDER/process"
        for _ in {1..100}; do [ "$(id -u)" -ne 0 ] || break; sleep 0.1; done
        exec bash scripts/arm/run.sh'
fi
