// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXLINEFILE_H
#define CORE_PLATFORM_NXLINEFILE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "core/platform/nxFile.h"

/// A file of whole lines with a buffer in front of it.
///
/// A line is in the file completely or not at all: when a write stops in the middle of a line, the file is cut back to the
/// end of the line before. While the file cannot be written, or is not open, lines wait in the buffer; lines that find no
/// room are lost whole and counted. The next attempt comes a second later. If other code of the process closes the file,
/// the next write or Look() finds it not open, and the lines wait for another file.
///
/// Threads: none. Errors: kept, see GetError().
class nxLineFile
{
public:
    nxLineFile() = default;

    /// Gives the buffer its size; only while it is empty.
    /// @return false when there is no memory for it: a buffer of 16 KiB then serves.
    bool SetBufferSize(std::size_t bytes);

    /// Closes the file that is open and takes an empty open file in its place. The waiting lines go into the new file.
    void Take(nxFile&& file);

    bool IsOpen() const { return _file.IsOpen(); }

    /// Adds lines, each with its line end. @param atOnce writes them now instead of leaving them in the buffer.
    void Append(std::string_view lines, bool atOnce);

    /// Hands all waiting lines to the operating system. @return whether none is left.
    /// @param evenNow tries also when the last attempt failed less than a second ago.
    bool Flush(bool evenNow = false);

    /// Hands over the waiting lines, counts those that the system does not take as lost, and closes the file.
    void Close();

    /// Closes the file and drops the waiting lines without counting them, because they belong to another process.
    void Forget();

    /// The system's error number of the last attempt to write; 0 after a successful one.
    int GetError() const { return _error; }

    /// The bytes of the lines in the file and of the waiting ones.
    std::uint64_t GetSize() const { return _size + _used; }

    /// The number of lines that were lost since the object was made.
    std::uint64_t GetLostLines() const { return _lostLines; }

    /// The number of lines in the buffer.
    std::uint64_t GetWaitingLines() const;

    /// Asks for the state of the file, which is open, and takes its size from the system: others may have cut it.
    nxFile::Fate Look();

    /// Closes the file. The lines in the buffer wait for the next one.
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
