// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGLINETHREAD_H
#define CORE_LOG_INTERNAL_NXLOGLINETHREAD_H

#include <cstdint>

#include "core/log/internal/nxLogRecord.h"

/// What full lines tell about the reporting thread: "[7]", or "[7/1]" with the processor. Nothing without the index.
struct nxLogLineThread
{
    bool index;
    bool processor;

    /// Equal for records whose lines begin alike but for the time.
    std::uint64_t GetKey(const nxLogRecord& record) const
    {
        const std::uint64_t shown = processor ? record.processor & 0xFFFF : 0;
        return std::uint64_t{record.threadIndex} << 32 | shown << 16 | (record.level & 0xFFFF);
    }
    /// The key of no record: no level is as large.
    static constexpr std::uint64_t NoKey = ~std::uint64_t{0};
};

#endif
