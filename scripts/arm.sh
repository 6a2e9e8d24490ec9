#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the library, nxtick and the tests for 64-bit Arm with Debian's cross compiler, and runs the tests under the emulator.
#
#     scripts/arm.sh             library, nxtick, all tests that an emulator can run
#     scripts/arm.sh --quick     library, nxtick and the tests of values, text, time, prices and the application
#
# Programs that start programs need the kernel's registration of foreign binaries. It is made in a mount namespace of its own,
# so that the machine keeps its own. The emulator runs with the memory order of the machine below it: nothing here proves
# anything about memory order. Exit status: 0 passed, 1 failed, 3 when the compiler or the emulator cannot be had.
set -u
cd "$(dirname "$0")/.."
. scripts/packages.sh

quick=
case ${1:-} in
    "") ;;
    --quick) quick=1 ;;
    *) sed -n '4,6s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
esac

root=/usr/aarch64-linux-gnu
folder=$PWD/build/arm64
build=$folder/nxcore
toolchain=$PWD/cmake/aarch64-linux-gnu.cmake

need_build_tools || exit 1
need aarch64-linux-gnu-g++ g++-aarch64-linux-gnu qemu-aarch64 qemu-user /usr/src/googletest/CMakeLists.txt googletest || exit 3

mkdir -p "$folder"
# step NAME COMMAND...: runs it quietly, and shows all that it said when it fails.
step()
{
    local name=$1
    shift
    "$@" >"$folder/$name.log" 2>&1 || { grep -E 'error|FAILED' "$folder/$name.log" || tail -n 30 "$folder/$name.log"; return 1; }
}

if [ ! -e "$folder/prefix/lib/cmake/GTest/GTestConfig.cmake" ]; then
    step googletest-configure cmake -S /usr/src/googletest -B "$folder/googletest" -G Ninja --toolchain "$toolchain" \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$folder/prefix" &&
        step googletest cmake --build "$folder/googletest" --target install || exit 1
fi
step configure cmake -S . -B "$build" -G Ninja --toolchain "$toolchain" -DNXCORE_ARM_PREFIX="$folder/prefix" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O2 -DNXCORE_UNITY=ON -DNXCORE_WARNINGS_AS_ERRORS=ON \
    -DNXCORE_BUILD_EXAMPLES=OFF || exit 1

programs="enum text numeric time price app testing cost"
[ -n "$quick" ] || programs="$programs platform thread log endurance"
targets=(nxcore nxtick)
for program in $programs; do targets+=("test_$program"); done
step build cmake --build "$build" --target "${targets[@]}" || exit 1

# What no emulator shows, and why. Names as GoogleTest has them.
skipped_because=(
    "the emulator does not tell the next owner of a robust mutex that its owner has died|*TakesOverFromAHolderThatDied:*ARobustMutexOutlivesOwnersThatAreKilled:*AMutexBelongsToAThreadAndCounts:*AForkedChildSharesWhatIsOpenAndOwnsNothing:killedProcesses.*"
    "children of programs with several threads end inside the emulator|*ForkWhileThreadsLog*:*DoesNotWriteTheParentsQueueInTheChild:*OutlivesTheFileSizeLimit:*NeverBecomesAStandardStream:*DoesWithASmallBuffer:systemCallFaults.*:*WhatWasSetBeforeTheEnvironmentIsReadCountsToo"
    "the private namespace of users has no second user|hostileNeighbours.*"
)
filter=
for each in "${skipped_because[@]}"; do
    echo "skipped, because ${each%%|*}: ${each#*|}"
    filter=$filter${filter:+:}${each#*|}
done

# The machine's registration of Arm programs: the head of a 64-bit ELF file for Arm.
export NX_ARM_FOLDER=$folder NX_ARM_ROOT=$root NX_ARM_FILTER=$filter NX_ARM_PROGRAMS=$programs
export QEMU_LD_PREFIX=$root
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
failed=0
# run NAME FILTER: one test program; says how many tests there were.
run()
{
    local log=$NX_ARM_FOLDER/test_$1.log
    "${emulator[@]}" "$NX_ARM_FOLDER/nxcore/tests/test_$1" --gtest_filter="$2" --gtest_brief=1 >"$log" 2>&1 || failed=1
    printf '%-10s %s\n' "$1" "$(grep -E 'tests? ran|PASSED|FAILED' "$log" | tr -s '\n ' ' ')"
}
for program in $NX_ARM_PROGRAMS; do run "$program" "-$NX_ARM_FILTER"; done
# The other clock: where the kernel reads the processor's counter, the library does so too.
source=/sys/devices/system/clocksource/clocksource0/current_clocksource
if echo arch_sys_counter >"$NX_ARM_FOLDER/clocksource" && mount --bind "$NX_ARM_FOLDER/clocksource" $source 2>/dev/null; then
    echo "with the processor's counter as the clock:"
    run time '*'
    case " $NX_ARM_PROGRAMS " in *" platform "*) run platform 'nxClock*' ;; esac
else
    echo "not tried: the processor's counter as the clock, because $source cannot be covered"
fi
exit $failed
END
unshare -Urm bash "$folder/run.sh"
