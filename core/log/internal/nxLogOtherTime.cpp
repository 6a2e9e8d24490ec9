// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogOtherTime.h"

#include <cstring>

#include "core/time/nxCalendar.h"

namespace
{
constexpr long long secondsPerDay = 86'400;

// The day and the second in it, also before 1970.
struct DaySecond
{
    long long day;
    unsigned second;

    explicit DaySecond(long long at)
        : day(at / secondsPerDay - (at % secondsPerDay < 0 ? 1 : 0)),
          second(static_cast<unsigned>(at - day * secondsPerDay))
    {
    }
};

char* PutTwo(char* out, unsigned number)
{
    *out++ = static_cast<char>('0' + number / 10 % 10);
    *out++ = static_cast<char>('0' + number % 10);
    return out;
}

unsigned ReadTwo(const char* text)
{
    return 10 * static_cast<unsigned>(text[0] - '0') + static_cast<unsigned>(text[1] - '0');
}

char* PutTimeOfDay(char* out, unsigned second)
{
    out = PutTwo(out, second / 3'600);
    *out++ = ':';
    out = PutTwo(out, second / 60 % 60);
    *out++ = ':';
    return PutTwo(out, second % 60);
}

// How far the local time in "05Mar24 09:07:03" is ahead of UTC. Its day is that of UTC, or the one before or after it.
long long FindOffset(long long second, const char* local)
{
    const DaySecond utc(second);
    const unsigned localSecond = 3'600 * ReadTwo(local + 8) + 60 * ReadTwo(local + 11) + ReadTwo(local + 14);
    for (const int days : {0, 1, -1})
    {
        unsigned year, month, day;
        if (nxCalendar::GetDateOfDay(utc.day + days, year, month, day) && day == ReadTwo(local))
        {
            const long long offset = days * secondsPerDay + localSecond - utc.second;
            return offset - offset % 60;  // the form has no seconds of an offset
        }
    }
    return 0;
}
}  // namespace

// @return the size of the text, whose fraction is left out.
std::size_t nxLogOtherTime::_WriteSecond(long long second, long long offset) noexcept
{
    constexpr long long farthest = 1LL << 40;  // beyond all years
    unsigned year, month, day;
    if (second < -farthest || second > farthest)
        return 0;
    const DaySecond at(second + offset);
    if (!nxCalendar::GetDateOfDay(at.day, year, month, day))
        return 0;
    if (_form == nxLogLineStyle::Time::UTC)
    {
        char* out = PutTwo(_text, day);
        std::memcpy(out, nxCalendar::GetMonthName(month).data(), 3);
        out = PutTwo(out + 3, year);
        *out++ = ' ';
        PutTimeOfDay(out, at.second);
        return nxLogTimeText::Size;
    }
    char* out = PutTwo(PutTwo(_text, year / 100), year);
    *out++ = '-';
    out = PutTwo(out, month);
    *out++ = '-';
    out = PutTwo(out, day);
    *out++ = 'T';
    out = PutTimeOfDay(out, at.second) + _fractionSize;
    if (_form != nxLogLineStyle::Time::ISO)
    {
        *out++ = 'Z';
        return static_cast<std::size_t>(out - _text);
    }
    *out++ = offset < 0 ? '-' : '+';
    const auto minutes = static_cast<unsigned>((offset < 0 ? -offset : offset) / 60);
    out = PutTwo(out, minutes / 60);
    *out++ = ':';
    out = PutTwo(out, minutes % 60);
    return static_cast<std::size_t>(out - _text);
}

void nxLogOtherTime::_SetSecond(long long second, const nxLogTimeText& local) noexcept
{
    const bool isLocal = _form == nxLogLineStyle::Time::ISO && !local.IsEmpty();
    _size = _WriteSecond(second, isLocal ? FindOffset(second, local.GetBytes()) : 0);
    _second = second;
}
