#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds library, nxtick and tests with other tool chains than those of scripts/test.sh, and runs the tests.
#
#     scripts/toolchains.sh                                 all of them
#     scripts/toolchains.sh libc++ lto                      those that are named
#     scripts/toolchains.sh --tests "text price" libc++     nxtick's tests and those of some folders
#
#     libc++      clang++ with libc++
#     g++23       g++ with C++23
#     clang++23   clang++ with C++23
#     lto         g++ -O2 -march=x86-64-v3 with link-time optimisation
#     clang-new   the newest clang++ that the system has beside its usual one
#
# Warnings are errors. Tests of packages, which use the system's usual compilers, are left to scripts/test.sh, and so is what no
# compiler changes. A summary closes it. Exit status: 0 passed, 1 failed, 2 wrong arguments, 3 when a tool chain cannot be had.
set -u
cd "$(dirname "$0")/.."
. scripts/packages.sh
. scripts/googletest.sh

folders=
if [ "${1:-}" = --tests ] && [ $# -ge 2 ]; then
    folders=$2
    shift 2
fi
kinds=("$@")
[ $# -gt 0 ] || kinds=(libc++ g++23 clang++23 lto clang-new)
usage() { sed -n '5,13s/^# \{0,1\}//p' "$0" >&2; exit 2; }
for kind in "${kinds[@]}"; do
    case $kind in
        libc++ | g++23 | clang++23 | lto | clang-new) ;;
        *) usage ;;
    esac
done
for name in $folders; do
    compgen -G "tests/$name/*Test.cpp" >/dev/null || { echo "there are no tests in tests/$name" >&2; usage; }
done

# What the tests show of nothing but the sources, of other programs, or of packages.
left_out='^(package|gdb|docs\.(reference|figures|settings|named_tests|tick_tables_today)|proofs\.(models|words)|nxtick\.tables_today|log\.reading)'

# With libc++ of Debian 12 these end in the system's libraries: pthread_exit and pthread_cancel unwind the stack by libgcc, which
# calls libc++'s handlers, and these ask another unwinder about it. In the first one libc++ also aborts in a thread when all keys
# of thread-specific data are taken.
with_libcxx='nxLogProcess\.EndsAndWritesWhateverBecomesOfIt|nxThread\.ReportsAnExceptionThatLeavesRun'
with_libcxx+='|nxFunctorThreadPool\.(ACancelledThread|AThreadThatIsUnwound)LeavesTheRestToTheOthers'
with_libcxx+='|nxFunctorThread\.ACancellationWaitsForAFunctorThatCanBeCancelled'
# With clang++ 14 and C++23, {fmt} 9 refuses a precision that is an argument, in every formatter that a program derives from its own.
with_clang_14_and_23='nxFmt\.CutsTextsOnly'

# newest_clang: its major version; none when the system has but one.
newest_clang()
{
    apt-cache pkgnames clang- 2>/dev/null | sed -n 's/^clang-\([0-9]*\)$/\1/p' | sort -rn |
        while read -r version; do
            [ "$version" -gt "$(clang_version)" ] || break
            command -v "clang++-$version" >/dev/null || ! would_remove "clang-$version" || continue
            echo "$version"
            break
        done
}

# would_remove PACKAGE: whether its installation removes another one, or is impossible.
would_remove()
{
    local plan
    plan=$(apt-get install -s --no-install-recommends "$1" 2>/dev/null) || return 0
    grep -q '^Remv' <<<"$plan"
}

summary=()
status=0
# outcome KIND TEXT STATUS
outcome()
{
    summary+=("$(printf '%-10s %s' "$1" "$2")")
    [ "$status" -eq 1 ] || [ "$3" -eq 0 ] || status=$3
}

