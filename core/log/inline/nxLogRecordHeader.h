// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INLINE_NXLOGRECORDHEADER_H
#define CORE_LOG_INLINE_NXLOGRECORDHEADER_H

#include <cstdint>

/// The front of every queued record. The values follow as tagged bytes.
struct nxLogRecordHeader
{
    /// What follows the header.
    enum Kind : std::uint8_t
    {
        Statement,  ///< The values of an NX_LOG statement.
        Object,     ///< nxLogObjectFields, the source file with a NUL, then the values of an nxLog.
        Elsewhere,  ///< A pointer to a block with the whole record; for very large ones.
        Jump        ///< Not a record: a pointer to where the next one is. Nothing else in the header counts.
    };

    std::uint32_t size;       ///< Bytes of header and values, not rounded.
    std::uint16_t processor;  ///< Where the thread ran.
    std::uint8_t level;       ///< An nxLogLevelEnum; all its values fit.
    Kind kind;                ///< What follows.
    std::uint64_t ticks;      ///< nxClock::Ticks() when the record was begun (Statement) or handed over (Object).
    const void* source;       ///< Statement: its nxLogSource.
};
static_assert(sizeof(nxLogRecordHeader) == 24);

#endif
