// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGFIELDREADER_H
#define CORE_LOG_INTERNAL_NXLOGFIELDREADER_H

#include "core/log/internal/nxLogTextBytes.h"
#include "core/log/internal/nxLogValueReader.h"
#include "core/log/nxLogFieldView.h"

/// Reads the fields of a record one by one, and leaves its other values out.
///
/// Invariant: a field whose value is missing, because there was no memory for it, has none.
///
/// Errors: a value of an application's own type for whose text there is no memory has none either. Threads: none.
class nxLogFieldReader
{
public:
    nxLogFieldReader(const char* values, const char* end) : _reader(values, end) {}

    /// @return whether there is another field; it is Get().
    bool Next() noexcept;
    /// Valid until the next call of Next().
    const nxLogFieldView& Get() const { return _field; }

private:
    nxLogFieldView::Value _GetValue() noexcept;

    nxLogValueReader _reader;
    nxLogFieldView _field;
    nxLogTextBytes _text;  // of a value that is no number and no text
};

#endif