# try KIND ARGUMENT...: builds and tests with CMake's arguments.
try()
{
    local kind=$1 folder=$PWD/build/toolchains/$1 targets=() filter=() without="$left_out|_NOT_BUILT$" result log
    shift
    log=$folder/tests.log
    mkdir -p "$folder"
    step "$folder" configure cmake -S . -B "$folder/nxcore" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -DNXCORE_UNITY=ON -DNXCORE_WARNINGS_AS_ERRORS=ON -DNXCORE_BUILD_EXAMPLES=OFF "$@" ||
        { outcome "$kind" "FAILED to configure" 1; return; }
    if [ -n "$folders" ]; then
        # What an earlier run has built for other folders may be out of date. A program that is missing has one test, _NOT_BUILT.
        find "$folder/nxcore/tests" -maxdepth 1 -type f -name 'test_*' ! -name '*.*' -delete
        targets=(--target nxtick)
        for name in $folders; do
            targets+=("test_$name" $(cd "$folder/nxcore" && find "tests/$name" -name cmake_install.cmake -printf '%h/all ' 2>/dev/null))
        done
        filter=(-R "^(nxtick|${folders// /|})\\.|\\.[A-Z]") without="$without|^docs\\."
    fi
    step "$folder" build cmake --build "$folder/nxcore" "${targets[@]}" -- -k 0 || { outcome "$kind" "FAILED to build" 1; return; }
    if [ "$kind" = libc++ ]; then
        without="$without|$with_libcxx"
        echo "left out, because libraries of the system end the program: ${with_libcxx//\\/}"
    elif [ "$kind" = clang++23 ] && [ "$(clang_version)" = 14 ]; then
        without="$without|$with_clang_14_and_23"
        echo "left out, because {fmt} is compiled to something else: ${with_clang_14_and_23//\\/}"
    fi
    ctest --test-dir "$folder/nxcore" --no-tests=error --output-on-failure -j "$((2 * $(nproc)))" -E "$without" \
        "${filter[@]}" >"$log" 2>&1
    result=$?
    [ $result -eq 0 ] || sed -n '/The following tests FAILED/,$p' "$log"
    sed -n 's/^[[:space:]]*[0-9]* - \(.*\) (Skipped)$/skipped: \1/p' "$log"
    outcome "$kind" "$(grep -aE 'tests passed' "$log"), $(grep -acE '^[[:space:]]*[0-9]+ - .*\((Skipped|Disabled)\)' "$log") skipped" $((result != 0))
}

need_test_tools && need clang++ clang || exit 3
for kind in "${kinds[@]}"; do
    printf '\n== %s\n' "$kind"
    case $kind in
        libc++)
            if ! need_libcxx || ! need /usr/src/googletest/CMakeLists.txt googletest; then
                outcome "$kind" "not tried: libc++ cannot be had" 3
                continue
            fi
            if ! build_googletest "$PWD/build/toolchains/libc++" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS=-stdlib=libc++; then
                outcome "$kind" "FAILED to build GoogleTest" 1
                continue
            fi
            try "$kind" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS=-stdlib=libc++ -DCMAKE_PREFIX_PATH="$PWD/build/toolchains/libc++/prefix"
            ;;
        g++23) try "$kind" -DCMAKE_CXX_COMPILER=g++ -DCMAKE_CXX_STANDARD=23 ;;
        clang++23) try "$kind" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_STANDARD=23 ;;
        lto)
            flags='-march=x86-64-v3 -flto=auto'
            grep -q ' avx2 ' /proc/cpuinfo || flags=-flto=auto
            echo "flags: -O2 $flags"
            try "$kind" -DCMAKE_CXX_COMPILER=g++ -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2
            ;;
        clang-new)
            version=$(newest_clang)
            if [ -z "$version" ] || ! need "clang++-$version" "clang-$version"; then
                outcome "$kind" "not tried: no newer clang++ can be installed beside clang++ $(clang_version)" 3
                continue
            fi
            "clang++-$version" --version | head -n 1
            try "$kind" -DCMAKE_CXX_COMPILER="clang++-$version"
            ;;
    esac
done

printf '\n== Summary\n'
printf '%s\n' "${summary[@]}"
exit $status
