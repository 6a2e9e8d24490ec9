#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the library and everything on it, then runs every test, with both compilers and under the sanitizers.
#
#     scripts/test.sh            everything
#     scripts/test.sh --quick    the format and the Release build with its tests, while one works on something
#
# Stages: the optimised build with g++; address and undefined-behaviour sanitizers with clang++, in which the fuzz targets
# then run over their kept corpus and the coverage of core/ is counted; the thread sanitizer with g++; library, nxtick and each
# header alone with clang++ and libc++; values, texts and prices on Arm, under the emulator; the packages. A summary closes it.
# Further tool chains are in scripts/toolchains.sh. What one run needs more of is an environment variable: NX_FUZZ_RUNS, NX_FUZZ_SECONDS.
set -u
cd "$(dirname "$0")/.."
. scripts/packages.sh

case ${1:-} in
    "" | --quick) ;;
    *) sed -n '3,6s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
esac

summary=()
failed=0

# stage NAME COMMAND...: runs it, remembers how it ended and how long it took.
stage()
{
    local name=$1 start=$SECONDS
    shift
    printf '\n== %s\n' "$name"
    if "$@"; then
        summary+=("$(printf '%-34s passed %5d s   %s' "$name" $((SECONDS - start)) "${note:-}")")
    else
        summary+=("$(printf '%-34s FAILED %5d s   %s' "$name" $((SECONDS - start)) "${note:-}")")
        failed=1
    fi
    note=
}

# tests PRESET: configures, builds and runs one preset; the note tells how many tests there were.
tests()
{
    local log=build/$1/tests.log
    cmake --preset "$1" >build-"$1".log 2>&1 && mv build-"$1".log build/"$1"/configure.log ||
        { cat build-"$1".log; rm -f build-"$1".log; return 1; }
    cmake --build --preset "$1" >build/"$1"/build.log 2>&1 || { grep -E 'error|warning|FAILED' build/"$1"/build.log; return 1; }
    # Two for each processor: many tests wait for a second or two.
    ctest --preset "$1" --no-tests=error --output-on-failure --progress -j "$((2 * $(nproc)))" >"$log" 2>&1
    local result=$?
    if [ $result -ne 0 ]; then grep -vE '^\s*[0-9]+/[0-9]+ Test|^\s*Start' "$log"; fi
    note=$(grep -E 'tests passed' "$log")
    tail -n 5 "$log"
    return $result
}

# Versions of the formatter differ in what they make of the same settings; one of them counts.
format()
{
    local version
    version=$(clang-format --version | sed 's/.*version \([0-9]*\).*/\1/')
    if [ "$version" != 14 ]; then
        note="not looked at: clang-format 14 counts, this is $version"
        return 0
    fi
    git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run -Werror
}

# Every source names its licence.
licences()
{
    local without
    without=$(git ls-files '*.h' '*.cpp' '*.inc' '*.in' '*.py' '*.sh' '*.cmake' '*CMakeLists.txt' |
        xargs grep -L 'SPDX-License-Identifier: Apache-2.0')
    [ -z "$without" ] || { echo "without a licence line:"; echo "$without"; return 1; }
}

# One fuzz target over its kept corpus and a bounded number of new inputs.
fuzz_one()
{
    local name=${1##*/fuzz_} folder=build/clang-sanitize
    mkdir -p "$folder/corpus/$name" "fuzz/corpus/$name"
    "$1" -runs="${NX_FUZZ_RUNS:-200000}" -max_total_time="${NX_FUZZ_SECONDS:-4}" -timeout=10 -rss_limit_mb=4096 -verbosity=0 \
        -artifact_prefix="$folder/$name-" "$folder/corpus/$name" "fuzz/corpus/$name" >"$folder/$name.log" 2>&1 ||
        { echo "fuzz_$name:"; tail -n 30 "$folder/$name.log"; return 1; }
}
export -f fuzz_one

fuzz()
{
    local targets
    targets=$(find build/clang-sanitize/fuzz -maxdepth 1 -type f -name 'fuzz_*' -perm -u+x) && [ -n "$targets" ] || return 1
    note="$(wc -l <<<"$targets") targets"
    xargs -P "$(nproc)" -I{} bash -c 'fuzz_one {}' <<<"$targets"
}

coverage()
{
    "llvm-profdata-$(clang_version)" merge -sparse build/clang-sanitize/coverage/*.profraw -o build/clang-sanitize/coverage.profdata &&
        "llvm-cov-$(clang_version)" report build/clang-sanitize/core/libnxcore.so -instr-profile=build/clang-sanitize/coverage.profdata \
            -ignore-filename-regex='/usr/|generated' >build/clang-sanitize/coverage.txt || return 1
    awk '$1 == "TOTAL" {print "lines of core/ reached: " $10}' build/clang-sanitize/coverage.txt
    note=$(awk '$1 == "TOTAL" {print $10 " of lines"}' build/clang-sanitize/coverage.txt)
}

libcxx()
{
    if ! need_libcxx; then
        note="skipped: there is no libc++"
        return 0
    fi
    tests clang-libcxx
}

arm()
{
    local result
    mkdir -p build
    scripts/arm.sh --quick >build/arm.log 2>&1
    result=$?
    cat build/arm.log
    if [ $result -eq 3 ]; then
        note="skipped: the cross compiler or the emulator cannot be had"
        return 0
    fi
    note=$(grep '^tests:' build/arm.log)
    return $result
}

# The packages of the Release build; those that scripts/release.sh makes hold debug symbols beside.
packages()
{
    cmake --build --preset release --target reference >build/release/reference.log 2>&1 ||
        { cat build/release/reference.log; return 1; }
    cpack --config build/release/CPackConfig.cmake -B build/release/packages >build/release/packages.log 2>&1 ||
        { tail -n 20 build/release/packages.log; return 1; }
    bash tests/package/debs.sh "$PWD/build/release/packages" "$PWD" || return 1
    note="$(ls build/release/packages/*.deb | wc -l) packages"
}

sizes()
{
    local library
    library=$(readlink -f build/release/core/libnxcore.so)
    note="$(stat -c %s "$library") bytes, text $(size -d "$library" | awk 'NR == 2 {print $1}')"
    echo "libnxcore.so: $note"
}

need_test_tools || exit 1
want_test_programs
if [ "${1:-}" = --quick ]; then
    stage "format" format
    stage "licences" licences
    stage "tests, g++ Release" tests release
    stage "size" sizes
else
    need_clang_tools || exit 1
    stage "format" format
    stage "licences" licences
    stage "reference" bash scripts/reference.sh --check
    stage "tests, g++ Release" tests release
    mkdir -p build/clang-sanitize
    export LLVM_PROFILE_FILE=$PWD/build/clang-sanitize/coverage/%4m.profraw
    stage "tests, clang address+undefined" tests clang-sanitize
    stage "coverage" coverage
    export LLVM_PROFILE_FILE=/dev/null
    stage "fuzz targets" fuzz
    stage "tests, g++ thread" tests tsan
    stage "tests, clang libc++" libcxx
    stage "tests, Arm under the emulator" arm
    stage "Debian packages" packages
    stage "size" sizes
fi

printf '\n== Summary\n'
printf '%s\n' "${summary[@]}"
printf '%s\n' "${summary[@]}" | sed -n 's/.* \([0-9]*\) tests failed out of \([0-9]*\).*/\1 \2/p' |
    awk '{failed += $1; all += $2} END {printf "tests: %d passed, %d failed\n", all - failed, failed}'
exit $failed
