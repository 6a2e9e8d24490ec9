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
        if (_tag == nxLogTag::Text || _tag == nxLogTag::SourceApplication)
        {
            _size = Get<std::uint32_t>();
            _value = _at;
            _at += _size;
        }
        return true;
    }

    nxLogTag GetTag() const { return _tag; }

    /// The text of Text and SourceApplication.
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

private:
    const char* _at;
    const char* _end;
    nxLogTag _tag = nxLogTag::End;
    const char* _value = nullptr;
    std::size_t _size = 0;
};

#endif
