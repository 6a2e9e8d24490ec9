// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_NXDATETIME_H
#define CORE_TIME_NXDATETIME_H

#include <compare>
#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

#include "core/nxExport.h"
#include "core/text/nxInitalizers.h"
#include "core/time/nxDate.h"
#include "core/time/nxDateTimeSpan.h"
#include "core/time/nxTime.h"

/// A nullable calendar moment of local time: a date with a time of day, or a time of day alone.
///
/// - Units: a day and nanoseconds since midnight. It is the reading of a wall clock and keeps no time zone.
/// - Null: a default-constructed date-time is null and comes before all others; one with a time of day alone comes
///   before all that have a date.
/// - Errors: an impossible date or time, and a moment outside the years 1 to 9999, give null.
/// - Threads: like an int. The constructor that converts a moment reads the process's time zone; no thread may change the
///   environment variable TZ meanwhile.
/// - Ownership: a 16-byte value that owns nothing.
/// @code
/// const nxDateTime start(nxDate(2024, 3, 5), nxTime(9, 7, 3));
/// start.GetAsString();            // "05 Mar 2024 09:07:03"
/// start.GetAsString("%d%b%Y");    // "05Mar2024"
/// start.GetAsISOString();         // "2024-03-05T09:07:03"
/// nxDateTime(8, 30, 0).IsTimeOfDayOnly();  // true
/// start.GetWithSpanAdded(nxDateTimeSpan::GetFromSeconds(90)) - start;  // a span of 90 seconds
/// @endcode
class NX_CORE_API nxDateTime
{
public:
    constexpr nxDateTime() = default;                   ///< Null.
    constexpr explicit nxDateTime(nxNullInitalizer) {}  ///< Null.
    /// Null when @p time is null; a time of day alone when only @p date is null.
    constexpr nxDateTime(nxDate date, nxTime time) : _date(time.IsNull() ? nxDate() : date), _time(time) {}
    /// A time of day alone: hours 0 to 23, minutes and seconds 0 to 59, else null.
    constexpr nxDateTime(unsigned hours, unsigned minutes, unsigned seconds) : _time(hours, minutes, seconds) {}
    /// The local time of a moment.
    /// @param secondsSinceEpoch seconds since 1 January 1970, 00:00 UTC; negative before it.
    /// @param nanoseconds are added to them; whole seconds are carried over.
    nxDateTime(long long secondsSinceEpoch, unsigned nanoseconds);

    static constexpr nxDateTime GetNullInstance() { return nxDateTime(); }  ///< A null date-time.

    constexpr void SetNull() { *this = nxDateTime(); }        ///< Becomes null.
    constexpr bool IsNull() const { return _time.IsNull(); }  ///< There is neither date nor time.
    constexpr bool IsValid() const { return !IsNull(); }      ///< There is at least a time of day.
    /// @return whether there is a time of day and no date.
    constexpr bool IsTimeOfDayOnly() const { return _date.IsNull() && _time.IsValid(); }

    constexpr nxDate GetDate() const { return _date; }  ///< Null when there is none.
    constexpr nxTime GetTime() const { return _time; }  ///< Null when there is none.

    /// @return the date-time @p span later (earlier when it is negative). It counts as clocks do that are never set: the
    ///         change to or from summer time is no part of it. Null when @p span is null, when there is no date, and for a
    ///         result outside the years 1 to 9999.
    nxDateTime GetWithSpanAdded(nxDateTimeSpan span) const;

    /// Reads the form of ISO 8601 with hyphens and colons, "2024-03-05T09:07:03", and after it possibly a '.' and one to
    /// nine digits. "09:07:03" is a time of day alone. A zone such as "Z" is refused, because a date-time has none.
    /// @return NX_ERR_INVALID_PARAMETER for any other text and for an impossible day or time; the date-time is then
    ///         unchanged.
    [[nodiscard]] nxErrorEnum SetFromISOString(const std::string& text);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromISOString(const char* text);
    /// @return "2024-03-05T09:07:03", followed by "." and three, six or nine digits where the time has a fraction; the time
    ///         of day alone where there is no date; an empty text for null. SetFromISOString() reads it back without loss.
    std::string GetAsISOString() const;
    /// Appends what GetAsISOString() returns.
    void AppendAsISOString(std::string& out) const;

    /// @return "05 Mar 2024 09:07:03" (the pattern "%d %b %Y %H:%M:%S"), "09:07:03" for a time of day alone, an empty
    ///         text for null. The fraction of the second is not shown.
    std::string GetAsString() const;
    /// Appends what GetAsString() returns.
    void AppendAsString(std::string& out) const;
    /// Formats with a pattern: %d day and %m month with two digits, %b month as "Jan" to "Dec", %y year with two
    /// digits, %Y with four, %H, %M and %S hours, minutes and seconds with two digits, %% a percent sign. Everything
    /// else is copied. Months are English in every locale. A field that is null gives nothing.
    std::string GetAsString(std::string_view pattern) const;
    /// Appends what GetAsString(pattern) returns. @p pattern may be a part of @p out.
    void AppendAsString(std::string& out, std::string_view pattern) const;
    /// @return what GetAsString() returns, or "NULL".
    std::string GetAsLogString() const;
    /// Appends what GetAsLogString() returns.
    void AppendAsLogString(std::string& out) const;

    /// Equal date, null or not, and equal time.
    friend constexpr bool operator==(const nxDateTime&, const nxDateTime&) = default;
    /// By date, then by time; null comes first, times of day without a date next.
    friend constexpr auto operator<=>(const nxDateTime&, const nxDateTime&) = default;
    /// @return the span from @p right to @p left, negative when @p right is later; null unless both have a date.
    friend nxDateTimeSpan operator-(const nxDateTime& left, const nxDateTime& right)
    {
        if (left._date.IsNull() || right._date.IsNull())
            return nxDateTimeSpan();
        return nxDateTimeSpan(left._date - right._date,
                              left._time.GetNanosecondsSinceMidnight() - right._time.GetNanosecondsSinceMidnight());
    }

private:
    void _AppendField(std::string& out, char directive) const;

    nxDate _date;
    nxTime _time;
};

/// Writes the log form.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, const nxDateTime& dateTime);

/// Date-times can be keys of unordered containers.
template <>
struct std::hash<nxDateTime>
{
    /// Agrees with `==`.
    std::size_t operator()(const nxDateTime& dateTime) const noexcept
    {
        // An odd factor spreads the date over all bits and keeps different dates different.
        return static_cast<std::size_t>(dateTime.GetDate().GetISODate()) * 0x9E3779B97F4A7C15u ^
               std::hash<nxTime>()(dateTime.GetTime());
    }
};

#endif
