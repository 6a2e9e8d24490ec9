#ifndef CORE_LOG_INTERNAL_NXLOGHEXDUMP_H
#define CORE_LOG_INTERNAL_NXLOGHEXDUMP_H

#include <cstddef>
#include <string>

/// The lines of nxLog::LogBufferAsHex().
struct nxLogHexDump
{
    unsigned bytesPerLine;
    char placeholder;
    bool withOffsets;

    /// Replaces @p line by the line for the @p size bytes at @p bytes, at most bytesPerLine.
    /// @param offset where they stand in the buffer.
    void MakeLine(std::string& line, const char* bytes, std::size_t size, std::size_t offset) const;
};

#endif
