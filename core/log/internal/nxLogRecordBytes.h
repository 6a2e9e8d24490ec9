// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGRECORDBYTES_H
#define CORE_LOG_INTERNAL_NXLOGRECORDBYTES_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/log/inline/nxLogRecordHeader.h"
#include "core/log/internal/nxLogRecord.h"
#include "core/log/internal/nxLogRecordTimes.h"
#include "core/platform/inline/nxClock.h"

/// The fields of an nxLog that a statement does not have, as they are queued. The file follows with a NUL.
struct nxLogObjectFields
{
    long long seconds;
    unsigned nanoseconds;
    unsigned threadIndex;
    unsigned line;
    unsigned fileSize;  ///< Without the NUL.
};

/// Reads and writes queued records. They begin at any multiple of 8 bytes.
///
/// Invariant: the size in a record's header counts header and values; the next record, or a jump to it, is where this
/// size, rounded up to 8, ends.
///
/// Threads: no state.
class nxLogRecordBytes
{
public:
    nxLogRecordBytes() = delete;

    static constexpr std::size_t JumpSize = 16;                                              ///< Bytes of a jump.
    static constexpr std::size_t ElsewhereSize = sizeof(nxLogRecordHeader) + sizeof(char*);  ///< Of such a record.

    static constexpr std::size_t RoundUp(std::size_t size) { return (size + 7) & ~std::size_t{7}; }
    /// The bytes from @p begin to @p end, which is not before it.
    static std::size_t Count(const char* begin, const char* end) { return static_cast<std::size_t>(end - begin); }

    static nxLogRecordHeader ReadHeader(const char* bytes) { return _Read<nxLogRecordHeader>(bytes); }
    static void WriteHeader(char* bytes, const nxLogRecordHeader& header)
    {
        std::memcpy(bytes, &header, sizeof header);
    }
    static std::uint32_t ReadSize(const char* bytes)
    {
        return _Read<std::uint32_t>(bytes + offsetof(nxLogRecordHeader, size));
    }
    static std::uint64_t ReadTicks(const char* bytes)
    {
        return _Read<std::uint64_t>(bytes + offsetof(nxLogRecordHeader, ticks));
    }
    /// How many nanoseconds ago a record was begun; 0 for the largest number of ticks, which no record has.
    static std::int64_t GetAge(std::uint64_t ticks, const nxClockScale& scale) noexcept;
    static nxLogRecordHeader::Kind ReadKind(const char* bytes)
    {
        return static_cast<nxLogRecordHeader::Kind>(bytes[offsetof(nxLogRecordHeader, kind)]);
    }

    /// Fetches what follows the record at @p bytes. The processor of the filling thread has it; a few records from now it will be
    /// here.
    static void Prefetch(const char* bytes)
    {
        constexpr std::size_t readAhead = 512;
        __builtin_prefetch(bytes + readAhead);
    }

    /// Where a jump leads.
    static char* ReadJump(const char* bytes) { return _Read<char*>(bytes + _jumpTarget); }
    static void WriteJump(char* at, char* target)
    {
        at[offsetof(nxLogRecordHeader, kind)] = nxLogRecordHeader::Jump;
        std::memcpy(at + _jumpTarget, &target, sizeof target);
    }

    /// The block of a record that is Elsewhere.
    static char* ReadBlock(const char* bytes) { return _Read<char*>(bytes + sizeof(nxLogRecordHeader)); }
    /// Writes the ElsewhereSize bytes that refer to @p block, which holds a record.
    static void WriteElsewhere(char* out, char* block) noexcept;

    /// The bytes that WriteObject() writes for @p record.
    static std::size_t GetObjectSize(const nxLogRecord& record) noexcept;
    /// Writes a record with a place of its own, stamped as handed over now. @param size is GetObjectSize().
    static void WriteObject(char* out, const nxLogRecord& record, std::size_t size) noexcept;

    /// Sets @p record to what @p bytes hold, a Statement or an Object.
    /// @param threadIndex of the thread that filled the ring; an Object has its own.
    static void Decode(nxLogRecord& record, const char* bytes, unsigned threadIndex, nxLogRecordTimes& times) noexcept
    {
        DecodeStatement(record, bytes, ReadSize(bytes), threadIndex, times);
        if (ReadKind(bytes) == nxLogRecordHeader::Statement)
            return;
        const auto fields = _Read<nxLogObjectFields>(record.values);
        record.time = {fields.seconds, fields.nanoseconds};
        record.threadIndex = fields.threadIndex;
        record.source = nullptr;
        record.ownFile = record.values + sizeof fields;
        record.ownLine = fields.line;
        record.values = record.ownFile + fields.fileSize + 1;
    }
    /// The same for a Statement. @param size is ReadSize().
    [[gnu::always_inline]] static void DecodeStatement(nxLogRecord& record, const char* bytes, std::uint32_t size,
                                                       unsigned threadIndex, nxLogRecordTimes& times) noexcept
    {
        record.level = static_cast<std::uint8_t>(bytes[offsetof(nxLogRecordHeader, level)]);
        record.processor = _Read<std::uint16_t>(bytes + offsetof(nxLogRecordHeader, processor));
        record.values = bytes + sizeof(nxLogRecordHeader);
        record.end = bytes + size;
        record.time = times.Get(ReadTicks(bytes));
        record.threadIndex = threadIndex;
        record.source = _Read<const nxLogSource*>(bytes + offsetof(nxLogRecordHeader, source));
    }

private:
    // After the byte that says that it is a jump.
    static constexpr std::size_t _jumpTarget = JumpSize - sizeof(char*);
    static_assert(offsetof(nxLogRecordHeader, kind) < _jumpTarget);

    template <class Value>
    static Value _Read(const char* bytes)
    {
        Value value;
        std::memcpy(&value, bytes, sizeof value);
        return value;
    }
};

#endif
