# SPDX-License-Identifier: Apache-2.0
# The log in processes that are killed, that exit and fork while they log, on full disks, and in thousands of files.

# log_row NAME PROGRAM FILTER WHAT: NX_... settings come before it.
log_row()
{
    build release || { report "$1" "does not build" 1; return; }
    local failed=0
    run_tests release "$2" "$3" || { failed=1; tail -n 20 "build/endure/$2.log"; }
    report "$1" "$4" "$failed"
}

row_crashes() { NX_TEST_CRASHES=${NX_ENDURE_CRASHES:-5000} NX_TEST_SEED=$RANDOM log_row crashes test_endurance 'nxLogEndurance.WhatWasAcknowledged*' "${NX_ENDURE_CRASHES:-5000} processes killed by 6 signals in turn"; }
row_disk() { GTEST_REPEAT=${NX_ENDURE_DISK_CYCLES:-100} log_row disk test_log '*OnAFullDisk*' "${NX_ENDURE_DISK_CYCLES:-100} times full and free again"; }
row_services() { NX_TEST_AWAY_ROUNDS=${NX_ENDURE_AWAY_ROUNDS:-200} log_row services test_log 'nxLogServiceDevices.*' "${NX_ENDURE_AWAY_ROUNDS:-200} times the journal is killed and back while threads log and fork"; }
row_exits() { NX_TEST_EXITS=${NX_ENDURE_EXITS:-1000} log_row exits test_endurance 'nxLogEndurance.ExitWhile*:nxLogEndurance.ForkWhile*:nxLogProcess.NeedsNothingOfAPlugin*' "${NX_ENDURE_EXITS:-1000} exits and plug-ins unloaded, four times as many forks, while 8 threads log"; }
row_rotation() { NX_TEST_ROTATIONS=${NX_ENDURE_ROTATIONS:-10000} log_row rotation test_endurance 'nxLogEndurance.Rotation*' "${NX_ENDURE_ROTATIONS:-10000} files' worth of lines"; }
row_levels() { GTEST_REPEAT=${NX_ENDURE_LEVEL_CYCLES:-200} log_row levels test_log 'nxLogLevels.EachThread*' "${NX_ENDURE_LEVEL_CYCLES:-200} times 8,000 changes of levels in 4 threads that log, and 5 forks"; }
row_folder() { NX_TEST_ROTATIONS=${NX_ENDURE_ROTATIONS:-10000} NX_TEST_SMALL_FILES=${NX_ENDURE_SMALL_FILES:-1000000} NX_TEST_COMPRESSIONS=${NX_ENDURE_COMPRESSIONS:-300} NX_TEST_SEED=$RANDOM log_row folder test_endurance 'nxLogFolder.*' "${NX_ENDURE_ROTATIONS:-10000} rotations of 4 processes, ${NX_ENDURE_SMALL_FILES:-1000000} small files cleaned up, ${NX_ENDURE_COMPRESSIONS:-300} kills while compressing"; }
add_row crashes 1
add_row disk 1
add_row exits 1
add_row levels 1
add_row rotation 1
add_row folder 1
