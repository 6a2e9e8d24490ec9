# SPDX-License-Identifier: Apache-2.0
# Fuzz targets under address and undefined-behaviour sanitizers, and the comparison with independent exact arithmetic.

# libFuzzer prints "stat::number_of_executed_units: N" for every job.
row_fuzz()
{
    build fuzz || { report fuzz "does not build" 1; return; }
    local targets=() target name each runs total=0 least= found=0
    for target in build/fuzz/fuzz/fuzz_*; do [ -f "$target" ] && [ -x "$target" ] && targets+=("$target"); done
    [ ${#targets[@]} -gt 0 ] || { report fuzz "no targets" 1; return; }
    each=$((seconds * $(nproc) / ${#targets[@]}))
    [ "$each" -gt 0 ] || each=1     # 0 would be for ever
    rm -f build/endure/fuzz_*.log build/endure/fuzz-failed
    printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -c '
        name=$(basename {}); name=${name#fuzz_}
        mkdir -p build/endure/corpus/$name build/endure/artifacts fuzz/corpus/$name
        {} -max_total_time='"$each"' -runs="${NX_FUZZ_RUNS:-1000000000}" -timeout=10 -rss_limit_mb=4096 -print_final_stats=1 -verbosity=0 \
            -artifact_prefix=build/endure/artifacts/$name- build/endure/corpus/$name fuzz/corpus/$name >build/endure/fuzz_$name.log 2>&1 ||
            echo "$name" >>build/endure/fuzz-failed'
    for target in "${targets[@]}"; do
        name=${target##*/fuzz_}
        runs=$(sed -n 's/stat::number_of_executed_units: *//p' "build/endure/fuzz_$name.log" 2>/dev/null)
        [ "${runs:-0}" -gt 0 ] || echo "$name" >>build/endure/fuzz-failed
        runs=${runs:-0}
        total=$((total + runs))
        if [ -z "$least" ] || [ "$runs" -lt "$least" ]; then least=$runs; fi
        printf '   %-16s %12d runs\n' "$name" "$runs"
    done
    # What failed in this run; artifacts of earlier ones are kept and not counted.
    if [ -s build/endure/fuzz-failed ]; then
        for name in $(sort -u build/endure/fuzz-failed); do
            found=$((found + 1))
            printf '   FAILED: %s\n' "$name"
            tail -n 20 "build/endure/fuzz_$name.log"
        done
    fi
    report fuzz "${#targets[@]} targets, $total runs in all, at least $least each" "$found"
}
add_row fuzz 10

# The tests read NX_TEST_OPERATIONS; rounds of ten million go on until the time is over.
row_differential()
{
    build release || { report differential "does not build" 1; return; }
    local end=$((SECONDS + seconds)) operations=0 round=0 failed=0 programs=(test_numeric test_text test_price) program
    while [ $SECONDS -lt $end ] || [ $round -eq 0 ]; do
        for program in "${programs[@]}"; do
            NX_TEST_OPERATIONS=${NX_ENDURE_OPERATIONS:-10000000} NX_TEST_SEED=$((RANDOM * 32768 + RANDOM)) \
                run_tests release "$program" '*Oracle*:*Differential*' || { failed=$((failed + 1)); cat "build/endure/$program.log"; }
        done
        round=$((round + 1))
    done
    operations=$((round * ${NX_ENDURE_OPERATIONS:-10000000}))
    report differential "decimals, text, tick steps: $operations operations each" "$failed"
}
add_row differential 4

# The whole suite with both compilers under both sanitizers, until the time is over.
row_sanitizers()
{
    local preset failed=0 end=$((SECONDS + seconds)) rounds=0
    for preset in asan-ubsan clang-sanitize tsan clang-tsan; do
        build "$preset" || failed=$((failed + 1))
    done
    while [ $SECONDS -lt $end ] || [ $rounds -eq 0 ]; do
        for preset in asan-ubsan clang-sanitize tsan clang-tsan; do
            ctest --preset "$preset" -j "$(nproc)" --schedule-random >"build/endure/$preset-tests.log" 2>&1 ||
                { failed=$((failed + 1)); tail -n 20 "build/endure/$preset-tests.log"; }
        done
        rounds=$((rounds + 1))
    done
    report sanitizers "g++ and clang++, address+undefined and thread, $rounds times" "$failed"
}
add_row sanitizers 2

# valgrind over the single-threaded part.
row_valgrind()
{
    need valgrind valgrind && build debug || { report valgrind "not run" 1; return; }
    local program failed=0
    for program in test_enum test_numeric test_text; do
        NX_TEST_OPERATIONS=2000 valgrind --quiet --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=definite \
            "build/debug/tests/$program" --gtest_brief=1 >"build/endure/valgrind-$program.log" 2>&1 ||
            { failed=$((failed + 1)); tail -n 20 "build/endure/valgrind-$program.log"; }
    done
    report valgrind "enumerations, decimals, text" "$failed"
}
add_row valgrind 1

row_mutants()
{
    scripts/mutants.py --count 1000 --minutes $((seconds / 60 + 1)) --seed "$RANDOM" | tee build/endure/mutants.log | tail -n 3
    report mutants "$(tail -n 3 build/endure/mutants.log | sed 's/ mutants killed//' | paste -sd ';')" 0
}
add_row mutants 2
