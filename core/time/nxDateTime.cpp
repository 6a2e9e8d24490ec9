// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxDateTime.h"

#include <cstddef>
#include <functional>
#include <ostream>

#include "core/platform/nxLocalZone.h"
#include "core/text/inline/nxDigits.h"
#include "core/text/nxStringHelper.h"
#include "core/time/internal/nxTimeText.h"

namespace
{
template <unsigned Digits>
void AppendFixed(std::string& out, unsigned value)
{
    char text[Digits];
    nxDigits::WriteFixed<Digits>(text, value);
    out.append(text, Digits);
}

// The ends of the integer are far outside calendar years, so a carry that would overflow is refused.
bool CarryIntoSeconds(long long& seconds, unsigned& nanoseconds)
{
    constexpr unsigned nanosecondsPerSecond = 1'000'000'000;
    if (__builtin_add_overflow(seconds, nanoseconds / nanosecondsPerSecond, &seconds))
        return false;
    nanoseconds %= nanosecondsPerSecond;
    return true;
}
}  // namespace

nxDateTime::nxDateTime(long long secondsSinceEpoch, unsigned nanoseconds)
{
    if (!CarryIntoSeconds(secondsSinceEpoch, nanoseconds))
        return;
    nxLocalMinute local;
    if (!nxLocalZone::FindAndCheck(secondsSinceEpoch, local) || local.year < nxCalendar::MinYear ||
        local.year > nxCalendar::MaxYear)
        return;
    const nxDate date(static_cast<unsigned>(local.year), local.month, local.day);
    // Time zones that count leap seconds have a second 60, which is shown as 59.
    const unsigned second = local.firstSecond + static_cast<unsigned>(secondsSinceEpoch - local.begin);
    *this = nxDateTime(date, nxTime(local.hour, local.minute, second < 60 ? second : 59, nanoseconds));
}

nxDateTime nxDateTime::GetWithSpanAdded(nxDateTimeSpan span) const
{
    if (_date.IsNull())
        return nxDateTime();
    // The span since 1970. It is beyond the range of spans only where the result is beyond that of dates.
    const nxDateTimeSpan sum = nxDateTimeSpan(_date.GetDayNumber(), _time.GetNanosecondsSinceMidnight()) + span;
    const nxDate date = nxDate::GetFromDayNumber(sum._days);
    return date.IsNull() ? nxDateTime() : nxDateTime(date, nxTime::GetFromNanosecondsSinceMidnight(sum._nanoseconds));
}

nxErrorEnum nxDateTime::SetFromISOString(const std::string& text)
{
    const std::string_view view(text);
    constexpr std::size_t dateSize = nxTimeText::DateSize;
    const bool hasDate = view.size() > dateSize && view[dateSize] == 'T';
    const nxDate date(hasDate ? nxTimeText::ReadDate(view.substr(0, dateSize)) : 0);
    const nxTimeText::Time fields = nxTimeText::ReadTime(hasDate ? view.substr(dateSize + 1) : view);
    const nxTime time(fields.hours, fields.minutes, fields.seconds, fields.nanoseconds);
    if (time.IsNull() || (hasDate && date.IsNull()))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    *this = nxDateTime(date, time);
    return nxErrorEnum();
}

nxErrorEnum nxDateTime::SetFromISOString(const char* text)
{
    return SetFromISOString(nxStringHelper::GetAsString(text));
}

void nxDateTime::AppendAsISOString(std::string& out) const
{
    if (IsNull())
        return;
    char text[nxTimeText::DateSize + 1 + nxTimeText::MaxTimeSize];
    char* end = text;
    if (_date.IsValid())
    {
        end = nxTimeText::WriteDate(end, _date.GetISODate());
        *end++ = 'T';
    }
    end =
        nxTimeText::WriteTime(end, {_time.GetHours(), _time.GetMinutes(), _time.GetSeconds(), _time.GetNanoseconds()});
    out.append(text, static_cast<std::size_t>(end - text));
}

std::string nxDateTime::GetAsISOString() const
{
    std::string text;
    AppendAsISOString(text);
    return text;
}

void nxDateTime::_AppendField(std::string& out, char directive) const
{
    switch (directive)
    {
        case 'd':
            return AppendFixed<2>(out, _date.GetDay());
        case 'm':
            return AppendFixed<2>(out, _date.GetMonth());
        case 'b':
            out.append(nxCalendar::GetMonthName(_date.GetMonth()));
            return;
        case 'y':
            return AppendFixed<2>(out, _date.GetYear() % 100);
        case 'Y':
            return AppendFixed<4>(out, _date.GetYear());
        case 'H':
            return AppendFixed<2>(out, _time.GetHours());
        case 'M':
            return AppendFixed<2>(out, _time.GetMinutes());
        default:
            return AppendFixed<2>(out, _time.GetSeconds());
    }
}

void nxDateTime::AppendAsString(std::string& out, std::string_view pattern) const
{
    // A pattern that is a part of the text would move when the text grows.
    const std::less<const char*> isBefore;
    if (!isBefore(pattern.data(), out.data()) && isBefore(pattern.data(), out.data() + out.size()))
        return AppendAsString(out, std::string(pattern));
    constexpr std::string_view dateFields = "dmbyY";
    constexpr std::string_view timeFields = "HMS";
    for (std::size_t i = 0; i < pattern.size(); ++i)
    {
        if (pattern[i] != '%' || i + 1 == pattern.size())
        {
            out.push_back(pattern[i]);
            continue;
        }
        const char directive = pattern[++i];
        const bool ofDate = dateFields.find(directive) != std::string_view::npos;
        const bool ofTime = timeFields.find(directive) != std::string_view::npos;
        if ((ofDate && _date.IsValid()) || (ofTime && _time.IsValid()))
            _AppendField(out, directive);
        else if (!ofDate && !ofTime)
            out.append(pattern.substr(directive == '%' ? i : i - 1, directive == '%' ? 1 : 2));
    }
}

void nxDateTime::AppendAsString(std::string& out) const
{
    if (IsValid())
        AppendAsString(out, IsTimeOfDayOnly() ? "%H:%M:%S" : "%d %b %Y %H:%M:%S");
}

std::string nxDateTime::GetAsString(std::string_view pattern) const
{
    std::string text;
    AppendAsString(text, pattern);
    return text;
}

std::string nxDateTime::GetAsString() const
{
    std::string text;
    AppendAsString(text);
    return text;
}

void nxDateTime::AppendAsLogString(std::string& out) const
{
    if (IsNull())
        out.append("NULL");
    else
        AppendAsString(out);
}

std::string nxDateTime::GetAsLogString() const
{
    std::string text;
    AppendAsLogString(text);
    return text;
}

std::ostream& operator<<(std::ostream& stream, const nxDateTime& dateTime)
{
    return stream << dateTime.GetAsLogString();
}
