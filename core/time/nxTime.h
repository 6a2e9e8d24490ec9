// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_NXTIME_H
#define CORE_TIME_NXTIME_H

#include <compare>
#include <cstddef>
#include <iosfwd>
#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/text/nxInitalizers.h"

/// A nullable time of day, from 00:00:00 to 23:59:59.999999999.
///
/// - Units: nanoseconds since midnight. It has no day and no time zone; there is no leap second.
/// - Null: a default-constructed time is null, which differs from midnight and comes before every time.
/// - Errors: an impossible time is never held. The constructors make null instead; the setters return
///   NX_ERR_INVALID_PARAMETER and leave the time as it was.
/// - Threads: like an int.
/// - Ownership: an 8-byte value that owns nothing; pass it by value.
/// @code
/// nxTime opening(8, 30, 0);
/// if (opening.SetFromString("09:00:00").IsOK())
///     std::cout << opening.GetAsString();  // 09:00:00
/// @endcode
class NX_CORE_API nxTime
{
public:
    static constexpr long long NanosecondsPerSecond = 1'000'000'000;               ///< The unit, in seconds.
    static constexpr long long NanosecondsPerDay = 86'400 * NanosecondsPerSecond;  ///< Every time is less.

    constexpr nxTime() = default;                   ///< Null.
    constexpr explicit nxTime(nxNullInitalizer) {}  ///< Null.
    /// Hours 0 to 23, minutes and seconds 0 to 59, nanoseconds 0 to 999,999,999; null when one of them is larger.
    constexpr nxTime(unsigned hours, unsigned minutes, unsigned seconds, unsigned nanoseconds = 0)
    {
        if (hours < 24 && minutes < 60 && seconds < 60 && nanoseconds < NanosecondsPerSecond)
            _nanoseconds = (hours * 3600 + minutes * 60 + seconds) * NanosecondsPerSecond + nanoseconds;
    }

    static constexpr nxTime GetNullInstance() { return nxTime(); }  ///< A null time.

    /// @return the time @p nanoseconds after midnight, or null unless that is 0 to NanosecondsPerDay - 1.
    static constexpr nxTime GetFromNanosecondsSinceMidnight(long long nanoseconds)
    {
        nxTime time;
        if (nanoseconds >= 0 && nanoseconds < NanosecondsPerDay)
            time._nanoseconds = nanoseconds;
        return time;
    }

    constexpr void SetNull() { _nanoseconds = _null; }               ///< Becomes null.
    constexpr bool IsNull() const { return _nanoseconds == _null; }  ///< There is no time.
    constexpr bool IsValid() const { return !IsNull(); }             ///< There is a time.

    constexpr unsigned GetHours() const { return GetSecondsSinceMidnight() / 3600; }       ///< 0 to 23; 0 for null.
    constexpr unsigned GetMinutes() const { return GetSecondsSinceMidnight() / 60 % 60; }  ///< 0 to 59; 0 for null.
    constexpr unsigned GetSeconds() const { return GetSecondsSinceMidnight() % 60; }       ///< 0 to 59; 0 for null.
    /// @return the fraction of the second, 0 to 999,999,999; 0 for null.
    constexpr unsigned GetNanoseconds() const
    {
        return IsNull() ? 0 : static_cast<unsigned>(_nanoseconds % NanosecondsPerSecond);
    }
    /// @return whole seconds since midnight, 0 to 86,399; 0 for null.
    constexpr unsigned GetSecondsSinceMidnight() const
    {
        return IsNull() ? 0 : static_cast<unsigned>(_nanoseconds / NanosecondsPerSecond);
    }
    /// @return nanoseconds since midnight; 0 for null.
    constexpr long long GetNanosecondsSinceMidnight() const { return IsNull() ? 0 : _nanoseconds; }

    /// Reads "HH:MM:SS", "HH:MM:SS.f" with one to nine digits of fraction, or "HHMMSS": two digits each, no sign, no
    /// blanks.
    /// @return NX_ERR_INVALID_PARAMETER for any other text and for an impossible time; the time is then unchanged.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromString(const char* text);

    /// @return "HH:MM:SS", followed by "." and three, six or nine digits where the time has a fraction; an empty text
    ///         for null. SetFromString() reads it back without loss.
    std::string GetAsString() const;
    /// Appends what GetAsString() returns.
    void AppendAsString(std::string& out) const;
    /// @return what GetAsString() returns, or "NULL".
    std::string GetAsLogString() const;
    /// Appends what GetAsLogString() returns.
    void AppendAsLogString(std::string& out) const;

    friend constexpr bool operator==(nxTime, nxTime) = default;   ///< Null equals null.
    friend constexpr auto operator<=>(nxTime, nxTime) = default;  ///< Earlier times are less; null comes first.

private:
    static constexpr long long _null = -1;
    long long _nanoseconds = _null;  // since midnight
};

/// Writes the log form.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, nxTime time);

/// Times can be keys of unordered containers.
template <>
struct std::hash<nxTime>
{
    /// Agrees with `==`.
    std::size_t operator()(nxTime time) const noexcept
    {
        return std::hash<long long>()(time.IsNull() ? -1 : time.GetNanosecondsSinceMidnight());
    }
};

#endif
