// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogMessageText.h"

#include <string>

#include "core/log/internal/nxLogEscape.h"
#include "core/log/internal/nxLogFieldText.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogQuickText.h"
#include "core/text/nxStringHelper.h"

namespace
{
constexpr std::size_t maximumMessage = nxLogLimits::LongestMessage;

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
}  // namespace

std::string_view nxLogMessageText::CutTo(std::string_view text, std::size_t limit) noexcept
{
    if (text.size() <= limit)
        return text;
    std::size_t position = limit;
    while (position > 0 && limit - position < 3 && IsContinuation(text[position]))
        --position;
    return text.substr(0, IsContinuation(text[position]) ? limit : position);
}

void nxLogMessageText::_PutCutMark()
{
    _out.Put(CutMark);
    _isCut = true;
}

bool nxLogMessageText::_AppendEscaped(std::string_view text) noexcept
{
    const char* at = text.data();
    const char* const end = at + text.size();
    do
    {
        if (!_out.Ensure(static_cast<std::size_t>(end - at) + nxLogEscape::LongestPiece + LongestValue))
            return false;
        const nxLogEscape::Place place = nxLogEscape::PutPiece(_out.GetCursor(), at, end);
        _out.SetCursor(place.out);
        at = place.at;
    } while (at != end);
    return true;
}

bool nxLogMessageText::_AppendText(std::string_view text) noexcept
{
    if (_wish.escape)
        return _AppendEscaped(text);
    if (!_out.Ensure(text.size() + LongestValue))
        return false;
    _out.Put(text);
    return true;
}

// A text as long as there is room for it in the message.
bool nxLogMessageText::_AppendLimited(std::string_view text) noexcept
{
    const std::string_view kept = CutTo(text, maximumMessage - _written);
    if (!_AppendText(kept))
        return false;
    _written += kept.size();
    if (kept.size() != text.size()) [[unlikely]]
        _PutCutMark();
    return true;
}

bool nxLogMessageText::_AppendDouble(double value) noexcept
{
    try
    {
        return _AppendText(nxStringHelper::GetAsString(value));
    }
    catch (...)
    {
        return false;
    }
}

// A value that is no text takes LongestValue bytes at most, for which there is room.
bool nxLogMessageText::_AppendOne(const nxLogValueReader& value) noexcept
{
    if (value.GetTag() == nxLogTag::Text)
        return _AppendLimited(value.GetText());
    const std::size_t before = _out.GetSize();
    switch (value.GetTag())
    {
        case nxLogTag::KeptText:
            if (!_AppendText(*value.Get<const std::string*>()))
                return false;
            break;
        case nxLogTag::Double:
            if (!_AppendDouble(value.Get<double>()))
                return false;
            break;
        case nxLogTag::Cut:
            _PutCutMark();
            break;
        case nxLogTag::NoChange:
            _out.Put("NO_CHANGE");
            break;
        case nxLogTag::SourceApplication:
            break;
        default:
        {
            char* out = _out.GetCursor();
            const char* bytes = value.GetBytes();
            nxLogQuickText::WriteValue(out, value.GetTag(), bytes);
            _out.SetCursor(out);
        }
    }
    _written += _out.GetSize() - before;
    return true;
}

// The value of a field that is a text.
bool nxLogMessageText::_AppendFieldsText(const nxLogValueReader& value) noexcept
{
    nxLogTextBytes group;
    std::string_view text;
    if (value.GetTag() == nxLogTag::Group)
    {
        const std::string_view values = value.GetText();
        if (!nxLogMessageText(group, {false, true}).Append(values.data(), values.data() + values.size()))
            return false;
        text = group.Get();
    }
    else
        text = value.GetTag() == nxLogTag::Text ? value.GetText() : *value.Get<const std::string*>();
    const std::size_t room = maximumMessage > _written ? maximumMessage - _written : 0;
    const std::string_view kept = CutTo(text, room);
    if (!_out.Ensure(nxLogFieldText::GetRoom(kept.size()) + LongestValue))
        return false;
    _out.SetCursor(nxLogFieldText::PutValue(_out.GetCursor(), kept));
    _written += kept.size();
    if (kept.size() != text.size())
        _PutCutMark();
    return true;
}

// ` name=value`. The reader moves on to the value, which is missing if there was no memory for it.
bool nxLogMessageText::_AppendField(nxLogValueReader& value) noexcept
{
    const std::size_t before = _out.GetSize();
    _out.Put(" ");
    _out.Put(value.GetText());
    _out.Put("=");
    _written += _out.GetSize() - before;
    if (!_out.Ensure(LongestValue))
        return false;
    if (!value.Next())
        return true;
    switch (value.GetTag())
    {
        case nxLogTag::Text:
        case nxLogTag::KeptText:
        case nxLogTag::Group:
            return _AppendFieldsText(value);
        default:
            return _AppendOne(value);
    }
}

bool nxLogMessageText::Append(const char* values, const char* end) noexcept
{
    if (!_out.Ensure(LongestValue))
        return false;
    // Every turn finds room for one value that is not a text, and leaves as much.
    for (nxLogValueReader value(values, end); !_isCut && value.Next();)
    {
        if (value.IsField() && (!_wish.fields || value.GetTag() == nxLogTag::UnshownField))
        {
            if (value.Next() && value.GetTag() == nxLogTag::Cut)
                _PutCutMark();
            continue;
        }
        if (_written > maximumMessage) [[unlikely]]
        {
            if (!HasText(value))
                continue;
            _PutCutMark();
            return true;
        }
        if (!(value.IsField() ? _AppendField(value) : _AppendOne(value)) || !_out.Ensure(LongestValue))
            return false;
    }
    return true;
}
