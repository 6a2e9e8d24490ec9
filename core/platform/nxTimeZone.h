// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXTIMEZONE_H
#define CORE_PLATFORM_NXTIMEZONE_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "core/nxExport.h"

class nxZoneRule;

/// A span of time during which local time differs from UTC by one offset.
struct nxTimeZoneSpan
{
    std::int64_t begin;   ///< First second, counted from 1 January 1970 00:00 UTC.
    std::int64_t end;     ///< First second after it.
    std::int32_t offset;  ///< Local time less UTC, in seconds.

    friend bool operator==(const nxTimeZoneSpan&, const nxTimeZoneSpan&) = default;
};

/// The offsets of one time zone in the years 1900 to 2099, in a table that is searched in a few nanoseconds.
///
/// It is read from a file of the system's zone database, or from a rule such as "CET-1CEST,M3.5.0,M10.5.0/3". The result
/// is exactly that of the C library, also before the first entry of a file and after the last.
///
/// - Null: a default-constructed zone has no spans; only Read...() and Load() may be called.
/// - Threads: once read, any thread may search it.
/// - Ownership: a plain value of about sixteen kilobytes; nothing allocates memory.
class NX_CORE_API nxTimeZone
{
public:
    static constexpr std::int64_t FirstSecond = -2'208'988'800;  ///< 1 January 1900, 00:00 UTC.
    static constexpr std::int64_t EndSecond = 4'102'444'800;     ///< 1 January 2100, 00:00 UTC.

    /// Reads the zone that the C library would use for a value of the variable TZ.
    /// @param setting the value, or null when the variable is not set, for the machine's own zone.
    /// @param scratch room for the file of the zone; such files have less than 16 KiB.
    /// In secure execution the variable TZDIR is ignored, and a setting that begins with '/' or contains ".." is refused.
    /// @return false when the zone cannot be put into a table: there is no such file and the setting is not a rule, the
    ///         zone counts leap seconds, or its file is damaged.
    bool Load(const char* setting, std::span<char> scratch);

    /// Reads the bytes of a zone file. @return false when they are not such a file, or one that counts leap seconds.
    bool ReadFile(std::string_view bytes);

    /// Reads a rule: a name and an offset, then optionally those of summer time and when it is observed.
    /// @return false when the text is not such a rule.
    bool ReadRule(std::string_view text);

    /// The span that @p second lies in.
    /// @pre FirstSecond <= second < EndSecond
    nxTimeZoneSpan Find(std::int64_t second) const { return GetSpan(FindNumber(second)); }

    /// The number of the span that @p second lies in, see GetSpan().
    /// @pre FirstSecond <= second < EndSecond
    std::size_t FindNumber(std::int64_t second) const
    {
        std::size_t i = _buckets[static_cast<std::size_t>((second - _firstBucketSecond) >> _bucketShift)];
        // Few buckets hold two changes, so the second comparison is nearly always false.
        i += second >= _begins[i + 1];
        while (second >= _begins[i + 1])
            ++i;
        return i;
    }

    /// Spans are numbered from 0 in order of time; the first begins at FirstSecond, the last ends at EndSecond.
    std::size_t GetSpanCount() const { return _count; }
    nxTimeZoneSpan GetSpan(std::size_t i) const { return {_begins[i], _begins[i + 1], _offsets[i]}; }

private:
    static constexpr std::size_t _capacity = 1'024;  // two hundred years with up to five changes each
    static constexpr int _bucketShift = 22;          // a bucket is 48 days
    static constexpr std::int64_t _firstBucketSecond = (FirstSecond >> _bucketShift) << _bucketShift;
    static constexpr std::size_t _bucketCount =
        static_cast<std::size_t>((EndSecond - _firstBucketSecond) >> _bucketShift) + 1;

    void _Add(std::int64_t second, std::int32_t offset);
    [[gnu::visibility("hidden")]] void _AddRule(const nxZoneRule& rule, std::int64_t begin);
    bool _Finish();

    std::size_t _count = 0;
    std::int64_t _begins[_capacity + 1] = {};  // the last is EndSecond
    std::int32_t _offsets[_capacity] = {};
    std::uint16_t _buckets[_bucketCount] = {};  // the number of the span that the bucket begins in
};

#endif
