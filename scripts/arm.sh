#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the library, nxtick and the tests for 64-bit Arm with Debian's cross compiler, and runs the tests under the emulator.
#
#     scripts/arm.sh                           library, nxtick, all tests that an emulator can run
#     scripts/arm.sh --quick                   library, nxtick and the tests of text, numbers and prices
#     scripts/arm.sh --programs "log thread"   library, nxtick and the tests of these folders
#     scripts/arm.sh --packages                the Debian packages for arm64, and what can be checked of them without Arm
#
# Programs that start programs need the kernel's registration of foreign binaries. It is made in a mount namespace of its own,
# so that the machine keeps its own. The emulator runs with the memory order of the machine below it: nothing here proves
# anything about memory order. Exit status: 0 passed, 1 failed, 3 when the compiler or the emulator cannot be had.
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

need_build_tools || exit 1
need aarch64-linux-gnu-g++ g++-aarch64-linux-gnu qemu-aarch64 qemu-user /usr/src/googletest/CMakeLists.txt googletest || exit 3

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

# What no emulator shows, and why. Names as GoogleTest has them.
cat >"$folder/skipped.txt" <<'END'
the emulator does not tell the next owner of a robust mutex that its owner has died|*TakesOverFromAHolderThatDied:*ARobustMutexOutlivesOwnersThatAreKilled:*AMutexBelongsToAThreadAndCounts:*AForkedChildSharesWhatIsOpenAndOwnsNothing:killedProcesses.*
children of programs with several threads end inside the emulator|*ForkWhileThreadsLog*:*DoesNotWriteTheParentsQueueInTheChild:*OutlivesTheFileSizeLimit:*NeverBecomesAStandardStream:*DoesWithASmallBuffer:systemCallFaults.*:*WhatWasSetBeforeTheEnvironmentIsReadCountsToo
the private namespace of users has no second user|hostileNeighbours.*
END

# The machine's registration of Arm programs: the head of a 64-bit ELF file for Arm.
export NX_ARM_FOLDER=$folder NX_ARM_BUILD=$build NX_ARM_PROGRAMS=$programs
export QEMU_LD_PREFIX=$root
# The emulator takes ten times as long; the Release build tries the random programs of the tests in full.
export NX_TEST_OPERATIONS=${NX_TEST_OPERATIONS:-30000}
cat >"$folder/run.sh" <<'END'
set -u
if mount -t binfmt_misc none /proc/sys/fs/binfmt_misc 2>/dev/null &&
    printf '%s' ':nxcore-arm:M::\x7fELF\x02\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\xb7\x00:\xff\xff\xff\xff\xff\xff\xff\x00\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff:'"$(command -v qemu-aarch64)"':OC' \
        >/proc/sys/fs/binfmt_misc/register 2>/dev/null; then
    emulator=()
else
    echo "programs that start programs fail here: the kernel does not register foreign binaries in a namespace"
    emulator=(qemu-aarch64)
fi
failed=0 ran=0 skipped=0
# run NAME FILTER: one test program; says how many tests there were.
run()
{
    local program=$NX_ARM_BUILD/tests/test_$1 log=$NX_ARM_FOLDER/test_$1.log number
    "${emulator[@]}" "$program" --gtest_filter="$2" >"$log" 2>&1 || { failed=1; grep -aE 'Failure|FAILED|ssertion' "$log"; }
    number=$(grep -ac '^\[       OK' "$log")
    ran=$((ran + number))
    printf '%-10s %3d tests passed, %s\n' "$1" "$number" "$(grep -aoE '[0-9]+ ms total' "$log" | tail -n 1)"
}
# skip NAME: tells which tests of a program are left out, and why; `filter` then leaves them out.
skip()
{
    local reason tests names
    filter=-
    while IFS='|' read -r reason tests; do
        names=$("${emulator[@]}" "$NX_ARM_BUILD/tests/test_$1" --gtest_filter="$tests" --gtest_list_tests | sed -n 's/^  \([^ ]*\).*/\1/p')
        [ -n "$names" ] || continue
        echo "skipped, because $reason:" $names
        skipped=$((skipped + $(wc -l <<<"$names")))
        filter=$filter:$tests
    done <"$NX_ARM_FOLDER/skipped.txt"
}
for program in $NX_ARM_PROGRAMS; do
    skip "$program"
    run "$program" "$filter"
done
# The other clock: where the kernel reads the processor's counter, the library does so too.
source=/sys/devices/system/clocksource/clocksource0/current_clocksource
clocks=()
for each in 'time:*' 'platform:nxClock*'; do
    case " $NX_ARM_PROGRAMS " in *" ${each%%:*} "*) clocks+=("$each") ;; esac
done
if [ ${#clocks[@]} -eq 0 ]; then
    :
elif echo arch_sys_counter >"$NX_ARM_FOLDER/clocksource" && mount --bind "$NX_ARM_FOLDER/clocksource" $source 2>/dev/null; then
    echo "with the processor's counter as the clock:"
    for each in "${clocks[@]}"; do run "${each%%:*}" "${each#*:}"; done
else
    echo "not tried: the processor's counter as the clock, because $source cannot be covered"
fi
echo "tests: $ran passed, $skipped skipped"
exit $failed
END
unshare -Urm bash "$folder/run.sh"
