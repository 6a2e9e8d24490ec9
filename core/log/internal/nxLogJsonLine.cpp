// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogJsonLine.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <type_traits>
#include <unordered_map>

#include "core/enum/nxLogLevelEnum.h"
#include "core/log/internal/nxLogFieldReader.h"
#include "core/log/internal/nxLogJsonText.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogMessageText.h"
#include "core/log/internal/nxLogQuickText.h"
#include "core/log/nxField.h"
#include "core/text/inline/nxDigits.h"

namespace
{
// Every object has these members, or may have them.
constexpr std::string_view ownNames[] = {"time", "level", "thread", "processor", "source", "message", "cut"};
constexpr std::string_view timeMember = R"({"time":")";
// Room for a number, or for what an object has beside its texts.
constexpr std::size_t longestNumber = nxLogMessageText::LongestValue;

char* PutJson(char* out, std::string_view text)
{
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

// The names of an object, as far as one word can tell: a name whose bit is not set has not been seen.
class SeenNames
{
public:
    constexpr SeenNames()
    {
        for (const std::string_view name : ownNames)
        {
            std::uint64_t word = 0;
            for (std::size_t i = 0; i < sizeof word; ++i)
                word |= std::uint64_t{static_cast<unsigned char>(i < name.size() ? name[i] : ' ')} << (8 * i);
            _bits |= _GetBit(word);
        }
    }
    // @return whether the name may have been seen before.
    bool Add(const char* name, std::size_t size)
    {
        const std::uint64_t bit =
            _GetBit(size < sizeof bit ? nxLogEscape::LoadShort(name, size) : nxLogEscape::Load<std::uint64_t>(name));
        const bool isOld = (_bits & bit) != 0;
        _bits |= bit;
        return isOld;
    }

private:
    static constexpr std::uint64_t _GetBit(std::uint64_t word)
    {
        return std::uint64_t{1} << ((word * 0x9E3779B97F4A7C15) >> 58);
    }
    std::uint64_t _bits = 0;
};
constexpr SeenNames freshNames;

bool IsOwnName(std::string_view name)
{
    return std::find(std::begin(ownNames), std::end(ownNames), name) != std::end(ownNames);
}

// Whether the object has a member of this name before the field at `place`.
[[gnu::noinline]] bool IsTaken(std::string_view name, const char* fields, const char* place)
{
    if (IsOwnName(name))
        return true;
    for (nxLogValueReader reader(fields, place); reader.Next();)
        if (reader.IsField() && reader.GetText() == name)
            return true;
    return false;
}

using QuickText = nxLogQuickText;

// The texts that were written, none with more bytes than it had, and what was suspicious in them.
struct QuickJson
{
    std::uint64_t suspicion = 0;

    [[gnu::always_inline]] char* PutText(char* out, const char*& at)
    {
        const std::size_t size = nxLogEscape::Load<std::uint32_t>(at);
        at += sizeof(std::uint32_t);
        suspicion |= QuickText::CopyOfRecord<nxLogJsonText::Suspect>(out, at, size);
        at += size;
        return out + size;
    }
    // @return null for a long text.
    [[gnu::always_inline]] char* PutKeptText(char* out, const char*& at)
    {
        const auto& text = *QuickText::Take<const std::string*>(at);
        if (text.size() > nxEnumTable::MaximumTextSize)
            return nullptr;
        suspicion |= QuickText::Copy<nxLogJsonText::Suspect>(out, text.data(), text.size());
        return out + text.size();
    }
    // The value of a field. @return null when it needs care.
    [[gnu::always_inline]] char* PutValue(char* out, const char*& at)
    {
        const auto tag = static_cast<nxLogTag>(*at++);
        switch (tag)
        {
            case nxLogTag::True:
                return PutJson(out, "true");
            case nxLogTag::False:
                return PutJson(out, "false");
            case nxLogTag::Null:
            case nxLogTag::NoChange:
                return PutJson(out, "null");
            case nxLogTag::Decimal:
            {
                const char* const decimal = at;
                return QuickText::Take<nxDecimal>(at).IsValid() ? QuickText::WriteDecimal(out, decimal)
                                                                : PutJson(out, "null");
            }
            case nxLogTag::Double:
                return nxLogJsonText::PutDouble(out, QuickText::Take<double>(at));
            case nxLogTag::Text:
                *out++ = '"';
                return PutJson(PutText(out, at), "\"");
            case nxLogTag::KeptText:
                *out++ = '"';
                out = PutKeptText(out, at);
                return out == nullptr ? nullptr : PutJson(out, "\"");
            case nxLogTag::Signed32:
                return QuickText::WriteSigned(out, QuickText::Take<std::int32_t>(at));
            case nxLogTag::Unsigned32:
                return QuickText::WriteUnsigned(out, QuickText::Take<std::uint32_t>(at));
            case nxLogTag::Signed64:
                return nxDigits::WriteSigned(out, QuickText::Take<std::int64_t>(at));
            case nxLogTag::Unsigned64:
                return nxDigits::Write(out, QuickText::Take<std::uint64_t>(at));
            default:
                return nullptr;
        }
    }
    // The texts of the values before the first field. @return null when one needs care.
    [[gnu::always_inline]] char* PutMessage(char* out, const char*& at, const char* end)
    {
        while (at != end)
        {
            const char* const begin = at;
            const auto tag = static_cast<nxLogTag>(*at++);
            if (tag == nxLogTag::Text)
                out = PutText(out, at);
            else if (QuickText::WriteValue(out, tag, at)) [[likely]]
                continue;
            else if (tag == nxLogTag::KeptText)
            {
                if ((out = PutKeptText(out, at)) == nullptr)
                    return nullptr;
            }
            else
            {
                at = begin;
                break;
            }
        }
        return out;
    }
    // The fields, after which nothing else may come. @return null when one needs care.
    [[gnu::always_inline]] char* PutFields(char* out, const char* at, const char* end)
    {
        const char* const fields = at;
        SeenNames names = freshNames;
        while (at != end)
        {
            const char* const begin = at;
            const auto tag = static_cast<nxLogTag>(*at++);
            if (tag == nxLogTag::End)
                break;
            if (tag != nxLogTag::Field && tag != nxLogTag::UnshownField) [[unlikely]]
                return nullptr;
            const std::size_t size = nxLogEscape::Load<std::uint8_t>(at);
            const char* const name = at + 1;
            at = name + size;
            if (at == end || (names.Add(name, size) && IsTaken({name, size}, fields, begin))) [[unlikely]]
                return nullptr;
            out = PutJson(out, ",\"");
            static_cast<void>(QuickText::Copy<nxLogJsonText::Suspect>(out, name, size));
            out = PutValue(PutJson(out + size, "\":"), at);
            if (out == nullptr)
                return nullptr;
        }
        return out;
    }
};

// The message, the quote after it, the fields and the brace. @return null when something in the values needs care.
char* WriteQuickly(char* out, const char* at, const char* end)
{
    QuickJson json;
    out = json.PutMessage(out, at, end);
    if (out == nullptr)
        return nullptr;
    out = json.PutFields(PutJson(out, "\""), at, end);
    if (out == nullptr || (json.suspicion & nxLogEscape::AnswerBits) != 0) [[unlikely]]
        return nullptr;
    return PutJson(out, "}");
}

bool AppendEscaped(nxLogTextBytes& out, std::string_view text)
{
    if (!out.Ensure(nxLogJsonText::GetRoom(text.size()) + longestNumber))
        return false;
    out.SetCursor(nxLogJsonText::PutText(out.GetCursor(), text));
    return true;
}
}  // namespace

