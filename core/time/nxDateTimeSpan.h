// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_NXDATETIMESPAN_H
#define CORE_TIME_NXDATETIMESPAN_H

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/text/nxInitalizers.h"

/// A nullable length of time with a sign: the age of a price, the time until an expiry.
///
/// - Units: whole days and nanoseconds of a day. A day has 86,400 seconds. Years and months are no part of a span, because
///   their length depends on the day from which they are counted; see nxDate::GetWithMonthsAdded().
/// - Range: MaxDays in both directions. That is more than the difference of any two date-times. Sums and differences are
///   exact to the nanosecond.
/// - Null: a default-constructed span is null, which differs from zero and comes before every span. A result beyond the
///   range, or of a null operand, is null.
/// - Errors: returned, never thrown; on failure a span keeps its value.
/// - Threads: like an int.
/// - Ownership: a 16-byte value that owns nothing; pass it by value.
/// @code
/// const nxDateTime opening(nxDate(2024, 3, 5), nxTime(8, 30, 0)), closing(nxDate(2024, 3, 6), nxTime(15, 0, 0));
/// const nxDateTimeSpan open = closing - opening;
/// open.GetAsString();                               // "P1DT6H30M"
/// open > nxDateTimeSpan::GetFromSeconds(24 * 3600)  // true
/// @endcode
class NX_CORE_API nxDateTimeSpan
{
public:
    static constexpr int MaxDays = 3'652'059;                             ///< The days of the years 1 to 9999.
    static constexpr long long NanosecondsPerSecond = 1'000'000'000;      ///< The smallest unit, in seconds.
    static constexpr long long NanosecondsPerDay = 86'400'000'000'000LL;  ///< The same, in days.

    constexpr nxDateTimeSpan() = default;                   ///< Null.
    constexpr explicit nxDateTimeSpan(nxNullInitalizer) {}  ///< Null.
    /// The sum of both, each with any sign and of any size; null beyond the range.
    constexpr nxDateTimeSpan(int days, long long nanoseconds)
    {
        const long long wholeDays = _DivideDown(nanoseconds, NanosecondsPerDay);
        *this = _GetChecked(days + wholeDays, nanoseconds - wholeDays * NanosecondsPerDay);
    }

    static constexpr nxDateTimeSpan GetNullInstance() { return nxDateTimeSpan(); }  ///< A null span.
    /// The sum of both, each with any sign and of any size; null beyond the range.
    static constexpr nxDateTimeSpan GetFromSeconds(long long seconds, long long nanoseconds = 0)
    {
        const long long days = _DivideDown(seconds, _secondsPerDay);
        const long long moreDays = _DivideDown(nanoseconds, NanosecondsPerDay);
        return _GetCarried(days + moreDays, (seconds - days * _secondsPerDay) * NanosecondsPerSecond +
                                                (nanoseconds - moreDays * NanosecondsPerDay));
    }

    constexpr void SetNull() { *this = nxDateTimeSpan(); }        ///< Becomes null.
    constexpr bool IsNull() const { return _days == _nullDays; }  ///< There is no span.
    constexpr bool IsValid() const { return !IsNull(); }          ///< There is a span.

    /// @name Parts
    /// Each has the sign of the span, so that their sum is the span: the parts of "-PT36H" are -1 day and -12 hours. Each
    /// is 0 for null.
    /// @{

