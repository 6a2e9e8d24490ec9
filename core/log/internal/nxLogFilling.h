// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGFILLING_H
#define CORE_LOG_INTERNAL_NXLOGFILLING_H

#include <cstddef>

#include "core/log/internal/nxLogRecord.h"
#include "core/log/internal/nxLogRing.h"

/// Queues whole records: those that did not fit where their statements began, and those of nxLog objects.
///
/// Invariant: a record is in its ring completely, or else in a block that the ring refers to, or it is counted as
/// dropped.
///
/// Threads: any; each fills rings of its own. May wait for room.
class nxLogFilling
{
public:
    nxLogFilling() = delete;

    /// Queues a copy of @p record, which has a place of its own.
    static void Write(const nxLogRecord& record) noexcept;

    /// Appends the record at @p bytes, header included, to a ring of the calling thread, or counts it as dropped.
    static void Append(nxLogRing& ring, const char* bytes, std::size_t size) noexcept;
};

#endif
