# The log in processes that are killed, that exit and fork while they log, on full disks, and in thousands of files.

# log_row NAME TEST WHAT: NX_... settings come before it; one test of the endurance program.
log_row()
{
    build release || { report "$1" "does not build" 1; return; }
    local failed=0
    run_tests release test_endurance "nxLogEndurance.$2" || { failed=1; tail -n 20 build/endure/test_endurance.log; }
    report "$1" "$3" "$failed"
}

row_crashes() { NX_TEST_CRASHES=${NX_ENDURE_CRASHES:-5000} NX_TEST_SEED=$RANDOM log_row crashes 'WhatWasAcknowledged*:nxLogEndurance.AFatalSignal*' "${NX_ENDURE_CRASHES:-5000} processes killed, 5 fatal signals"; }
row_disk() { NX_TEST_DISK_CYCLES=${NX_ENDURE_DISK_CYCLES:-100} log_row disk 'WhatAFullDiskCosts*' "${NX_ENDURE_DISK_CYCLES:-100} times full and free again"; }
row_exits() { NX_TEST_EXITS=${NX_ENDURE_EXITS:-1000} log_row exits 'ExitWhile*:nxLogEndurance.ForkWhile*' "${NX_ENDURE_EXITS:-1000} exits, four times as many forks, while 8 threads log"; }
row_rotation() { NX_TEST_ROTATIONS=${NX_ENDURE_ROTATIONS:-10000} log_row rotation 'Rotation*:nxLogEndurance.AChange*' "${NX_ENDURE_ROTATIONS:-10000} files' worth of lines, 10 changes of date"; }
add_row crashes 1
add_row disk 1
add_row exits 1
add_row rotation 1
