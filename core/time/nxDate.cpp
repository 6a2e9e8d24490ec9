// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxDate.h"

#include <algorithm>
#include <cstdint>
#include <ostream>

#include "core/text/inline/nxDigits.h"
#include "core/text/nxStringHelper.h"
#include "core/time/internal/nxTimeText.h"

nxDate nxDate::GetFromDayNumber(long long dayNumber)
{
    unsigned year = 0;
    unsigned month = 0;
    unsigned day = 0;
    return nxCalendar::GetDateOfDay(dayNumber, year, month, day) ? nxDate(year, month, day) : nxDate();
}

int nxDate::GetDayNumber() const { return IsNull() ? 0 : nxCalendar::GetDayNumber(GetYear(), GetMonth(), GetDay()); }

unsigned nxDate::GetDayOfWeek() const
{
    // The first day, 1 January of the year 1, was a Monday.
    constexpr int firstDay = nxCalendar::GetDayNumber(1, 1, 1);
    return IsNull() ? 0 : static_cast<unsigned>(GetDayNumber() - firstDay) % 7 + 1;
}

nxDate nxDate::GetWithDaysAdded(int days) const
{
    return IsNull() ? nxDate() : GetFromDayNumber(static_cast<long long>(GetDayNumber()) + days);
}

nxDate nxDate::GetWithMonthsAdded(int months) const
{
    if (IsNull())
        return nxDate();
    // Months since the begin of the year 0. A negative or large sum is beyond the years that a date can have.
    const long long sum = GetYear() * 12LL + GetMonth() - 1 + months;
    if (sum < 12LL * nxCalendar::MinYear || sum >= 12LL * (nxCalendar::MaxYear + 1))
        return nxDate();
    const unsigned year = static_cast<unsigned>(sum) / 12;
    const unsigned month = static_cast<unsigned>(sum) % 12 + 1;
    return nxDate(year, month, std::min(GetDay(), nxCalendar::GetDaysInMonth(year, month)));
}

unsigned nxDate::GetISOWeek(unsigned& year) const
{
    year = 0;
    if (IsNull())
        return 0;
    // A week belongs to the year of its Thursday. The first day of all is a Monday, and the last a Friday.
    const nxDate thursday = GetWithDaysAdded(4 - static_cast<int>(GetDayOfWeek()));
    year = thursday.GetYear();
    return static_cast<unsigned>(thursday - nxDate(year, 1, 1)) / 7 + 1;
}

nxDate nxDate::GetNthDayOfWeek(unsigned year, unsigned month, int n, unsigned dayOfWeek)
{
    const nxDate first(year, month, 1);
    if (first.IsNull() || n < -5 || n == 0 || n > 5 || dayOfWeek < 1 || dayOfWeek > 7)
        return nxDate();
    if (n > 0)
        return nxDate(year, month, 1 + (dayOfWeek + 7 - first.GetDayOfWeek()) % 7 + 7 * static_cast<unsigned>(n - 1));
    const nxDate last = first.GetEndOfMonth();
    const unsigned daysBefore = (last.GetDayOfWeek() + 7 - dayOfWeek) % 7 + 7 * static_cast<unsigned>(-n - 1);
    return daysBefore < last.GetDay() ? nxDate(year, month, last.GetDay() - daysBefore) : nxDate();
}

nxErrorEnum nxDate::SetFromISODate(unsigned isoDate)
{
    const nxDate date(isoDate);
    if (date.IsNull())
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    *this = date;
    return nxErrorEnum();
}

nxErrorEnum nxDate::SetFromString(const std::string& text)
{
    // A longer number may wrap to a valid day, and a shorter one is a day of the first millennium. Neither is intended.
    std::uint64_t isoDate = 0;
    if (text.size() != 8 || !nxDigits::Parse(text.data(), text.data() + text.size(), isoDate))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    return SetFromISODate(static_cast<unsigned>(isoDate));
}

nxErrorEnum nxDate::SetFromString(const char* text) { return SetFromString(nxStringHelper::GetAsString(text)); }

nxErrorEnum nxDate::SetFromISOString(const std::string& text)
{
    const nxDate date(nxTimeText::ReadDate(text));
    if (date.IsNull())
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    *this = date;
    return nxErrorEnum();
}

nxErrorEnum nxDate::SetFromISOString(const char* text) { return SetFromISOString(nxStringHelper::GetAsString(text)); }

void nxDate::AppendAsISOString(std::string& out) const
{
    if (IsNull())
        return;
    char text[nxTimeText::DateSize];
    nxTimeText::WriteDate(text, _isoDate);
    out.append(text, sizeof text);
}

std::string nxDate::GetAsISOString() const
{
    std::string text;
    AppendAsISOString(text);
    return text;
}

void nxDate::AppendAsString(std::string& out) const
{
    if (IsNull())
        return;
    char text[8];
    nxDigits::WriteFixed<8>(text, _isoDate);
    out.append(text, sizeof text);
}

std::string nxDate::GetAsString() const
{
    std::string text;
    AppendAsString(text);
    return text;
}

void nxDate::AppendAsLogString(std::string& out) const
{
    if (IsNull())
        out.append("NULL");
    else
        AppendAsString(out);
}

std::string nxDate::GetAsLogString() const
{
    std::string text;
    AppendAsLogString(text);
    return text;
}

std::ostream& operator<<(std::ostream& stream, nxDate date) { return stream << date.GetAsLogString(); }
