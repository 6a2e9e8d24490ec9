// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGHEXDUMP_H
#define CORE_LOG_INTERNAL_NXLOGHEXDUMP_H

#include <array>
#include <cstddef>
#include <string_view>

/// The lines of nxLog::LogBufferAsHex(), made one after the other in the same place.
///
/// Invariant: the longest line fits into the place, whatever the bytes.
///
/// Errors: none, it allocates nothing. Threads: none.
class nxLogHexDump
{
public:
    /// @param bytesPerLine 1 to LargestLine. @param placeholder shown for bytes that are not printable.
    nxLogHexDump(unsigned bytesPerLine, char placeholder, bool withOffsets)
        : _bytesPerLine(bytesPerLine), _placeholder(placeholder), _withOffsets(withOffsets)
    {
    }

    /// @return the line for the @p size bytes at @p bytes, at most bytesPerLine; valid until the next one is made.
    /// @param offset of the bytes in the buffer.
    std::string_view MakeLine(const char* bytes, std::size_t size, std::size_t offset);

    static constexpr std::size_t LargestLine = 256;

private:
    void _PutHex(std::size_t value, unsigned count);
    void _Put(char character) { _line[_size++] = character; }

    unsigned _bytesPerLine;
    char _placeholder;
    bool _withOffsets;
    std::array<char, 4 * LargestLine + 16> _line;  // the offset and the bars take 14
    std::size_t _size = 0;
};

#endif
