// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_NXTIMESTAMP_H
#define CORE_TIME_NXTIMESTAMP_H

#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <limits>
#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/platform/inline/nxClock.h"
#include "core/platform/inline/nxDoubleHelper.h"
#include "core/time/nxDateTimeSpan.h"

class nxDateTime;

/// A time point of std::chrono::system_clock, in whole units of any length that are a part or a multiple of a second.
/// Written without the standard's chrono header, which this header does not need.
template <class TimePoint>
concept nxSystemTimePoint = std::signed_integral<typename TimePoint::rep> && requires(const TimePoint& moment)
{
    TimePoint::clock::to_time_t(typename TimePoint::clock::time_point{});
    moment.time_since_epoch().count();
} &&(TimePoint::period::den == 1 || (TimePoint::period::num == 1 && 1'000'000'000 % TimePoint::period::den == 0));

/// The moment at which something happened, cheap to take and cheap to print.
///
/// - Units: whole seconds since 1 January 1970 00:00 UTC (negative before it) and nanoseconds within the second.
/// - Null: there is none; a default-constructed stamp is now.
/// - Errors: the text of a moment whose year fits no calendar is empty; only the allocation of strings can throw.
/// - Texts are in the local time of the process, with English month names in every locale. Each thread remembers the
///   minute that it printed last. When the process's zone is changed (the variable TZ, then tzset()), texts follow
///   immediately, with one exception: between two zones with the same values of the C library's `timezone` and
///   `daylight`, such as those of Chicago and Mexico City, a thread may print up to 256 more texts in the old one.
/// - Threads: like an int. Ownership: a value that owns nothing.
/// @code
/// const nxTimeStamp now;
/// char text[nxTimeStamp::TextSize];
/// now.GetAsStringFast(text, sizeof text);  // "05Mar24 09:07:03.123.000"
/// @endcode
class NX_CORE_API nxTimeStamp
{
public:
    static constexpr unsigned TextSize = 25;  ///< Bytes that GetAsStringFast() needs, the terminating NUL included.

    /// Now, in whole milliseconds. For more resolution see Now().
    nxTimeStamp()
    {
        const nxClockTime now = nxClock::Now();
        _seconds = now.seconds;
        _nanoseconds = now.nanoseconds / 1'000'000 * 1'000'000;
    }
    /// From parts, which are stored unchanged. A proper stamp has @p nanoseconds below 1,000,000,000. Of larger ones,
    /// GetAsString() and GetAsStringFast() drop the whole seconds while GetAsDateTime() carries them over, so two texts of
    /// such a stamp name different seconds.
    nxTimeStamp(const long long& seconds, const unsigned int& nanoseconds)
        : _seconds(seconds), _nanoseconds(nanoseconds)
    {
    }
    /// The same moment; the first or last one that a stamp can hold if it is outside that range.
    template <nxSystemTimePoint TimePoint>
    explicit nxTimeStamp(const TimePoint& moment)
    {
        constexpr long long unitsPerSecond = TimePoint::period::den;
        const auto units = static_cast<long long>(moment.time_since_epoch().count());
        const long long rest = units % unitsPerSecond;
        _nanoseconds =
            static_cast<unsigned>((rest < 0 ? rest + unitsPerSecond : rest) * (1'000'000'000 / unitsPerSecond));
        const long long whole = units / unitsPerSecond - (rest < 0 ? 1 : 0);
        if (__builtin_mul_overflow(whole, static_cast<long long>(TimePoint::period::num), &_seconds))
        {
            _seconds = units < 0 ? std::numeric_limits<long long>::min() : std::numeric_limits<long long>::max();
            _nanoseconds = units < 0 ? 0 : 999'999'999;
        }
    }
    nxTimeStamp(const nxTimeStamp&) = default;             ///< The same moment.
    nxTimeStamp& operator=(const nxTimeStamp&) = default;  ///< The same moment.
    virtual ~nxTimeStamp() = default;

    /// Now, in the full resolution of the clock.
    static nxTimeStamp Now()
    {
        const nxClockTime now = nxClock::Now();
        return nxTimeStamp(now.seconds, now.nanoseconds);
    }

    long long GetSeconds() const { return _seconds; }             ///< Whole seconds since 1970.
    unsigned int GetNanoseconds() const { return _nanoseconds; }  ///< The fraction of the second in nanoseconds.
    /// The fraction of the second in milliseconds, truncated.
    unsigned int GetMilliseconds() const { return _nanoseconds / 1'000'000; }
    /// The fraction of the second in microseconds, truncated.
    unsigned int GetMicroseconds() const { return _nanoseconds / 1'000; }
    /// Seconds and fraction in one number. Rounding loses about 0.2 microseconds for present-day moments.
    double GetTotalSecondsAsDouble() const
    {
        const double fraction = static_cast<double>(_nanoseconds) / nxDoubleHelper::Rounded(1e9);
        return nxDoubleHelper::Rounded(static_cast<double>(_seconds) + nxDoubleHelper::Rounded(fraction));
    }

    /// Becomes the moment @p span later (earlier when it is negative), with less than a second of nanoseconds.
    /// @return NX_ERR_OBJECT_IS_NULL for a null span; NX_ERR_VALUE_OUT_OF_RANGE for a moment that 64 bits of seconds cannot
    ///         hold. The stamp is then unchanged.
    [[nodiscard]] nxErrorEnum AddExact(nxDateTimeSpan span);

    /// The local time at this moment as a date-time, which keeps the nanoseconds; null outside the years 1 to 9999.
    /// Include core/time/nxDateTime.h to use it.
    nxDateTime GetAsDateTime() const;

    /// The moment as a time point of std::chrono::system_clock, e.g.
    /// GetAsTimePoint<std::chrono::system_clock::time_point>(): rounded down to a whole unit, or the first or last
    /// moment of a type that does not reach that far.
    template <nxSystemTimePoint TimePoint>
    TimePoint GetAsTimePoint() const
    {
        using Duration = typename TimePoint::duration;
        using Count = typename TimePoint::rep;
        constexpr long long unitsPerSecond = TimePoint::period::den;
        constexpr long long secondsPerUnit = TimePoint::period::num;
        const long long wholeUnits = _seconds / secondsPerUnit - (_seconds % secondsPerUnit < 0 ? 1 : 0);
        const long long fraction = secondsPerUnit == 1 ? _nanoseconds / (1'000'000'000 / unitsPerSecond) : 0;
        __extension__ using Wide = __int128;
        const Wide units = Wide{wholeUnits} * unitsPerSecond + fraction;
        if (units < Wide{std::numeric_limits<Count>::min()})
            return (TimePoint::min)();
        if (units > Wide{std::numeric_limits<Count>::max()})
            return (TimePoint::max)();
        return TimePoint(Duration(static_cast<Count>(units)));
    }

    /// The local time as "05Mar24 09:07:03.123", or an empty text if GetAsStringFast() returns 0.
    std::string GetAsString() const;

    /// Writes the local time as exactly 24 characters, "05Mar24 09:07:03.123.456" (milliseconds, then microseconds),
    /// and a NUL. Years are printed modulo 100. Allocates nothing and uses no C formatting.
    /// @param buffer room for at least TextSize bytes. @param size is ignored.
    /// @return 25, or 0 with nothing written when the year does not fit the C library's calendar.
    unsigned int GetAsStringFast(char* buffer, unsigned int size) const;

    /// Orders by seconds, then nanoseconds.
    friend std::strong_ordering operator<=>(const nxTimeStamp& left, const nxTimeStamp& right) = default;
    /// Equal seconds and equal nanoseconds.
    friend bool operator==(const nxTimeStamp& left, const nxTimeStamp& right) = default;
    /// @return the span from @p right to @p left, negative when @p right is later; null beyond 3,652,059 days.
    friend nxDateTimeSpan operator-(const nxTimeStamp& left, const nxTimeStamp& right)
    {
        long long seconds = 0;
        if (__builtin_sub_overflow(left._seconds, right._seconds, &seconds))
            return nxDateTimeSpan();
        return nxDateTimeSpan::GetFromSeconds(seconds, static_cast<long long>(left._nanoseconds) - right._nanoseconds);
    }

private:
    long long _seconds;
    unsigned int _nanoseconds;
};

/// Writes the 24 characters of nxTimeStamp::GetAsStringFast(), or nothing if there are none.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, const nxTimeStamp& stamp);

/// Equal stamps have equal hashes.
template <>
struct std::hash<nxTimeStamp>
{
    /// Combines seconds and nanoseconds.
    std::size_t operator()(const nxTimeStamp& stamp) const noexcept
    {
        const auto seconds = static_cast<unsigned long long>(stamp.GetSeconds());
        return std::hash<unsigned long long>()(seconds * 1'000'000'000U + stamp.GetNanoseconds());
    }
};

#endif
