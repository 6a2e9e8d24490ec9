// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGJSONLINE_H
#define CORE_LOG_INTERNAL_NXLOGJSONLINE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/log/internal/nxLogLineThread.h"
#include "core/log/internal/nxLogOtherTime.h"
#include "core/log/internal/nxLogRecord.h"
#include "core/log/internal/nxLogSourceTable.h"
#include "core/log/internal/nxLogTextBytes.h"
#include "core/log/nxLogFieldView.h"

/// Records as JSON objects: see nxLogLineStyle::Json. Nearly every record is short, has its fields last, each with a name of
/// its own, and holds nothing that is escaped: it is written in one pass that checks neither room nor length. What needs more
/// care is written again from its message on.
///
/// Invariant: what is written in one pass is what the careful way would write. No object has two members of one name.
///
/// Errors: false without memory, with a part of the object written. Threads: none.
class nxLogJsonLine
{
public:
    /// Sets what objects tell of the thread.
    void SetThread(nxLogLineThread thread) noexcept
    {
        _thread = thread;
        _key = nxLogLineThread::NoKey;
    }

    /// Appends the object of @p record, and leaves room for the line's end. @param times have a form of ISO 8601.
    /// @param local shows the record's time.
    bool Append(nxLogTextBytes& out, const nxLogRecord& record, nxLogOtherTime& times,
                const nxLogTimeText& local) noexcept;

private:
    static constexpr std::size_t _threadRoom = 64;  // copying this many costs less than the right number

    char* _PutThread(char* out, const nxLogRecord& record) noexcept;
    void _MakeThread(std::uint64_t key, const nxLogRecord& record) noexcept;
    bool _AppendFrame(nxLogTextBytes& out, const nxLogRecord& record, std::string_view time) noexcept;
    bool _AppendCarefully(nxLogTextBytes& out, const nxLogRecord& record);
    static bool _AppendValue(nxLogTextBytes& out, const nxLogFieldView::Value& value, bool& isCut) noexcept;

    nxLogLineThread _thread{};
    // What the last line had from the level to the thread. Lines of one thread and level have the same.
    std::uint64_t _key = nxLogLineThread::NoKey;
    std::size_t _threadSize = 0;
    char _threadText[2 * _threadRoom] = {};  // room for two numbers of 32 bits
    nxLogTextBytes _message;                 // with all its bytes as they are
};

#endif