void nxLogJsonLine::_MakeThread(std::uint64_t key, const nxLogRecord& record) noexcept
{
    const std::string& level = nxLogLevelEnum(static_cast<nxEnumValue>(record.level)).GetShortDescription();
    char* out = PutJson(_threadText, "\",\"level\":\"");
    constexpr std::size_t longestLevel = sizeof "UNDEFINED" - 1;
    static_assert(55 + longestLevel <= _threadRoom, "names of members and two numbers of 32 bits");
    out = PutJson(nxLogJsonText::PutText(out, std::string_view(level).substr(0, longestLevel)), "\"");
    if (_thread.index)
        out = nxDigits::Write(PutJson(out, ",\"thread\":"), record.threadIndex);
    if (_thread.index && _thread.processor)
        out = nxDigits::Write(PutJson(out, ",\"processor\":"), record.processor);
    _threadSize = static_cast<std::size_t>(out - _threadText);
    _key = key;
}

// From the end of the time to the thread. @param out has room for _threadRoom bytes.
[[gnu::always_inline]] inline char* nxLogJsonLine::_PutThread(char* out, const nxLogRecord& record) noexcept
{
    if (const std::uint64_t key = _thread.GetKey(record); key != _key) [[unlikely]]
        _MakeThread(key, record);
    std::memcpy(out, _threadText, _threadRoom);
    return out + _threadSize;
}

