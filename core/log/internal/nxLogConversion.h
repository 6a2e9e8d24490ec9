// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGCONVERSION_H
#define CORE_LOG_INTERNAL_NXLOGCONVERSION_H

#include "core/log/internal/nxLogRecord.h"
#include "core/log/nxLog.h"

/// The two forms of a record: the bytes that the parts of the log hand on, and the object that devices and applications
/// see.
///
/// Invariant: both forms show the same record, and neither copies its bytes.
///
/// Threads: no state.
class nxLogConversion
{
public:
    nxLogConversion() = delete;

    /// @return an object that borrows the bytes of @p record; a copy of it owns its bytes.
    static nxLog Borrow(const nxLogRecord& record) noexcept { return nxLog(record); }
    /// @return the parts of @p record, valid until it changes.
    static nxLogRecord View(const nxLog& record) noexcept { return record._GetRecord(); }
};

#endif
