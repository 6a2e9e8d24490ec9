// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxLineFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

#include "core/platform/inline/nxClock.h"
#include "core/platform/nxNanoseconds.h"

namespace
{
constexpr std::int64_t timeBetweenTries = nxNanoseconds::PerSecond;

std::uint64_t CountLines(std::string_view text)
{
    return static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n'));
}

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

void nxLineFile::Take(nxFile&& file)
{
    _file = std::move(file);
    _size = 0;
    _error = 0;
}

nxFile::Fate nxLineFile::Look()
{
    const nxFile::Fate fate = _file.Look(_size);
    if (fate == nxFile::Fate::Closed)
        _file.Forget();
    return fate;
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

bool nxLineFile::Flush(bool evenNow)
{
    if (_used == 0)
        return true;
    if (!(evenNow ? _file.IsOpen() : _MayTry()))
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

// Copies as many whole lines as find room; the others are lost.
void nxLineFile::_Keep(std::string_view lines)
{
    const std::size_t room = _capacity - _used;
    const std::size_t kept = lines.size() <= room ? lines.size() : SizeOfWholeLines(lines.substr(0, room));
    std::memcpy(_buffer + _used, lines.data(), kept);
    _used += kept;
    _Lose(lines.substr(kept));
}

void nxLineFile::_Lose(std::string_view lines) { _lostLines += CountLines(lines); }

std::uint64_t nxLineFile::GetWaitingLines() const { return CountLines({_buffer, _used}); }

// Writes and returns the rest. It begins with a whole line, or in the middle of one if the file could not be cut back.
std::string_view nxLineFile::_Hand(std::string_view lines)
{
    std::size_t written = 0;
    _error = _file.Write(lines.data(), lines.size(), written);
    if (_error != 0)
        _nextTry = nxClock::MonotonicNanoseconds() + timeBetweenTries;
    const std::size_t whole = _error != 0 ? SizeOfWholeLines(lines.substr(0, written)) : written;
    if (_error == EBADF)
    {
        // The rest goes into another file, which begins with a whole line.
        _file.Forget();
        written = whole;
    }
    else if (whole != written && _file.CutBack(written - whole) == 0)
        written = whole;
    _size += written;
    return lines.substr(written);
}