// All before the message.
bool nxLogJsonLine::_AppendFrame(nxLogTextBytes& out, const nxLogRecord& record, std::string_view time) noexcept
{
    const std::string_view file = record.GetFile();
    if (!out.Ensure(longestNumber + nxLogJsonText::GetSourceRoom(file.size())))
        return false;
    out.Put(timeMember);
    out.Put(time);
    char* const end = _PutThread(out.GetCursor(), record);
    out.SetCursor(nxLogJsonText::PutSource(end, file, record.GetLine()));
    return true;
}

bool nxLogJsonLine::Append(nxLogTextBytes& out, const nxLogRecord& record, nxLogOtherTime& times,
                           const nxLogTimeText& local) noexcept
try
{
    const std::size_t size = static_cast<std::size_t>(record.end - record.values);
    const bool isShort = size <= QuickText::LargestRecord;
    constexpr std::size_t frameRoom =
        timeMember.size() + nxLogOtherTime::Longest + _threadRoom + nxLogKeptSource::JsonRoom + longestNumber;
    if (record.source != nullptr && nxLogKeptSource::Of(*record.source).jsonSize <= nxLogKeptSource::JsonRoom &&
        isShort && out.Ensure(QuickText::GetRoom(size) + frameRoom)) [[likely]]
    {
        const nxLogKeptSource& source = nxLogKeptSource::Of(*record.source);
        char* at = PutJson(out.GetCursor(), timeMember);
        at = _PutThread(at + times.Put(at, record.time, local), record);
        std::memcpy(at, source.json, nxLogKeptSource::JsonRoom);
        out.SetCursor(at + source.jsonSize);
    }
    else if (!_AppendFrame(out, record, times.Get(record.time, local)) ||
             !out.Ensure(isShort ? QuickText::GetRoom(size) + longestNumber : 0))
        return false;
    char* const end = isShort ? WriteQuickly(out.GetCursor(), record.values, record.end) : nullptr;
    if (end == nullptr) [[unlikely]]
        return _AppendCarefully(out, record);
    out.SetCursor(end);
    return true;
}
catch (...)
{
    return false;
}

bool nxLogJsonLine::_AppendValue(nxLogTextBytes& out, const nxLogFieldView::Value& value, bool& isCut) noexcept
{
    const auto append = [&](const auto& number)
    {
        using Number = std::decay_t<decltype(number)>;
        char* at = out.GetCursor();
        if constexpr (std::is_same_v<Number, std::string_view>)
        {
            const std::string_view kept = nxLogMessageText::CutTo(number, nxLogLimits::LongestMessage);
            out.Put("\"");
            if (!AppendEscaped(out, kept))
                return false;
            isCut = isCut || kept.size() != number.size();
            out.Put(kept.size() != number.size() ? nxLogMessageText::CutMark : "");
            at = PutJson(out.GetCursor(), "\"");
        }
        else if constexpr (std::is_same_v<Number, std::monostate>)
            at = PutJson(at, "null");
        else if constexpr (std::is_same_v<Number, bool>)
            at = PutJson(at, number ? "true" : "false");
        else if constexpr (std::is_same_v<Number, double>)
            at = nxLogJsonText::PutDouble(at, number);
        else if constexpr (std::is_same_v<Number, nxDecimal>)
            at = number.IsValid() ? at + number.GetAsLogString(at, '.') : PutJson(at, "null");
        else if constexpr (std::is_signed_v<Number>)
            at = nxDigits::WriteSigned(at, number);
        else
            at = nxDigits::Write(at, number);
        out.SetCursor(at);
        return true;
    };
    return std::visit(append, value);
}

// From the message on. Throws std::bad_alloc.
bool nxLogJsonLine::_AppendCarefully(nxLogTextBytes& out, const nxLogRecord& record)
{
    constexpr std::size_t keptMessage = 1 << 16;
    _message.Clear();
    _message.ShrinkTo(keptMessage);
    nxLogMessageText message(_message, {false, false});
    if (!message.Append(record.values, record.end) || !AppendEscaped(out, _message.Get()))
        return false;
    out.Put("\"");
    bool isCut = message.IsCut();
    std::unordered_map<std::string_view, unsigned> names;
    for (nxLogFieldReader reader(record.values, record.end); reader.Next();)
    {
        const auto& [name, value] = reader.Get();
        if (!out.Ensure(nxFieldName::MaximumSize + longestNumber))
            return false;
        out.Put(",\"");
        out.Put(name);
        if (const unsigned number = ++names[name] + (IsOwnName(name) ? 1 : 0); number > 1)
            out.SetCursor(nxDigits::Write(PutJson(out.GetCursor(), "#"), number));
        out.Put("\":");
        if (!_AppendValue(out, value, isCut) || !out.Ensure(longestNumber))
            return false;
    }
    out.Put(isCut ? R"(,"cut":true})" : "}");
    return true;
}
