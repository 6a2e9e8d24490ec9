#include "core/log/internal/nxLogLineBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "core/enum/nxLogLevelEnum.h"
#include "core/log/internal/nxLogValueReader.h"
#include "core/text/inline/nxDigits.h"
#include "core/text/nxPrintableText.h"
#include "core/text/nxStringHelper.h"

namespace
{
constexpr std::size_t maximumMessage = std::size_t{1} << 20;
constexpr std::size_t firstCapacity = 1024;
// Room enough for any value that is not itself a text, and for everything in a line beside its texts.
constexpr std::size_t longestValue = 256;
// More of a level's name is not shown.
constexpr std::size_t longestLevel = 16;
constexpr std::string_view cutMark = "... [cut]";
constexpr char hexDigitsOfBytes[] = "0123456789ABCDEF";

std::uint64_t LoadWord(const char* text)
{
    std::uint64_t word;
    std::memcpy(&word, text, sizeof word);
    return word;
}

// Characters beyond ASCII need a closer look: some of them are control characters, and their bytes may be out of place.
bool NeedsCare(std::uint64_t word)
{
    return ((nxLogPlainMessage::FindControl(word) | word) & nxLogPlainMessage::ControlBits) != 0;
}

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// Whether leaving the value out would leave anything out.
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

// The largest size up to `limit` that tears no UTF-8 character of `text`, which is longer than `limit`.
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

// Puts the character or byte at the start of the text, which is not empty. @return its bytes.
std::size_t nxLogLineBuffer::_PutCharacter(std::string_view text) noexcept
{
    const std::size_t hidden = text[0] == '\t' ? 0 : nxPrintableText::GetHiddenSize(text);
    for (const char c : text.substr(0, hidden))
    {
        const auto byte = static_cast<unsigned char>(c);
        const char escaped[] = {'\\', 'x', hexDigitsOfBytes[byte >> 4], hexDigitsOfBytes[byte & 15]};
        _Put({escaped, sizeof escaped});
    }
    if (hidden != 0)
        return hidden;
    const std::size_t size = std::max<std::size_t>(1, nxPrintableText::GetCharacterSize(text));
    _Put(text.substr(0, size));
    return size;
}

bool nxLogLineBuffer::_AppendEscaped(std::string_view text) noexcept
{
    if (!_Ensure(text.size() + longestValue))
        return false;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end)
    {
        // Eight bytes at a time while none needs care; a piece of a careful eight becomes at most 44.
        for (; end - at >= 8; at += 8)
        {
            const std::uint64_t word = LoadWord(at);
            if (NeedsCare(word)) [[unlikely]]
                break;
            std::memcpy(_cursor, &word, sizeof word);
            _cursor += sizeof word;
        }
        if (end - at < 8)
        {
            const auto rest = static_cast<std::size_t>(end - at);
            const std::uint64_t word = nxLogPlainMessage::LoadShort(at, rest);
            if (!NeedsCare(word)) [[likely]]
            {
                std::memcpy(_cursor, &word, sizeof word);
                _cursor += rest;
                return true;
            }
        }
        const char* const pieceEnd = end - at < 8 ? end : at + 8;
        while (at < pieceEnd)
            at += _PutCharacter({at, static_cast<std::size_t>(end - at)});
        if (!_Ensure(static_cast<std::size_t>(end - at) + longestValue))
            return false;
    }
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
    if (size <= nxLogPlainMessage::LargestRecord && _Ensure(nxLogPlainMessage::GetRoom(size) + longestValue)) [[likely]]
        if (char* const out = nxLogPlainMessage::Write(_cursor, values, end, escape))
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
    // How much of the message has been written, a control byte counted once.
    std::size_t written = 0;
    // Every round finds room for one value that is not a text, and leaves as much.
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
                nxLogPlainMessage::WriteValue(_cursor, value.GetTag(), bytes);
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

bool nxLogLineBuffer::AppendSuffix(const char* file, unsigned line) noexcept
{
    if (!_Ensure(longestValue))
        return false;
    _Put(" [");
    if (!_AppendEscaped(file))
        return false;
    *_cursor++ = ':';
    _cursor = nxDigits::Write(_cursor, line);
    *_cursor++ = ']';
    return true;
}

// The time is left out; @p timeAt is where it goes, null for a line without one.
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
        return AppendSuffix(record.ownFile, record.ownLine);
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
