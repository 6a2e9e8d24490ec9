// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLog.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "core/log/internal/nxLogFieldReader.h"
#include "core/log/internal/nxLogFilling.h"
#include "core/log/internal/nxLogHexDump.h"
#include "core/log/internal/nxLogLevelState.h"
#include "core/log/internal/nxLogLineBuffer.h"
#include "core/log/internal/nxLogRecord.h"
#include "core/log/internal/nxLogValueReader.h"
#include "core/platform/nxThisThread.h"
#include "core/thread/nxThreadIndex.h"

nxLog::nxLog(const nxLogLevelEnum& level, const char* sourceFile, unsigned line, const nxTimeStamp& timeStamp) noexcept
    : _level(level),
      _message(sourceFile),
      _line(line),
      _timeStamp(timeStamp),
      _threadIndex(nxThreadIndex::GetIndexOfCurrentThread()),
      _threadCPU(*nxThisThread::GetProcessorWord())
{
}

nxLog::nxLog(const nxLogRecord& record) noexcept
    : _level(static_cast<nxEnumValue>(record.level)),
      _message(record.GetFile(), record.values, record.end),
      _line(record.GetLine()),
      _timeStamp(record.time.seconds, record.time.nanoseconds),
      _threadIndex(record.threadIndex),
      _threadCPU(record.processor)
{
}

nxLogRecord nxLog::_GetRecord() const noexcept
{
    nxLogRecord record;
    record.level = _level.GetValue();
    record.time = {_timeStamp.GetSeconds(), _timeStamp.GetNanoseconds()};
    record.threadIndex = _threadIndex;
    record.processor = _threadCPU;
    record.source = nullptr;
    record.ownFile = _message.GetFile();
    record.ownLine = _line;
    record.values = _message.GetValues();
    record.end = _message.GetEnd();
    return record;
}

std::string nxLog::GetText() const
{
    nxLogLineBuffer buffer;
    if (_message.GetValues() == _message.GetEnd() ||
        !buffer.AppendMessage(_message.GetValues(), _message.GetEnd(), false))
        return std::string();
    return std::string(buffer.GetText(), buffer.GetSize());
}

void nxLog::_VisitFields(void (*visit)(const void* with, const nxLogFieldView& field), const void* with) const
{
    for (nxLogFieldReader reader(_message.GetValues(), _message.GetEnd()); reader.Next();)
        visit(with, reader.Get());
}

std::size_t nxLog::_GetGroupSize() const noexcept
{
    return 1 + sizeof(std::uint32_t) + static_cast<std::size_t>(_message.GetEnd() - _message.GetValues());
}

void nxLog::_WriteGroup(char* out) const noexcept
{
    const auto size = static_cast<std::uint32_t>(_message.GetEnd() - _message.GetValues());
    *out = static_cast<char>(nxLogTag::Group);
    std::memcpy(out + 1, &size, sizeof size);
    std::memcpy(out + 1 + sizeof size, _message.GetValues(), size);
}

nxValueWrapper<unsigned> nxLog::GetDestinationUserID() const
{
    nxValueWrapper<unsigned> user;
    for (nxLogValueReader value(_message.GetValues(), _message.GetEnd()); value.Next();)
        if (value.GetTag() == nxLogTag::DestinationUser)
            user = nxValueWrapper<unsigned>(value.Get<unsigned>());
    return user;
}

std::string nxLog::GetSourceApplication() const
{
    std::string application;
    for (nxLogValueReader value(_message.GetValues(), _message.GetEnd()); value.Next();)
        if (value.GetTag() == nxLogTag::SourceApplication)
            application = value.GetText();
    return application;
}

nxLog* nxLog::CreateCopyWithOwnershipTransfer() noexcept
{
    auto* const copy = new (std::nothrow) nxLog(*this);
    if (copy != nullptr)
        _message.ClearMessage();
    return copy;
}

nxErrorEnum nxLog::LogBufferAsHex(const char* buffer, unsigned length, const unsigned& bytesPerLine,
                                  const nxLogLevelEnum& level, const char* sourceFile, unsigned line, char placeholder,
                                  bool withOffsets)
{
    const auto log = [&](const nxLogLevelEnum& wanted, const auto&... values)
    {
        nxLog record(wanted, sourceFile, line, nxTimeStamp::Now());
        (record << ... << values);
        nxLogFilling::Write(record._GetRecord());
    };
    const std::string_view place = sourceFile != nullptr ? sourceFile : "";
    const char* const fault = buffer == nullptr ? "Unable to dump memory as hex and ascii. A null buffer was passed in"
                              : bytesPerLine == 0 || bytesPerLine > MaximumBytesPerLine
                                  ? "Unable to dump memory as hex and ascii. Bytes per line value is not valid"
                                  : nullptr;
    if (fault != nullptr)
    {
        if (nxLogLevelState::ShouldLog(NX_LOG_LEVEL_ERROR, place))
            log(NX_LOG_LEVEL_ERROR, fault);
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    }
    if (!nxLogLevelState::ShouldLog(level.GetEnumValue(), place))
        return nxErrorEnum();

    const unsigned size = std::min(length, MaximumDump);
    log(level, "Dumping memory as hex and ascii. At most ", size, " bytes of data will be dumped");
    static_assert(MaximumBytesPerLine == nxLogHexDump::LargestLine);
    const unsigned lineSize = bytesPerLine;
    nxLogHexDump lines(lineSize, placeholder, withOffsets);
    for (unsigned offset = 0; offset < size; offset += lineSize)
        log(level, lines.MakeLine(buffer + offset, std::min(lineSize, size - offset), offset));
    return nxErrorEnum();
}
