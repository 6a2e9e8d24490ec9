#include "core/log/nxLogMessage.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "core/log/nxLogStream.h"

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
    const std::size_t size = file == nullptr ? 0 : std::strlen(file);
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
    if (char* const room = size == 0 ? nullptr : Take(size))
        std::memcpy(room, other._values, size);
}

void nxLogMessage::ClearValues() noexcept
{
    _cursor = const_cast<char*>(_values);
    _isCut = false;
}

bool nxLogMessage::_Grow(std::size_t bytes) noexcept
{
    // A message that has been cut takes nothing more.
    if (_isCut)
        return false;
    const char* const begin = _file;
    const auto size = static_cast<std::size_t>(_cursor - begin);
    const bool cut = size + bytes > MaximumSize;
    const std::size_t capacity = (cut ? size : std::max(2 * size, size + bytes)) + 1;
    char* const grown = cut ? nullptr : static_cast<char*>(std::realloc(_block, capacity));
    if (grown == nullptr)
    {
        *_cursor++ = static_cast<char>(nxLogTag::Cut);
        _end = _cursor;
        _isCut = true;
        return false;
    }
    if (_block == nullptr)
        std::memcpy(grown, begin, size);
    _values = grown + (_values - begin);
    _file = grown;
    _cursor = grown + size;
    _end = grown + capacity - 1;
    _block = grown;
    return true;
}
