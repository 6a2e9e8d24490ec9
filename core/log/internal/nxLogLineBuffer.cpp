#include "core/log/internal/nxLogLineBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "core/enum/nxLogLevelEnum.h"
#include "core/log/internal/nxLogPlainMessage.h"
#include "core/log/internal/nxLogRecord.h"
#include "core/log/internal/nxLogTimeText.h"
#include "core/log/internal/nxLogValueReader.h"
#include "core/log/nxLogSource.h"
#include "core/text/nxDigits.h"
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
constexpr char hexDigits[] = "0123456789ABCDEF";

bool IsControl(unsigned char byte) { return (byte < 0x20 && byte != '\t') || byte == 0x7F; }

std::uint64_t LoadWord(const char* text)
{
    std::uint64_t word;
    std::memcpy(&word, text, sizeof word);
    return word;
}

bool MayHoldControl(std::uint64_t word)
{
    return (nxLogPlainMessage::FindControl(word) & nxLogPlainMessage::ControlBits) != 0;
}

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// The largest size up to `limit` that tears no UTF-8 character of `text`, which is longer than `limit`.
std::size_t CutPosition(std::string_view text, std::size_t limit)
{
    std::size_t position = limit;
    while (position > 0 && limit - position < 3 && IsContinuation(text[position]))
        --position;
    return IsContinuation(text[position]) ? limit : position;
}

// Equal for lines that begin alike but for the time.
std::uint64_t PrefixKey(const nxLogRecord& record, const nxLogTimeText& time, const nxLogLineStyle& style,
                        nxLogLineThread thread)
{
    const std::uint64_t processor = thread.processor ? record.processor & 0xFFFF : 0;
    const std::uint64_t shown = (time.IsEmpty() ? 0U : 1U) | (thread.index ? 2U : 0U) | (thread.processor ? 4U : 0U);
    return std::uint64_t{record.threadIndex} << 32 | processor << 16 | std::uint64_t{record.level & 0xFF} << 8 |
           shown << 4 | static_cast<std::uint64_t>(style.form);
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
    if (!_Ensure(text.size() + longestValue))
        return false;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end)
    {
        // Eight bytes at a time while none needs care; a piece of a careful eight becomes at most 32.
        for (; end - at >= 8; at += 8)
        {
            const std::uint64_t word = LoadWord(at);
            if (MayHoldControl(word)) [[unlikely]]
                break;
            std::memcpy(_cursor, &word, sizeof word);
            _cursor += sizeof word;
        }
        if (end - at < 8)
        {
            const auto rest = static_cast<std::size_t>(end - at);
            const std::uint64_t word = nxLogPlainMessage::LoadShort(at, rest);
            if (!MayHoldControl(word)) [[likely]]
            {
                std::memcpy(_cursor, &word, sizeof word);
                _cursor += rest;
                return true;
            }
        }
        const char* const pieceEnd = end - at < 8 ? end : at + 8;
        for (; at != pieceEnd; ++at)
        {
            const auto byte = static_cast<unsigned char>(*at);
            if (!IsControl(byte)) [[likely]]
            {
                *_cursor++ = *at;
                continue;
            }
            const char escaped[] = {'\\', 'x', hexDigits[byte >> 4], hexDigits[byte & 15]};
            _Put({escaped, sizeof escaped});
        }
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
                _cursor = nxLogPlainMessage::WriteValue(_cursor, value.GetTag(), bytes);
            }
        }
        written += GetSize() - before;
        if (!_Ensure(longestValue))
            return false;
        if (written > maximumMessage) [[unlikely]]
        {
            _Put(cutMark);
            return true;
        }
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

void nxLogLineBuffer::_PutPrefix(const nxLogRecord& record, const nxLogTimeText& time, const nxLogLineStyle& style,
                                 nxLogLineThread thread) noexcept
{
    const std::uint64_t key = PrefixKey(record, time, style, thread);
    if (key != _prefix.key) [[unlikely]]
    {
        _MakePrefix(record, time, style, thread);
        _prefix.key = key;
    }
    // Fixed sizes cost less than the right ones.
    std::memcpy(_cursor, _prefix.text, sizeof _prefix.text);
    std::memcpy(_cursor + _prefix.timeAt, time.GetBytes(), nxLogTimeText::Size);
    _cursor += _prefix.size;
}

void nxLogLineBuffer::_MakePrefix(const nxLogRecord& record, const nxLogTimeText& time, const nxLogLineStyle& style,
                                  nxLogLineThread thread) noexcept
{
    char* const begin = _cursor;
    char* timeAt = nullptr;
    *_cursor++ = '[';
    if (style.form != nxLogLineStyle::TimeAndText)
        _PutLevel(record.level);
    if (style.form == nxLogLineStyle::Full)
        _Put("][");
    if (style.form != nxLogLineStyle::LevelAndText && !time.IsEmpty())
    {
        timeAt = _cursor;
        _cursor += nxLogTimeText::Size;
    }
    if (style.form == nxLogLineStyle::Full && thread.index)
    {
        _Put("][");
        _cursor = nxDigits::Write(_cursor, record.threadIndex);
        if (thread.processor)
        {
            *_cursor++ = '/';
            _cursor = nxDigits::Write(_cursor, record.processor);
        }
    }
    _Put("] ");
    // "[", "][", "][", "/" and "] ", two numbers of 32 bits, the level and the time.
    static_assert(9 + 2 * 10 + longestLevel + nxLogTimeText::Size <= Prefix::Longest);
    _prefix.size = static_cast<std::size_t>(_cursor - begin);
    _prefix.timeAt = static_cast<std::size_t>((timeAt != nullptr ? timeAt : _cursor) - begin);
    std::memcpy(_prefix.text, begin, sizeof _prefix.text);
    _cursor = begin;
}

bool nxLogLineBuffer::_AppendParts(const nxLogRecord& record, const nxLogTimeText& time, const nxLogLineStyle& style,
                                   nxLogLineThread thread) noexcept
{
    if (!_Ensure(longestValue))
        return false;
    _PutPrefix(record, time, style, thread);
    if (!AppendMessage(record.values, record.end, true))
        return false;
    if (style.form != nxLogLineStyle::Full)
        return true;
    if (record.source == nullptr)
        return AppendSuffix(record.file, record.line);
    return _AppendSuffix(*record.source);
}

bool nxLogLineBuffer::_AppendSuffix(const nxLogSource& source) noexcept
{
    if (source.suffixSize > nxLogSource::SuffixRoom) [[unlikely]]
        return _AppendText({source.suffix, source.suffixSize}, false);
    // A message leaves room for this.
    static_assert(nxLogSource::SuffixRoom < longestValue);
    std::memcpy(_cursor, source.suffix, nxLogSource::SuffixRoom);
    _cursor += source.suffixSize;
    return true;
}

bool nxLogLineBuffer::AppendLine(const nxLogRecord& record, const nxLogTimeText& time, const nxLogLineStyle& style,
                                 nxLogLineThread thread) noexcept
{
    const std::size_t start = GetSize();
    if (!_AppendParts(record, time, style, thread) || !_Ensure(longestValue))
    {
        _cursor = _begin + start;
        return false;
    }
    if (style.carriageReturn)
        *_cursor++ = '\r';
    *_cursor++ = '\n';
    return true;
}
