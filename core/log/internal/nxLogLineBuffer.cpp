// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogLineBuffer.h"

#include <string>

#include "core/enum/nxLogLevelEnum.h"
#include "core/log/internal/nxLogEscape.h"
#include "core/log/internal/nxLogMessageText.h"
#include "core/text/inline/nxDigits.h"

namespace
{
// Room for everything in a line beside its texts.
constexpr std::size_t longestValue = nxLogMessageText::LongestValue;
// More of a level's name is not shown.
constexpr std::size_t longestLevel = 16;

char* PutPart(char* out, std::string_view text)
{
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

char* PutLevel(char* out, unsigned level)
{
    const std::string& text = nxLogLevelEnum(static_cast<nxEnumValue>(level)).GetShortDescription();
    return PutPart(out, std::string_view(text).substr(0, longestLevel));
}
}  // namespace

bool nxLogLineBuffer::AppendMessage(const char* values, const char* end, bool escape) noexcept
{
    const auto size = static_cast<std::size_t>(end - values);
    if (size <= nxLogQuickText::LargestRecord && _bytes.Ensure(nxLogQuickText::GetRoom(size) + longestValue)) [[likely]]
        if (char* const out = nxLogQuickText::Write(_bytes.GetCursor(), values, end, escape))
        {
            _bytes.SetCursor(out);
            return true;
        }
    return nxLogMessageText(_bytes, {escape, true}).Append(values, end);
}

bool nxLogLineBuffer::_AppendSuffix(const nxLogRecord& record) noexcept
{
    const std::string_view file = record.GetFile();
    if (!_bytes.Ensure(nxLogEscape::GetSuffixRoom(file.size())))
        return false;
    _bytes.SetCursor(nxLogEscape::PutSuffix(_bytes.GetCursor(), file, record.GetLine()));
    return true;
}

// @param timeAt becomes the place of the time, null for a line without one. @return the end.
char* nxLogLineBuffer::_PutPrefixSlowly(char* out, const nxLogRecord& record, std::string_view time,
                                        char*& timeAt) const noexcept
{
    timeAt = nullptr;
    *out++ = '[';
    if (_style.form != nxLogLineStyle::TimeAndText)
        out = PutLevel(out, record.level);
    if (_style.form == nxLogLineStyle::Full)
        out = PutPart(out, "][");
    if (_style.form != nxLogLineStyle::LevelAndText && !time.empty())
    {
        timeAt = out;
        out = PutPart(out, time);
    }
    if (_style.form == nxLogLineStyle::Full && _thread.index)
    {
        out = nxDigits::Write(PutPart(out, "]["), record.threadIndex);
        if (_thread.processor)
            out = nxDigits::Write(PutPart(out, "/"), record.processor);
    }
    return PutPart(out, "] ");
}

void nxLogLineBuffer::_MakePrefix(std::uint64_t key, const nxLogRecord& record, const nxLogTimeText& time) noexcept
{
    // "[", "][", "][", "/" and "] ", two numbers of 32 bits, the level and the time.
    static_assert(9 + 2 * 10 + longestLevel + nxLogTimeText::Size <= Prefix::Longest);
    char* timeAt;
    const char* const end = _PutPrefixSlowly(_prefix.text, record, time.Get(), timeAt);
    _prefix.key = key;
    _prefix.size = static_cast<std::size_t>(end - _prefix.text);
    _prefix.timeAt = timeAt != nullptr ? static_cast<std::size_t>(timeAt - _prefix.text) : _prefix.size;
}

bool nxLogLineBuffer::_AppendParts(const nxLogRecord& record, const nxLogTimeText& time) noexcept
{
    if (!_bytes.Ensure(longestValue))
        return false;
    char* timeAt;
    _bytes.SetCursor(_PutPrefixSlowly(_bytes.GetCursor(), record, time.Get(), timeAt));
    return AppendMessage(record.values, record.end, true) &&
           (_style.form != nxLogLineStyle::Full || _AppendSuffix(record));
}

bool nxLogLineBuffer::_AppendLineSlowly(const nxLogRecord& record, const nxLogTimeText& time) noexcept
{
    const std::size_t start = GetSize();
    if (!_AppendParts(record, time) || !_bytes.Ensure(longestValue))
    {
        _bytes.CutTo(start);
        return false;
    }
    _bytes.SetCursor(_PutLineEnd(_bytes.GetCursor()));
    return true;
}
