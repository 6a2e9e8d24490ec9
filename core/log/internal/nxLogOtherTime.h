// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGOTHERTIME_H
#define CORE_LOG_INTERNAL_NXLOGOTHERTIME_H

#include <cstddef>
#include <string_view>

#include "core/log/internal/nxLogTimeText.h"
#include "core/log/nxLogLineSink.h"
#include "core/platform/inline/nxClock.h"
#include "core/time/internal/nxFractionText.h"

/// The times of records in another form than nxLogTimeText has, one after the other. While the second stays the same, only its
/// fraction is written.
///
/// Invariant: the text is that of the time that was set last, or empty. Local times are those of nxLogTimeText, which alone
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

    /// @param local shows the same time. @return the text, of which Longest bytes may be read.
    std::string_view Get(const nxClockTime& time, const nxLogTimeText& local) noexcept
    {
        if (_size == 0 || time.seconds != _second) [[unlikely]]
            _SetSecond(time.seconds, local);
        const unsigned nanoseconds = time.nanoseconds % nxNanoseconds::PerSecond;
        if (_form == nxLogLineStyle::Time::UTC)
            nxFractionText::Write(_text + _shortFractionAt, nanoseconds);
        else
            _PutISOFraction(nanoseconds);
        return {_text, _size};
    }

private:
    static constexpr std::size_t _shortFractionAt = sizeof "05Mar24 09:07:03" - 1;
    static constexpr std::size_t _fractionAt = sizeof "2024-03-05T09:07:03" - 1;
    static constexpr std::size_t _fractionSize = sizeof ".123456" - 1;

    void _PutISOFraction(unsigned nanoseconds)
    {
        char text[nxFractionText::Size];
        nxFractionText::Write(text, nanoseconds);
        std::memcpy(_text + _fractionAt, text, 4);
        std::memcpy(_text + _fractionAt + 4, text + 5, 3);
    }
    void _SetSecond(long long second, const nxLogTimeText& local) noexcept;
    std::size_t _WriteSecond(long long second, long long offset) noexcept;

    nxLogLineStyle::Time _form = nxLogLineStyle::Time::UTC;
    long long _second = 0;
    std::size_t _size = 0;
    char _text[Longest + nxFractionText::Size];
};

#endif
