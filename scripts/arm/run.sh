#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the test programs for Arm under the emulator; scripts/arm.sh starts it, in namespaces of its own where there are any.
#
# From the environment: ARM_FOLDER for logs, ARM_BUILD, ARM_PROGRAMS, ARM_SECONDS that a program may take, ARM_NAMESPACE, which is
# set when what is mounted here is seen nowhere else.
set -u
cd "$(dirname "$0")/../.."
emulator=(qemu-aarch64)
starts_programs=
source=/sys/devices/system/clocksource/clocksource0/current_clocksource
failed=0 all_passed=0 all_skipped=0

# register_emulator: has the kernel run programs for Arm, the head of whose ELF file it is told, with the emulator.
register_emulator()
{
    local head='\x7fELF\x02\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\xb7\x00'
    local mask='\xff\xff\xff\xff\xff\xff\xff\x00\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff'
    mount -t binfmt_misc none /proc/sys/fs/binfmt_misc 2>/dev/null &&
        printf '%s' ":nxcore-arm:M::$head:$mask:$(command -v qemu-aarch64):OC" 2>/dev/null >/proc/sys/fs/binfmt_misc/register
}

# tests_in LOG STATE: the names of the tests that have that state. A test that starts its program again is there twice.
tests_in() { grep -aoE "^\[ +$2 +\] [^ ,]+\.[^ ,]+" "$1" | sed 's/.* //' | sort -u; }

# tell_end PROGRAM LOG STATUS: how a program ended that did not come to its end, and in which test.
tell_end()
{
    local how="exit status $3"
    case $3 in
        124 | 137) how="it took longer than $ARM_SECONDS s" ;;
        142) how="the test took longer than $NX_TEST_SECONDS s" ;;
        129 | 13[0-9] | 14[0-9]) how="signal $(kill -l "$3")" ;;
    esac
    echo "test_$1 has not come to its end: $how; the last test is $(grep -aoE '^\[ RUN      \] .*' "$2" | tail -n 1 | cut -c14-)"
}

# run PROGRAM FILTER [LOG]: one test program; says how many tests there were.
run()
{
    local log=$ARM_FOLDER/${3:-test_$1}.log started=$SECONDS ended=1 status passed skipped
    # The shell's own word about a signal goes nowhere.
    { timeout -k 10 "$ARM_SECONDS" "${emulator[@]}" "$ARM_BUILD/tests/test_$1" --gtest_filter="$2" </dev/null >"$log" 2>&1; } 2>/dev/null
    status=$?
    # Its last line says that it has come to its end. The program that a test starts says so too, but another test follows.
    awk '/^\[ RUN/ {ended = 0} /^\[==========\] .* ran\./ {ended = 1} END {exit !ended}' "$log" || ended=
    if [ $status -ne 0 ] || [ -z "$ended" ]; then
        failed=1
        grep -aE 'Failure|FAILED|ssertion' "$log"
        [ -n "$ended" ] && [ $status -eq 1 ] || tell_end "$1" "$log" $status
    fi
    skipped=$(tests_in "$log" SKIPPED)
    passed=$(comm -23 <(tests_in "$log" OK) <(sort -u <(tests_in "$log" FAILED) - <<<"$skipped"))
    passed=$(grep -c . <<<"$passed")
    # A test that skips itself has given its reason in the line after this one.
    awk '/^\[ RUN      \] / {name = $4} reason {print "skipped itself, " $0 ": " name} {reason = /: Skipped$/}' "$log" | sort -u
    all_passed=$((all_passed + passed)) all_skipped=$((all_skipped + $(grep -c . <<<"$skipped")))
    printf '%-10s %3d tests passed, %d s\n' "$1" "$passed" $((SECONDS - started))
}

# leave_out PROGRAM TESTS REASON: tells which tests are left out, and why, and adds them to `filter`.
leave_out()
{
    local patterns pattern name names=() before
    IFS=: read -ra patterns <<<"$2"
    for pattern in "${patterns[@]}"; do
        before=${#names[@]}
        for name in "${tests_of_program[@]}"; do
            # shellcheck disable=SC2053
            [[ $name != $pattern ]] || names+=("$name")
        done
        [ ${#names[@]} -gt "$before" ] || { echo "test_$1 has no test $pattern"; failed=1; }
    done
    echo "skipped, because $3: ${names[*]}"
    all_skipped=$((all_skipped + ${#names[@]}))
    filter=$filter:$2
}

# filter_for PROGRAM: `filter` leaves out what cannot be seen here.
filter_for()
{
    local program tests reason
    mapfile -t tests_of_program < <("${emulator[@]}" "$ARM_BUILD/tests/test_$1" --gtest_list_tests |
        awk '/^[^ ].*\.$/ {suite = $1} /^  / {print suite $1}')
    filter=-
    while IFS='|' read -r program tests reason; do
        [ "$program" != "$1" ] || leave_out "$1" "$tests" "$reason"
    done <scripts/arm/skipped.txt
    [ -n "$starts_programs" ] && return
    tests=$(awk 'FNR == 1 {name = ""} /^TEST/ {split($0, part, /[(), ]+/); name = part[2] "." part[3]}
        /nx(PrivateMemory::)?InNewProcess\(|NX_LOGGER|\/proc\/self\/exe/ && name {print name}' tests/"$1"/*.cpp | sort -u | paste -sd:)
    [ -z "$tests" ] || leave_out "$1" "$tests" "the kernel does not start programs for Arm here"
}

if [ -n "${ARM_NAMESPACE:-}" ] && register_emulator; then
    starts_programs=1 emulator=()
fi
[ -n "$starts_programs" ] || echo "The kernel does not start programs for Arm here: it would have to register the emulator in a namespace."
declare -A filters
for program in $ARM_PROGRAMS; do
    filter_for "$program"
    filters[$program]=$filter
    run "$program" "$filter"
done

# The other clock: where the kernel reads the processor's counter, the library does so too.
clocks=()
for each in time platform; do
    case " $ARM_PROGRAMS " in *" $each "*) clocks+=("$each") ;; esac
done
if [ ${#clocks[@]} -eq 0 ]; then
    :
elif [ -n "${ARM_NAMESPACE:-}" ] && echo arch_sys_counter >"$ARM_FOLDER/clocksource" &&
    mount --bind "$ARM_FOLDER/clocksource" $source 2>/dev/null; then
    echo "with the processor's counter as the clock:"
    for each in "${clocks[@]}"; do run "$each" "${filters[$each]}" "counter_$each"; done
else
    echo "not tried: the processor's counter as the clock, because $source cannot be covered"
fi
echo "tests: $all_passed passed, $all_skipped skipped"
exit $failed
