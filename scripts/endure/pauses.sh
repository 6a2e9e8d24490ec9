# SPDX-License-Identifier: Apache-2.0
# Tests of threads, processes and the log, whose calls of the system pause at random: orders that a quiet machine seldom shows.

row_pauses()
{
    build release || { report pauses "does not build" 1; return; }
    local log=build/endure/pauses.log program tests
    # Some tests make so many calls that their pauses add up to minutes.
    local -x NX_TEST_SECONDS=600 NX_TEST_PAUSES=${NX_ENDURE_PAUSES:-5}
    tests=$(for program in test_log test_thread test_platform; do
        "build/release/tests/$program" --gtest_list_tests |
            awk -v program="$program" '/^[^ ]/ {suite = $1} /^  / {print program, suite $1}'
    done)
    [ -n "$tests" ] || { report pauses "the test programs do not start" 1; return; }
    while shuf <<<"$tests" 2>/dev/null; do :; done | timeout "$seconds" xargs -P $((4 * $(nproc))) -L 1 bash -c '
        text=$("build/release/tests/$0" --gtest_brief=1 --gtest_filter="$1" 2>&1) && echo "passed $1" ||
            printf "FAILED %s\n%s\n" "$1" "$text"' >"$log"
    grep -v '^passed' "$log"
    report pauses "$(grep -c '^passed' "$log") tests whose calls of the system pause at random" "$(grep -c '^FAILED' "$log")"
}
add_row pauses 2
