// SPDX-License-Identifier: Apache-2.0
// A calendar with a list of holidays from a CSV text answers what a walk from day to day finds, and a list that is refused
// changes nothing. Moments come back from the local time of a zone.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "core/text/nxCSVParser.h"
#include "core/time/nxTradingSession.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

// The bytes of an input that are numbers. There are zeros after its end.
struct Numbers
{
    std::uint8_t weekend;
    std::uint8_t separator;
    std::uint8_t zone;
    std::int8_t businessDays;
    std::uint16_t days;  // of the range
    std::uint16_t first;
    std::int64_t second;
};

nxErrorEnum ReadText(void* context, char* buffer, std::size_t size, std::size_t& count)
{
    auto& text = *static_cast<std::string_view*>(context);
    count = text.copy(buffer, size);
    text.remove_prefix(count);
    return nxErrorEnum();
}

bool IsBusinessDay(const nxBusinessCalendar& calendar, nxDate date)
{
    bool is = false;
    Require(calendar.IsBusinessDay(date, is).IsOK());
    return is;
}

void CheckWalk(const nxBusinessCalendar& calendar, nxDate from, int days)
{
    nxDate found;
    const nxErrorEnum error = calendar.AddBusinessDays(from, days, found);
    const int step = days < 0 ? -1 : 1;
    nxDate date = from;
    for (int left = days; left != 0;)
    {
        date = date.GetWithDaysAdded(step);
        if (date < calendar.GetFirstDay() || date > calendar.GetLastDay())
            return Require(error == nxErrorEnum(NX_ERR_INSUFFICIENT_DATA) && found.IsNull());
        left -= IsBusinessDay(calendar, date) ? step : 0;
    }
    int count = 0;
    Require(error.IsOK() && found == date && calendar.GetBusinessDaysBetween(from, date, count).IsOK());
    Require(days == 0 || count - days == (IsBusinessDay(calendar, from) ? 0 : -step));
}

void CheckCalendar(const Numbers& numbers, std::string_view text)
{
    const nxDate first = nxDate(1995, 1, 1).GetWithDaysAdded(numbers.first);
    const nxDate last = first.GetWithDaysAdded(numbers.days % 1'500);
    nxBusinessCalendar calendar;
    Require(calendar.SetRange(first, last).IsOK() && calendar.AddHoliday(first).IsOK());
    if (!calendar.SetWeekend(numbers.weekend).IsOK())
        Require(numbers.weekend >= 127);
    nxCSVDialect dialect;
    dialect.separator = numbers.separator % 2 == 0 ? ',' : ';';
    dialect.hasHeader = numbers.separator % 4 < 2;
    nxCSVParser rows(ReadText, &text, dialect);
    unsigned long long failedLine = 1;
    const bool isRead = calendar.SetFromCSV(rows, failedLine).IsOK();
    Require(isRead == (failedLine == 0) && (isRead || !IsBusinessDay(calendar, first)));
    for (const int days : {0, 1, -1, int{numbers.businessDays}, 2 * numbers.businessDays})
        for (const nxDate from : {first, last, first.GetWithDaysAdded((last - first) / 2)})
            CheckWalk(calendar, from, days);
}

// The trade date is the first business day that closes after the moment, also where clocks skip or repeat the close.
void CheckSession(const nxZone& zone, const nxDateTime& local, const nxTimeStamp& moment)
{
    const nxDate first = local.GetDate().GetWithDaysAdded(-4);
    nxBusinessCalendar calendar;
    nxTradingSession session;
    nxTimeStamp close(0, 0);
    if (!calendar.SetWeekend(0).IsOK() || !calendar.SetRange(first, first.GetWithDaysAdded(12)).IsOK() ||
        !session.Set(&zone, calendar, local.GetTime(), local.GetTime(), nxTradingSession::OpenDay::Before).IsOK() ||
        !session.GetOpen(first, close).IsOK() || !session.GetClose(calendar.GetLastDay(), close).IsOK())
        return;
    for (const long long seconds : {-93'600, -3'600, -1, 0, 1, 1'800, 3'600, 90'000})
    {
        const nxTimeStamp each(moment.GetSeconds() + seconds, moment.GetNanoseconds());
        nxDate expected = first;
        while (!session.GetClose(expected, close).IsOK() || close <= each)
            expected = expected.GetWithDaysAdded(1);
        nxDate found;
        Require(session.GetTradeDate(each, found).IsOK() && found == expected);
    }
}

void CheckZone(const Numbers& numbers)
{
    constexpr const char* names[] = {"America/Havana", "America/Scoresbysund", "Pacific/Apia", "Europe/Dublin"};
    const nxZone* zone = nullptr;
    if (!nxZone::Get(names[numbers.zone % 4], zone).IsOK())
        return;
    const nxTimeStamp moment(numbers.second % 4'102'000'000, 7);
    const nxDateTime local = zone->GetLocal(moment);
    if (local.IsNull())
        return;
    nxTimeStamp earlier(0, 0), later(0, 0);
    Require(zone->GetMoment(local, earlier).IsOK() && zone->GetMoment(local, later, true).IsOK());
    Require((earlier == moment || later == moment) && earlier <= later);
    CheckSession(*zone, local, moment);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Numbers numbers{};
    const std::size_t taken = size < sizeof numbers ? size : sizeof numbers;
    if (taken != 0)
        std::memcpy(&numbers, data, taken);
    CheckCalendar(numbers, std::string_view(reinterpret_cast<const char*>(data) + taken, size - taken));
    CheckZone(numbers);
    return 0;
}
