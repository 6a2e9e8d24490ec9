#ifndef CORE_PLATFORM_NXLINEFILE_H
#define CORE_PLATFORM_NXLINEFILE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "core/platform/nxFile.h"

/// A file of whole lines with a buffer before it.
///
/// A line is in the file completely or not at all: when a write stops in the middle of one, the file is cut back to the
/// line before. While the file cannot be written, or is not open, lines wait in the buffer; those that find no room are
/// lost whole, and counted. The next attempt comes a second later. A file that other code of the process has closed is
/// not open any more from the next write or Look() on, and what was to be written waits for another one.
///
/// Threads: none. Errors: kept, see GetError().
class nxLineFile
{
public:
    nxLineFile() = default;

    /// Gives the buffer its size; only while it is empty.
    /// @return false when there is no memory for it: a small one then serves.
    bool SetBufferSize(std::size_t bytes);

    /// Takes an empty open file in place of the one that is open, which is closed. What waits in the buffer goes into it.
    void Take(nxFile&& file);

    bool IsOpen() const { return _file.IsOpen(); }

    /// Adds lines, all of them ended. @param atOnce whether they must not wait in the buffer.
    void Append(std::string_view lines, bool atOnce);

    /// Hands everything to the operating system. @return whether nothing is left.
    /// @param evenNow also when the last attempt failed less than a second ago.
    bool Flush(bool evenNow = false);

    /// Hands over what can be handed over, forgets the lines that cannot, counting them, and closes the file.
    void Close();

    /// Closes the file and forgets what waits, without counting: it belongs to another process.
    void Forget();

    /// Why the last attempt to write failed, as the system's error number; 0 after one that did not.
    int GetError() const { return _error; }

    /// The bytes of all lines in the file and of those that wait to be there.
    std::uint64_t GetSize() const { return _size + _used; }

    /// Lines that were lost since the object was made.
    std::uint64_t GetLostLines() const { return _lostLines; }

    /// Lines in the buffer.
    std::uint64_t GetWaitingLines() const;

    /// Looks what has become of the file, which is open, and takes its size from the system: others may have cut it.
    nxFile::Fate Look();

    /// Closes the file, what waits in the buffer goes on waiting.
    void CloseFile() { _file.Close(); }

private:
    bool _MayTry() const;
    void _Keep(std::string_view lines);
    void _Lose(std::string_view lines);
    std::string_view _Hand(std::string_view lines);

    static constexpr std::size_t _smallCapacity = 16'384;

    nxFile _file;
    char _small[_smallCapacity];
    std::unique_ptr<char[]> _large;
    char* _buffer = _small;
    std::size_t _capacity = _smallCapacity;
    std::size_t _used = 0;
    std::uint64_t _size = 0;    // of the file
    std::int64_t _nextTry = 0;  // on the monotonic clock, while there is an error
    int _error = 0;
    std::uint64_t _lostLines = 0;
};

#endif