    /// Whole days, -MaxDays to MaxDays.
    constexpr int GetDays() const { return IsNull() ? 0 : static_cast<int>(_days + (_IsRoundedDown() ? 1 : 0)); }
    /// -23 to 23.
    constexpr int GetHours() const { return static_cast<int>(_GetRest() / (3'600 * NanosecondsPerSecond)); }
    /// -59 to 59.
    constexpr int GetMinutes() const { return static_cast<int>(_GetRest() / (60 * NanosecondsPerSecond) % 60); }
    /// -59 to 59.
    constexpr int GetSeconds() const { return static_cast<int>(_GetRest() / NanosecondsPerSecond % 60); }
    /// The fraction of the second, -999,999,999 to 999,999,999.
    constexpr int GetNanoseconds() const { return static_cast<int>(_GetRest() % NanosecondsPerSecond); }
    /// @}

    /// @return the whole span in whole seconds, truncated toward zero; 0 for null. The rest is GetNanoseconds():
    ///         GetFromSeconds() makes the span of both again.
    constexpr long long GetTotalSeconds() const
    {
        return GetDays() * _secondsPerDay + _GetRest() / NanosecondsPerSecond;
    }
    /// Gives the whole span in nanoseconds.
    /// @return NX_ERR_VALUE_OUT_OF_RANGE when that needs more than 64 bits, from 292 years on; NX_ERR_OBJECT_IS_NULL for
    ///         null. @p total is then unchanged.
    [[nodiscard]] nxErrorEnum GetTotalNanoseconds(long long& total) const;
    /// @return the whole span in seconds; 0 for null. Up to 104 days it is the nearest double; beyond that two
    ///         roundings may give a neighbour of it.
    double GetTotalSecondsAsDouble() const;

    /// Reads the form of ISO 8601 that XML Schema calls dayTimeDuration: an optional '-', "P", days with "D", and after a
    /// "T" hours with "H", minutes with "M" and seconds with "S", in capitals. Each part is a number of any length and may
    /// be left out, but not all of them, nor all after "T". Seconds may have a '.' and one to nine digits after it. A part
    /// may be larger than the next unit: "PT36H" is "P1DT12H".
    /// @return NX_ERR_INVALID_PARAMETER for any other text, such as one with years, months or weeks;
    ///         NX_ERR_VALUE_OUT_OF_RANGE for a span beyond the range. The span is then unchanged.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromString(const char* text);

    /// @return the shortest text that SetFromString() reads back, with hours below 24 and minutes and seconds below 60:
    ///         "P3DT4H5M6.007S", "-PT1H30M", "PT0S"; an empty text for null.
    std::string GetAsString() const;
    /// Appends what GetAsString() returns.
    void AppendAsString(std::string& out) const;
    /// @return what GetAsString() returns, or "NULL".
    std::string GetAsLogString() const;
    /// Appends what GetAsLogString() returns.
    void AppendAsLogString(std::string& out) const;

    /// Null equals null.
    friend constexpr bool operator==(nxDateTimeSpan, nxDateTimeSpan) = default;
    /// Negative spans are less than zero, zero less than positive ones; null comes first.
    friend constexpr auto operator<=>(nxDateTimeSpan, nxDateTimeSpan) = default;

    /// @return the sum; null when an operand is null or the sum is beyond the range.
    friend constexpr nxDateTimeSpan operator+(nxDateTimeSpan left, nxDateTimeSpan right)
    {
        return _GetCarried(left._days + right._days, left._nanoseconds + right._nanoseconds);
    }
    /// @return the difference; null when an operand is null or the difference is beyond the range.
    friend constexpr nxDateTimeSpan operator-(nxDateTimeSpan left, nxDateTimeSpan right)
    {
        return right.IsNull() ? nxDateTimeSpan() : _GetDifference(left, right);
    }
    /// @return the span of the opposite sign; null for null.
    friend constexpr nxDateTimeSpan operator-(nxDateTimeSpan span)
    {
        return span.IsNull() ? nxDateTimeSpan() : _GetDifference(nxDateTimeSpan(0, 0), span);
    }

private:
    static constexpr long long _secondsPerDay = NanosecondsPerDay / NanosecondsPerSecond;
    friend struct std::hash<nxDateTimeSpan>;
    friend class nxDateTime;

    // So far below the range that its sum with any span is below it too.
    static constexpr long long _nullDays = -(1LL << 31);

    // Rounds toward minus infinity.
    static constexpr long long _DivideDown(long long value, long long divisor)
    {
        return value / divisor - (value % divisor < 0 ? 1 : 0);
    }

    // Null beyond the range. @param nanoseconds of a day.
    static constexpr nxDateTimeSpan _GetChecked(long long days, long long nanoseconds)
    {
        nxDateTimeSpan span;
        if ((days >= -MaxDays && days < MaxDays) || (days == MaxDays && nanoseconds == 0)) [[likely]]
        {
            span._days = days;
            span._nanoseconds = nanoseconds;
        }
        return span;
    }
    // Borrows a day where it is needed. Without a branch, because it is unpredictable.
    // @param nanoseconds from minus one day to less than a day.
    static constexpr nxDateTimeSpan _GetBorrowed(long long days, long long nanoseconds)
    {
        const long long borrowed = nanoseconds >> 63;  // -1 or 0
        return _GetChecked(days + borrowed, nanoseconds + (NanosecondsPerDay & borrowed));
    }
    // @param nanoseconds less than two days.
    static constexpr nxDateTimeSpan _GetCarried(long long days, long long nanoseconds)
    {
        return _GetBorrowed(days + 1, nanoseconds - NanosecondsPerDay);
    }
    static constexpr nxDateTimeSpan _GetDifference(nxDateTimeSpan left, nxDateTimeSpan right)
    {
        return _GetBorrowed(left._days - right._days, left._nanoseconds - right._nanoseconds);
    }

    // Whether the days are one less than the whole days of the span.
    constexpr bool _IsRoundedDown() const { return _days < 0 && _nanoseconds != 0; }
    // What the span has beyond its whole days, with its sign.
    constexpr long long _GetRest() const { return _IsRoundedDown() ? _nanoseconds - NanosecondsPerDay : _nanoseconds; }

    // Days are rounded down, and the nanoseconds of a day are added to them: spans compare like these two numbers.
    long long _days = _nullDays;
    long long _nanoseconds = 0;
};

/// Writes the log form.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, nxDateTimeSpan span);

/// Spans can be keys of unordered containers.
template <>
struct std::hash<nxDateTimeSpan>
{
    /// Agrees with `==`.
    std::size_t operator()(nxDateTimeSpan span) const noexcept
    {
        // Modulo 2^64, the nanoseconds of spans up to 292 years are all different.
        const auto days = static_cast<unsigned long long>(span._days);
        const auto nanoseconds = static_cast<unsigned long long>(span._nanoseconds);
        return std::hash<unsigned long long>()(days * nxDateTimeSpan::NanosecondsPerDay + nanoseconds);
    }
};

#endif
