#ifndef CORE_LOG_INTERNAL_NXLOGVALUEREADER_H
#define CORE_LOG_INTERNAL_NXLOGVALUEREADER_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/log/inline/nxLogStream.h"

/// Reads the tagged values of a record one by one.
class nxLogValueReader
{
public:
    nxLogValueReader(const char* values, const char* end) : _at(values), _end(end) {}

    /// @return whether there is another value; its tag is GetTag().
    bool Next()
    {
        if (_at == _end)
            return false;
        _tag = static_cast<nxLogTag>(*_at);
        _value = _at + 1;
        switch (_tag)
        {
            case nxLogTag::End:
                _at = _end;
                return false;
            case nxLogTag::Cut:
                _at = _end;
                return true;
            case nxLogTag::Text:
            case nxLogTag::SourceApplication:
            {
                std::uint32_t size;
                std::memcpy(&size, _value, sizeof size);
                _value += sizeof size;
                _size = size;
                _at = _value + size;
                return true;
            }
            case nxLogTag::True:
            case nxLogTag::False:
                _at = _value;
                return true;
            case nxLogTag::Signed32:
            case nxLogTag::Unsigned32:
            case nxLogTag::DestinationUser:
                _at = _value + 4;
                return true;
            case nxLogTag::Signed64:
            case nxLogTag::Unsigned64:
            case nxLogTag::Double:
            case nxLogTag::Address:
            case nxLogTag::KeptText:
                _at = _value + 8;
                return true;
            case nxLogTag::Decimal:
                _at = _value + sizeof(nxDecimal);
                return true;
        }
        _at = _end;
        return false;
    }

    nxLogTag GetTag() const { return _tag; }

    /// The text of Text and SourceApplication.
    std::string_view GetText() const { return {_value, _size}; }

    const char* GetBytes() const { return _value; }  ///< Where the bytes of the value stand.

    /// The bytes of any other value.
    template <class Value>
    Value Get() const
    {
        Value value;
        std::memcpy(&value, _value, sizeof value);
        return value;
    }

private:
    const char* _at;
    const char* _end;
    nxLogTag _tag = nxLogTag::End;
    const char* _value = nullptr;
    std::size_t _size = 0;
};

#endif
