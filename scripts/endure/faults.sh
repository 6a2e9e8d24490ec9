# Locks and named objects of processes that are killed.

# The test prints what it did in lines that begin with three blanks.
row_kills()
{
    build release || { report kills "does not build" 1; return; }
    local kills=${NX_ENDURE_KILLS:-20000} failed=0
    NX_TEST_KILLS=$kills run_tests release test_thread 'killedProcesses.*' ||
        { failed=1; tail -n 20 build/endure/test_thread.log; }
    if grep -q SKIPPED build/endure/test_thread.log; then grep -A1 SKIPPED build/endure/test_thread.log; fi
    report kills "$(sed -n 's/^   //p' build/endure/test_thread.log | paste -sd ';')" "$failed"
}
add_row kills 2
