// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogFieldReader.h"

#include <string>

#include "core/log/internal/nxLogMessageText.h"

bool nxLogFieldReader::Next() noexcept
{
    while (_reader.Next())
        if (_reader.IsField())
        {
            _field.name = _reader.GetText();
            _field.value = _reader.Next() ? _GetValue() : nxLogFieldView::Value();
            return true;
        }
    return false;
}

nxLogFieldView::Value nxLogFieldReader::_GetValue() noexcept
{
    switch (_reader.GetTag())
    {
        case nxLogTag::True:
            return true;
        case nxLogTag::False:
            return false;
        case nxLogTag::Signed32:
            return static_cast<long long>(_reader.Get<std::int32_t>());
        case nxLogTag::Unsigned32:
            return static_cast<unsigned long long>(_reader.Get<std::uint32_t>());
        case nxLogTag::Signed64:
            return static_cast<long long>(_reader.Get<std::int64_t>());
        case nxLogTag::Unsigned64:
            return static_cast<unsigned long long>(_reader.Get<std::uint64_t>());
        case nxLogTag::Double:
            return _reader.Get<double>();
        case nxLogTag::Decimal:
            return _reader.Get<nxDecimal>();
        case nxLogTag::Text:
            return _reader.GetText();
        case nxLogTag::KeptText:
            return std::string_view(*_reader.Get<const std::string*>());
        case nxLogTag::Group:
        {
            const std::string_view values = _reader.GetText();
            _text.Clear();
            if (nxLogMessageText(_text, {false, true}).Append(values.data(), values.data() + values.size()))
                return _text.Get();
            return {};
        }
        case nxLogTag::Address:
        {
            const char* const tag = _reader.GetBytes() - 1;
            _text.Clear();
            if (nxLogMessageText(_text, {false, true}).Append(tag, _reader.GetPlace()))
                return _text.Get();
            return {};
        }
        default:
            return {};
    }
}
