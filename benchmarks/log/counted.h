// SPDX-License-Identifier: Apache-2.0
#ifndef BENCHMARKS_LOG_COUNTED_H
#define BENCHMARKS_LOG_COUNTED_H

#include "core/log/nxLogLineSink.h"

/// Runs that tell the instructions of a record's caller from those of the log's thread. Each takes the process for itself and
/// ends it.
class CountedLog
{
public:
    CountedLog() = delete;

    /// Calls @p report @p count times. The log's thread is held up and takes none of the records.
    [[noreturn]] static void RunCaller(void (*report)(), int count);

    /// Has the log's thread write @p count records as lines of @p form. The records that @p report makes are always equally many,
    /// so that their making is not in the difference of two runs.
    /// @param count at most LargestCount.
    [[noreturn]] static void RunWriter(void (*report)(), nxLogLineStyle::Form form, int count);

    static constexpr int LargestCount = 3000;  ///< As scripts/instructions.sh has it.
};

#endif
