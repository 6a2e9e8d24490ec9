// SPDX-License-Identifier: Apache-2.0
#include "core/log/inline/nxLogMessage.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core/log/internal/nxLogValueReader.h"

nxLogMessage::nxLogMessage(const char* file) noexcept { _Start(file); }

nxLogMessage::nxLogMessage(const char* file, const char* begin, const char* end) noexcept
    : _file(file), _values(begin), _cursor(const_cast<char*>(end)), _end(_cursor)
{
}

nxLogMessage::nxLogMessage(const nxLogMessage& other) noexcept
{
    _Start(other._file);
    _AppendValues(other);
}

nxLogMessage& nxLogMessage::operator=(const nxLogMessage& other) noexcept
{
    if (this == &other)
        return *this;
    std::free(_block);
    _block = nullptr;
    _Start(other._file);
    _AppendValues(other);
    return *this;
}

nxLogMessage::~nxLogMessage() { std::free(_block); }

void nxLogMessage::_Start(const char* file) noexcept
{
    _own[0] = '\0';
    _file = _own;
    _values = _cursor = _own + 1;
    _end = _own + sizeof _own - 1;
    _isCut = false;
    const std::size_t size = file == nullptr ? 0 : std::min(std::strlen(file), MaximumFileSize);
    char* const room = size == 0 ? nullptr : Take(size);
    if (room == nullptr)
        return;
    char* const begin = room - 1;
    std::memcpy(begin, file, size);
    begin[size] = '\0';
    _values = _cursor;
}

void nxLogMessage::_AppendValues(const nxLogMessage& other) noexcept
{
    const auto size = static_cast<std::size_t>(other._cursor - other._values);
    if (size == 0)
        return;
    // No length check: the other message respected the limit, the mark of a cut included.
    if (static_cast<std::size_t>(_end - _cursor) < size && !_Enlarge(static_cast<std::size_t>(_cursor - _file) + size))
        return _Cut();
    std::memcpy(_cursor, other._values, size);
    _cursor += size;
    _isCut = other._isCut;
    if (_isCut)
        _end = _cursor;
}

void nxLogMessage::ClearMessage() noexcept
{
    char* kept = const_cast<char*>(_values);
    const bool isBorrowed = _block == nullptr && _file != _own;
    for (nxLogValueReader value(_values, _cursor); !isBorrowed && value.Next();)
    {
        // With its tag, and a text with its length as well.
        const char* begin = value.GetBytes() - 1;
        const char* end = value.GetBytes() + sizeof(std::uint32_t);
        if (value.GetTag() == nxLogTag::SourceApplication)
        {
            begin -= sizeof(std::uint32_t);
            end = value.GetText().data() + value.GetText().size();
        }
        else if (value.GetTag() != nxLogTag::DestinationUser)
            continue;
        std::memmove(kept, begin, static_cast<std::size_t>(end - begin));
        kept += end - begin;
    }
    _cursor = kept;
    _isCut = false;
}

bool nxLogMessage::_Grow(std::size_t bytes) noexcept
{
    // A message that was cut takes no more values.
    if (_isCut)
        return false;
    const auto size = static_cast<std::size_t>(_cursor - _file);
    const std::size_t most = static_cast<std::size_t>(_values - _file) + MaximumSize;
    if (size + bytes <= most && _Enlarge(std::min(std::max(2 * size, size + bytes), most)))
        return true;
    _Cut();
    return false;
}

// Moves the message to a block for `bytes` bytes and the mark of a cut.
bool nxLogMessage::_Enlarge(std::size_t bytes) noexcept
{
    const char* const begin = _file;
    const auto size = static_cast<std::size_t>(_cursor - begin);
    char* const grown = static_cast<char*>(std::realloc(_block, bytes + 1));
    if (grown == nullptr)
        return false;
    if (_block == nullptr)
        std::memcpy(grown, begin, size);
    _values = grown + (_values - begin);
    _file = grown;
    _cursor = grown + size;
    _end = grown + bytes;
    _block = grown;
    return true;
}

void nxLogMessage::_Cut() noexcept
{
    *_cursor++ = static_cast<char>(nxLogTag::Cut);
    _end = _cursor;
    _isCut = true;
}
