// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogLineBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "core/enum/nxLogLevelEnum.h"
#include "core/log/internal/nxLogEscape.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogValueReader.h"
#include "core/text/inline/nxDigits.h"
#include "core/text/nxStringHelper.h"

namespace
{
constexpr std::size_t maximumMessage = nxLogLimits::LongestMessage;
constexpr std::size_t firstCapacity = 1024;
// Room for any value that is not itself a text, and for everything in a line beside its texts.
constexpr std::size_t longestValue = 256;
// More of a level's name is not shown.
constexpr std::size_t longestLevel = 16;
constexpr std::string_view cutMark = "... [cut]";

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// Whether the value adds anything to the message.
bool HasText(const nxLogValueReader& value)
{
    switch (value.GetTag())
    {
        case nxLogTag::Text:
            return !value.GetText().empty();
        case nxLogTag::SourceApplication:
        case nxLogTag::DestinationUser:
            return false;
        default:
            return true;
    }
}

// The largest size up to `limit` that cuts no UTF-8 character of `text`, which is longer than `limit`.
std::size_t CutPosition(std::string_view text, std::size_t limit)
{
    std::size_t position = limit;
    while (position > 0 && limit - position < 3 && IsContinuation(text[position]))
        --position;
    return IsContinuation(text[position]) ? limit : position;
}
}  // namespace

nxLogLineBuffer::~nxLogLineBuffer() { std::free(_begin); }

bool nxLogLineBuffer::_Grow(std::size_t bytes) noexcept
{
    const std::size_t size = GetSize();
    const std::size_t capacity = std::max({firstCapacity, 2 * static_cast<std::size_t>(_end - _begin), size + bytes});
    char* const grown = static_cast<char*>(std::realloc(_begin, capacity));
    if (grown == nullptr)
        return false;
    _begin = grown;
    _cursor = grown + size;
    _end = grown + capacity;
    return true;
}

void nxLogLineBuffer::ShrinkTo(std::size_t bytes) noexcept
{
    if (GetSize() != 0 || static_cast<std::size_t>(_end - _begin) <= bytes)
        return;
    std::free(_begin);
    _begin = _cursor = _end = nullptr;
    _Grow(bytes);
}

bool nxLogLineBuffer::_AppendEscaped(std::string_view text) noexcept
{
    const char* at = text.data();
    const char* const end = at + text.size();
    do
    {
        if (!_Ensure(static_cast<std::size_t>(end - at) + nxLogEscape::LongestPiece + longestValue))
            return false;
        const nxLogEscape::Place place = nxLogEscape::PutPiece(_cursor, at, end);
        _cursor = place.out;
        at = place.at;
    } while (at != end);
    return true;
}

bool nxLogLineBuffer::_AppendText(std::string_view text, bool escape) noexcept
{
    if (escape)
        return _AppendEscaped(text);
    if (!_Ensure(text.size() + longestValue))
        return false;
    _Put(text);
    return true;
}

bool nxLogLineBuffer::_AppendDouble(double value) noexcept
{
    try
    {
        return _AppendText(nxStringHelper::GetAsString(value), false);
    }
    catch (...)
    {
        return false;
    }
}

bool nxLogLineBuffer::AppendMessage(const char* values, const char* end, bool escape) noexcept
{
    const auto size = static_cast<std::size_t>(end - values);
    if (size <= nxLogQuickText::LargestRecord && _Ensure(nxLogQuickText::GetRoom(size) + longestValue)) [[likely]]
        if (char* const out = nxLogQuickText::Write(_cursor, values, end, escape))
        {
            _cursor = out;
            return true;
        }
    return _AppendCarefully(values, end, escape);
}

