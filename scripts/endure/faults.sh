# SPDX-License-Identifier: Apache-2.0
# Locks and named objects of processes that are killed, and system calls that fail.

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

row_faults()
{
    build release || { report faults "does not build" 1; return; }
    local failed=0
    NX_TEST_FAULTS=${NX_ENDURE_FAULTS:-3000} NX_TEST_SEED=$RANDOM run_tests release test_endurance 'systemCallFaults.*' ||
        { failed=1; tail -n 20 build/endure/test_endurance.log; }
    report faults "$(sed -n 's/^   //p' build/endure/test_endurance.log | paste -sd ';')" "$failed"
}
add_row faults 1
