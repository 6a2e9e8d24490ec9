// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOG_H
#define CORE_LOG_NXLOG_H

#include <cstddef>
#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxLogLevelEnum.h"
#include "core/log/inline/nxLogMessage.h"
#include "core/log/inline/nxLogStream.h"
#include "core/log/nxLogFieldView.h"
#include "core/log/nxLogMarkers.h"
#include "core/nxExport.h"
#include "core/text/nxValueWrapper.h"
#include "core/time/nxTimeStamp.h"

struct nxLogRecord;

/// One log record: a message with a level, the place that reported it, the time and the thread.
///
/// Build one, stream values into it and hand it to nxLogManager::Write(). The macros of nxLogMacros.h do all of that in
/// one statement, test the level first and are faster. Use this class where they do not serve: a source file known only at
/// run time, a message that grows over several statements, a record that is written at once.
///
/// - Errors: none, nothing throws. A message of more than a mebibyte is cut and says so; without memory it ends early.
/// - Threads: like a string.
/// - Ownership: the record owns copies of all that was streamed and of the file's name.
/// - Invariant: a copy owns its bytes; only the record that a device is given borrows them, from the queue.
/// @code
/// nxLog record(NX_LOG_LEVEL_WARNING, "feed/session", 88, nxTimeStamp::Now());
/// record << "gap of " << count << " messages";
/// nxLogManager::GetInstance().Write(record);
/// @endcode
class NX_CORE_API nxLog : public nxLogMarkers, public nxLogStream<nxLog>
{
public:
    /// Starts a record without a message, of the calling thread.
    /// @param level how grave it is.
    /// @param sourceFile the reporting file, copied; null is as empty.
    /// @param line the reporting line.
    /// @param timeStamp the time that the record carries.
    nxLog(const nxLogLevelEnum& level, const char* sourceFile, unsigned line, const nxTimeStamp& timeStamp) noexcept;

    const nxLogLevelEnum& GetLogLevel() const { return _level; }  ///< How grave it is.
    /// The message: the texts of all values, one after the other, control bytes as they are; fields as in a line. Made at
    /// every call.
    std::string GetText() const;
    const char* GetSourceFile() const { return _message.GetFile(); }  ///< Never null; valid until the record changes.
    unsigned GetLineNumber() const { return _line; }                  ///< The reporting line.
    const nxTimeStamp& GetTimeStamp() const { return _timeStamp; }    ///< When it was reported.
    unsigned GetThreadIndex() const { return _threadIndex; }          ///< nxThreadIndex of the reporting thread.
    /// The processor on which the thread ran, counted from 0.
    unsigned GetThreadCPU() const { return _threadCPU; }
    /// The user that the record is meant for; null when none was streamed.
    nxValueWrapper<unsigned> GetDestinationUserID() const;
    /// The application that the record comes from; empty when none was streamed.
    std::string GetSourceApplication() const;

    /// Calls @p visit(field) for each field of the record, in the order in which they were streamed: see nxField.
    /// @param visit takes a `const nxLogFieldView&`, which is valid during its call.
    template <class Visit>
    void VisitFields(const Visit& visit) const
    {
        _VisitFields([](const void* with, const nxLogFieldView& field) { (*static_cast<const Visit*>(with))(field); },
                     &visit);
    }

    /// @return a copy that the caller owns and deletes, with the message; this record's message is empty afterwards,
    ///         all else stays. Null, and nothing changed, without memory.
    [[nodiscard]] nxLog* CreateCopyWithOwnershipTransfer() noexcept;

    /// Writes a dump of a buffer to the log: an opening record with the number of bytes, then a record for every line,
    /// `00000010  48 65 6C 6C 6F 20 77 6F  72 6C 64 0A 00 01 02 03  |Hello world.....|`:
    /// the offset, the bytes in two halves, and their characters where they are printable.
    /// @param buffer the bytes; null is reported in the log, as an error.
    /// @param length their number. At most MaximumDump bytes are dumped; the opening record says how many.
    /// @param bytesPerLine 1 to MaximumBytesPerLine; anything else is reported in the log, as an error.
    /// @param level the level of the dump. Below the threshold nothing is written and the result is success.
    /// @param sourceFile, line the place that the records name.
    /// @param placeholder shown for a byte that is not printable.
    /// @param withOffsets whether lines begin with the offset.
    /// @return NX_ERR_INVALID_PARAMETER for a null buffer or a wrong number of bytes per line.
    static nxErrorEnum LogBufferAsHex(const char* buffer, unsigned length, const unsigned& bytesPerLine = 16,
                                      const nxLogLevelEnum& level = NX_LOG_LEVEL_INFO,
                                      const char* sourceFile = "core/trunk/nxLog", unsigned line = 0,
                                      char placeholder = '.', bool withOffsets = true);

    static constexpr unsigned MaximumBytesPerLine = 256;  ///< Of LogBufferAsHex().
    static constexpr unsigned MaximumDump = 64 * 1024;    ///< Bytes that LogBufferAsHex() dumps at most.

private:
    friend class nxLogStream<nxLog>;
    friend class nxLogStatement;
    friend class nxLogConversion;
    friend class nxLogManager;

    explicit nxLog(const nxLogRecord& record) noexcept;
    void _VisitFields(void (*visit)(const void* with, const nxLogFieldView& field), const void* with) const;
    nxLogRecord _GetRecord() const noexcept;
    char* _Take(std::size_t bytes) noexcept { return _message.Take(bytes); }
    // A field's value of an application's own type.
    template <class Value>
    nxLog& _PutGroup(const Value& value)
    {
        nxLog record{_level, nullptr, 0, _timeStamp};
        record << value;
        if (char* const at = _Take(record._GetGroupSize()))
            record._WriteGroup(at);
        return *this;
    }
    std::size_t _GetGroupSize() const noexcept;
    void _WriteGroup(char* out) const noexcept;  // _GetGroupSize() bytes: the values as one

    nxLogLevelEnum _level;
    nxLogMessage _message;
    unsigned _line;
    nxTimeStamp _timeStamp;
    unsigned _threadIndex;
    unsigned _threadCPU;
};

#endif