bool nxLogLineBuffer::_AppendCarefully(const char* values, const char* end, bool escape) noexcept
{
    if (!_Ensure(longestValue))
        return false;
    // How much of the message has been written, an escaped byte counted once.
    std::size_t written = 0;
    // Every turn finds room for one value that is not a text, and leaves as much.
    for (nxLogValueReader value(values, end); value.Next();)
    {
        if (written > maximumMessage) [[unlikely]]
        {
            if (!HasText(value))
                continue;
            _Put(cutMark);
            return true;
        }
        const std::size_t before = GetSize();
        switch (value.GetTag())
        {
            case nxLogTag::Text:
            {
                const std::string_view text = value.GetText();
                if (text.size() > maximumMessage - written) [[unlikely]]
                {
                    const std::string_view kept = text.substr(0, CutPosition(text, maximumMessage - written));
                    if (!_AppendText(kept, escape))
                        return false;
                    _Put(cutMark);
                    return true;
                }
                if (!_AppendText(text, escape))
                    return false;
                written += text.size();
                continue;
            }
            case nxLogTag::KeptText:
                if (!_AppendText(*value.Get<const std::string*>(), escape))
                    return false;
                break;
            case nxLogTag::Double:
                if (!_AppendDouble(value.Get<double>()))
                    return false;
                break;
            case nxLogTag::Cut:
                _Put(cutMark);
                break;
            case nxLogTag::SourceApplication:
                break;
            default:
            {
                const char* bytes = value.GetBytes();
                nxLogQuickText::WriteValue(_cursor, value.GetTag(), bytes);
            }
        }
        written += GetSize() - before;
        if (!_Ensure(longestValue))
            return false;
    }
    return true;
}

void nxLogLineBuffer::_PutLevel(unsigned level) noexcept
{
    const std::string& text = nxLogLevelEnum(static_cast<nxEnumValue>(level)).GetShortDescription();
    _Put(std::string_view(text).substr(0, longestLevel));
}

bool nxLogLineBuffer::_AppendSuffix(std::string_view file, unsigned line) noexcept
{
    if (!_Ensure(nxLogEscape::GetSuffixRoom(file.size())))
        return false;
    _cursor = nxLogEscape::PutSuffix(_cursor, file, line);
    return true;
}

// Leaves the time out. `timeAt` is where it goes, null for a line without one.
void nxLogLineBuffer::_PutPrefixSlowly(const nxLogRecord& record, const nxLogTimeText& time, char*& timeAt) noexcept
{
    timeAt = nullptr;
    *_cursor++ = '[';
    if (_style.form != nxLogLineStyle::TimeAndText)
        _PutLevel(record.level);
    if (_style.form == nxLogLineStyle::Full)
        _Put("][");
    if (_style.form != nxLogLineStyle::LevelAndText && !time.IsEmpty())
    {
        timeAt = _cursor;
        _cursor += nxLogTimeText::Size;
    }
    if (_style.form == nxLogLineStyle::Full && _thread.index)
    {
        _Put("][");
        _cursor = nxDigits::Write(_cursor, record.threadIndex);
        if (_thread.processor)
        {
            *_cursor++ = '/';
            _cursor = nxDigits::Write(_cursor, record.processor);
        }
    }
    _Put("] ");
}

void nxLogLineBuffer::_MakePrefix(std::uint64_t key, const nxLogRecord& record, const nxLogTimeText& time) noexcept
{
    // "[", "][", "][", "/" and "] ", two numbers of 32 bits, the level and the time.
    static_assert(9 + 2 * 10 + longestLevel + nxLogTimeText::Size <= Prefix::Longest);
    char* const begin = _cursor;
    char* timeAt;
    _PutPrefixSlowly(record, time, timeAt);
    _prefix.key = key;
    _prefix.size = static_cast<std::size_t>(_cursor - begin);
    _prefix.timeAt = timeAt != nullptr ? static_cast<std::size_t>(timeAt - begin) : _prefix.size;
    std::memcpy(_prefix.text, begin, sizeof _prefix.text);
    _cursor = begin;
}

bool nxLogLineBuffer::_AppendParts(const nxLogRecord& record, const nxLogTimeText& time) noexcept
{
    if (!_Ensure(longestValue))
        return false;
    char* timeAt;
    _PutPrefixSlowly(record, time, timeAt);
    if (timeAt != nullptr)
        std::memcpy(timeAt, time.GetBytes(), nxLogTimeText::Size);
    if (!AppendMessage(record.values, record.end, true))
        return false;
    if (_style.form != nxLogLineStyle::Full)
        return true;
    if (record.source == nullptr)
        return _AppendSuffix(record.ownFile, record.ownLine);
    return _AppendText({record.source->suffix, record.source->suffixSize}, false);
}

bool nxLogLineBuffer::_AppendLineSlowly(const nxLogRecord& record, const nxLogTimeText& time) noexcept
{
    const std::size_t start = GetSize();
    if (!_AppendParts(record, time) || !_Ensure(longestValue))
    {
        _cursor = _begin + start;
        return false;
    }
    _cursor = _PutLineEnd(_cursor);
    return true;
}
