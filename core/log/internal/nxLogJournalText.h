// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGJOURNALTEXT_H
#define CORE_LOG_INTERNAL_NXLOGJOURNALTEXT_H

#include <string>
#include <string_view>

#include "core/log/internal/nxLogDeviceItems.h"
#include "core/log/nxLog.h"

/// Records in the journal's own form: a line "NAME=value" for each field, or, for values that hold a line end, the name and a
/// line end, the size of the value in 64 bits, little end first, the value and a line end.
///
/// Invariant: no value, whatever its bytes, adds a field or ends one.
///
/// Errors: std::bad_alloc. Threads: no state.
class nxLogJournalText
{
public:
    nxLogJournalText() = delete;

    /// Appends all fields of a record. @param losses what it tells about, or null.
    static void AppendRecord(std::string& text, const nxLog& record, const std::string& identifier,
                             const nxLogLosses* losses);
    /// @return the name that a record's field has in the journal: capitals, with '_' for '-' and '.'. It has "F_" in front where
    ///         the journal takes no such name, or gives it another meaning.
    static std::string GetFieldName(std::string_view name);
    /// Appends one field. @param name capitals of ASCII, digits and '_', the first one a capital.
    static void AppendField(std::string& text, std::string_view name, std::string_view value);
};

#endif
