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
    if (record.source != nullptr)
    {
        if (!_bytes.Ensure(record.source->suffixSize))
            return false;
        _bytes.Put({record.source->suffix, record.source->suffixSize});
        return true;
    }
    const std::string_view file = record.ownFile;
    if (!_bytes.Ensure(nxLogEscape::GetSuffixRoom(file.size())))
        return false;
    _bytes.SetCursor(nxLogEscape::PutSuffix(_bytes.GetCursor(), file, record.ownLine));
    return true;
}

void nxLogLineBuffer::SetStyle(const nxLogLineStyle& style, nxLogLineThread thread) noexcept
{
    _style = style;
    _thread = thread;
    _prefix.key = nxLogLineThread::NoKey;
    _json.SetThread(thread);
    const bool isJson = style.GetParts() == nxLogLineStyle::Json;
    _hasOtherTime = isJson || style.GetTime() != nxLogLineStyle::Time::Local;
    _quickSizes = _hasOtherTime || style.IsColoured() ? 0 : _allQuickSizes;
    // JSON has one of the forms of ISO 8601.
    const bool isUTC = isJson && style.GetTime() != nxLogLineStyle::Time::ISO;
    _otherTime.SetForm(isUTC ? nxLogLineStyle::Time::ISOInUTC : style.GetTime());
}

// What turns the colour of a level on; empty for none.
std::string_view nxLogLineBuffer::_GetColour(unsigned level) const noexcept
{
    if (!_style.IsColoured() || level < NX_LOG_LEVEL_WARNING)
        return "";  // never null, because it is copied
    if (level == NX_LOG_LEVEL_WARNING)
        return "\x1B[33m";                                                // yellow
    return level == NX_LOG_LEVEL_ERROR ? "\x1B[1;31m" : "\x1B[1;37;41m";  // red; white on red
}

// @param timeAt becomes the place of the time, null for a line without one. @return the end.
char* nxLogLineBuffer::_PutPrefixSlowly(char* out, const nxLogRecord& record, std::string_view time,
                                        char*& timeAt) const noexcept
{
    const nxLogLineStyle::Form form = _style.GetParts();
    const std::string_view colour = _GetColour(record.level);
    const std::string_view colourEnd = colour.empty() ? "" : "\x1B[0m";
    timeAt = nullptr;
    out = PutPart(PutPart(out, colour), "[");
    if (form != nxLogLineStyle::TimeAndText)
        out = PutLevel(out, record.level);
    if (form == nxLogLineStyle::Full)
        out = PutPart(PutPart(PutPart(out, "]"), colourEnd), "[");
    if (form != nxLogLineStyle::LevelAndText && !time.empty())
    {
        timeAt = out;
        out = PutPart(out, time);
    }
    if (form == nxLogLineStyle::Full && _thread.index)
    {
        out = nxDigits::Write(PutPart(out, "]["), record.threadIndex);
        if (_thread.processor)
            out = nxDigits::Write(PutPart(out, "/"), record.processor);
    }
    out = PutPart(out, "]");
    return PutPart(PutPart(out, form == nxLogLineStyle::Full ? "" : colourEnd), " ");
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

bool nxLogLineBuffer::_AppendParts(const nxLogRecord& record, const nxLogTimeText& local) noexcept
{
    if (_style.GetParts() == nxLogLineStyle::Json)
        return _json.Append(_bytes, record, _otherTime, local);
    if (!_bytes.Ensure(longestValue))
        return false;
    const std::string_view time = _hasOtherTime ? _otherTime.Get(record.time, local) : local.Get();
    char* timeAt;
    _bytes.SetCursor(_PutPrefixSlowly(_bytes.GetCursor(), record, time, timeAt));
    return AppendMessage(record.values, record.end, true) &&
           (_style.GetParts() != nxLogLineStyle::Full || _AppendSuffix(record));
}

// A line of another form, or one that needs care.
[[gnu::noinline]] bool nxLogLineBuffer::_AppendOtherLine(const nxLogRecord& record, const nxLogTimeText& local) noexcept
{
    const std::size_t start = GetSize();
    if (!_AppendParts(record, local) || !_bytes.Ensure(longestValue))
    {
        _bytes.CutTo(start);
        return false;
    }
    _bytes.SetCursor(_PutLineEnd(_bytes.GetCursor()));
    return true;
}
