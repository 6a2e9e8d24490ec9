// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGVALUEREADER_H
#define CORE_LOG_INTERNAL_NXLOGVALUEREADER_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/log/inline/nxLogTag.h"

/// Reads the tagged values of a record one by one.
///
/// Invariant: the next tag, or the end, follows the value that was read last.
///
/// Threads: none.
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
        const std::size_t size = nxLogSizeOf(_tag);
        if (_tag == nxLogTag::End || size > static_cast<std::size_t>(_end - _value))
        {
            _at = _end;
            return false;
        }
        _at = _tag == nxLogTag::Cut ? _end : _value + size;
        if (_tag == nxLogTag::Text || _tag == nxLogTag::SourceApplication || _tag == nxLogTag::Group)
            _TakeText(Get<std::uint32_t>());
        else if (IsField())
            _TakeText(Get<std::uint8_t>());
        return true;
    }

    /// Whether it is the name of a field, whose value is the next one.
    bool IsField() const { return _tag == nxLogTag::Field || _tag == nxLogTag::UnshownField; }

    nxLogTag GetTag() const { return _tag; }

    /// The text of Text and SourceApplication, the values of a Group, the name of a field.
    std::string_view GetText() const { return {_value, _size}; }

    const char* GetBytes() const { return _value; }  ///< The first byte of the value.

    /// The bytes of any other value.
    template <class Value>
    Value Get() const
    {
        Value value;
        std::memcpy(&value, _value, sizeof value);
        return value;
    }

    /// Where the next tag is.
    const char* GetPlace() const { return _at; }

private:
    void _TakeText(std::size_t size)
    {
        _size = size;
        _value = _at;
        _at += size;
    }

    const char* _at;
    const char* _end;
    nxLogTag _tag = nxLogTag::End;
    const char* _value = nullptr;
    std::size_t _size = 0;
};

#endif
