// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxDate.h"

#include <cstdint>
#include <ostream>

#include "core/text/inline/nxDigits.h"
#include "core/text/nxStringHelper.h"

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
