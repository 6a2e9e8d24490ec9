#include "core/platform/nxLineFile.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "core/platform/nxClock.h"

namespace
{
constexpr std::int64_t nanosecondsBetweenTries = 1'000'000'000;

// The size of the whole lines at the beginning of `text`.
std::size_t SizeOfWholeLines(std::string_view text)
{
    return text.rfind('\n') + 1;  // 0 when there is none
}
}  // namespace

bool nxLineFile::SetBufferSize(std::size_t bytes)
{
    if (_used != 0 || bytes == _capacity)
        return true;
    _large.reset(new (std::nothrow) char[bytes]);
    const bool hasMemory = _large != nullptr;
    _buffer = hasMemory ? _large.get() : _small;
    _capacity = hasMemory ? bytes : _smallCapacity;
    return hasMemory;
}

int nxLineFile::CreateNew(const std::string& path)
{
    const int error = _file.CreateNew(path);
    if (error == 0)
    {
        _size = 0;
        _error = 0;
    }
    return error;
}

bool nxLineFile::_MayTry() const
{
    return _file.IsOpen() && (_error == 0 || nxClock::MonotonicNanoseconds() >= _nextTry);
}

void nxLineFile::Append(std::string_view lines, bool atOnce)
{
    const bool fits = lines.size() <= _capacity - _used;
    const bool mayWait = fits && !atOnce && _error == 0;
    if (mayWait || !_MayTry())
        return _Keep(lines);
    if (fits && _used != 0)
    {
        _Keep(lines);
        Flush();
        return;
    }
    if (!Flush() || (!atOnce && lines.size() < _capacity))
        return _Keep(lines);
    _Keep(_Hand(lines));
}

bool nxLineFile::Flush()
{
    if (_used == 0)
        return true;
    if (!_MayTry())
        return false;
    const std::string_view rest = _Hand({_buffer, _used});
    std::memmove(_buffer, rest.data(), rest.size());
    _used = rest.size();
    return _used == 0;
}

void nxLineFile::Close()
{
    if (_used != 0 && _file.IsOpen())
        _Lose(_Hand({_buffer, _used}));
    else
        _Lose({_buffer, _used});
    Forget();
}

void nxLineFile::Forget()
{
    _used = 0;
    _error = 0;
    _file.Close();
}

// Copies the lines that find room.
void nxLineFile::_Keep(std::string_view lines)
{
    const std::size_t room = _capacity - _used;
    const std::size_t kept = lines.size() <= room ? lines.size() : SizeOfWholeLines(lines.substr(0, room));
    std::memcpy(_buffer + _used, lines.data(), kept);
    _used += kept;
    _Lose(lines.substr(kept));
}

void nxLineFile::_Lose(std::string_view lines)
{
    _lostLines += static_cast<std::uint64_t>(std::count(lines.begin(), lines.end(), '\n'));
}

// Writes; returns what is left to write, from the beginning of a line on unless the file could not be cut back there.
std::string_view nxLineFile::_Hand(std::string_view lines)
{
    std::size_t written = 0;
    _error = _file.Write(lines.data(), lines.size(), written);
    if (_error != 0)
    {
        _nextTry = nxClock::MonotonicNanoseconds() + nanosecondsBetweenTries;
        const std::size_t whole = SizeOfWholeLines(lines.substr(0, written));
        if (whole != written && _file.Truncate(_size + whole) == 0)
            written = whole;
    }
    _size += written;
    return lines.substr(written);
}
