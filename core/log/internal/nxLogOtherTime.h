// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGOTHERTIME_H
#define CORE_LOG_INTERNAL_NXLOGOTHERTIME_H

#include <cstddef>
#include <cstring>
#include <string_view>

#include "core/log/internal/nxLogTimeText.h"
#include "core/log/nxLogLineSink.h"
#include "core/platform/inline/nxClock.h"
#include "core/time/internal/nxFractionText.h"

/// The times of records in another form than nxLogTimeText has, one after the other. While the second stays the same, only its
/// fraction is made.
///
/// Invariant: local times are those of nxLogTimeText, which alone
/// knows the zone.
///
/// Errors: the text is empty outside the years 1 to 9999. Threads: none.
class nxLogOtherTime
{
public:
    static constexpr std::size_t Longest = 32;  ///< "2024-03-05T10:07:03.123456+01:00"

    /// The form of all times until the next call.
    void SetForm(nxLogLineStyle::Time form) noexcept
    {
        _form = form;
        _size = 0;
    }

    /// Writes the text. @param out has room for Longest bytes. @param local shows the same time. @return the size; 0 for none.
    [[gnu::always_inline]] std::size_t Put(char* out, const nxClockTime& time, const nxLogTimeText& local) noexcept
    {
        if (_size == 0 || time.seconds != _second) [[unlikely]]
            _SetSecond(time.seconds, local);
        // The fraction is written here only, because a processor waits before it loads whole what was just stored in parts.
        std::memcpy(out, _text, Longest);
        if (local.IsEmpty() || time.nanoseconds >= nxNanoseconds::PerSecond) [[unlikely]]
        {
            char fraction[nxFractionText::Size];
            nxFractionText::Write(fraction, time.nanoseconds % nxNanoseconds::PerSecond);
            _PutFraction(out, fraction);
        }
        else
            _PutFraction(out, local.GetBytes() + nxLogTimeText::Size - nxFractionText::Size);
        return _size;
    }
    /// The same. @return the text, until the next call.
    std::string_view Get(const nxClockTime& time, const nxLogTimeText& local) noexcept
    {
        return {_shown, Put(_shown, time, local)};
    }

private:
    static constexpr std::size_t _shortFractionAt = sizeof "05Mar24 09:07:03" - 1;
    static constexpr std::size_t _fractionAt = sizeof "2024-03-05T09:07:03" - 1;
    static constexpr std::size_t _fractionSize = sizeof ".123456" - 1;

    // Puts ".123.456" where the form has its fraction, without the second point for ISO 8601.
    void _PutFraction(char* out, const char* fraction) const
    {
        if (_form == nxLogLineStyle::Time::UTC)
        {
            std::memcpy(out + _shortFractionAt, fraction, nxFractionText::Size);
            return;
        }
        std::memcpy(out + _fractionAt, fraction, 4);
        std::memcpy(out + _fractionAt + 4, fraction + 5, 3);
    }
    void _SetSecond(long long second, const nxLogTimeText& local) noexcept;
    std::size_t _WriteSecond(long long second, long long offset) noexcept;

    nxLogLineStyle::Time _form = nxLogLineStyle::Time::UTC;
    long long _second = 0;
    std::size_t _size = 0;
    char _text[Longest] = {};  // without the fraction
    char _shown[Longest] = {};
};

#endif
