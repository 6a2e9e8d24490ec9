// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

#include "core/text/nxCSVParser.h"
#include "core/time/nxTradingSession.h"
#include "tests/support/nxTest.h"

namespace
{
using Adjustment = nxBusinessCalendar::Adjustment;
using OpenDay = nxTradingSession::OpenDay;
using Answer = std::optional<nxDate>;

const nxErrorEnum ok, null(NX_ERR_OBJECT_IS_NULL), wrong(NX_ERR_INVALID_PARAMETER), notSetUp(NX_ERR_NOT_INITIALISED),
    notFound(NX_ERR_NOT_FOUND), beyond(NX_ERR_INSUFFICIENT_DATA), outside(NX_ERR_VALUE_OUT_OF_RANGE);
constexpr unsigned weekend = nxBusinessCalendar::Saturday | nxBusinessCalendar::Sunday;
constexpr nxDate newYear(2024, 1, 1), endOfYear(2024, 12, 31);

const nxZone& Zone(const char* name)
{
    const nxZone* zone = nullptr;
    EXPECT_TRUE(nxZone::Get(name, zone).IsOK()) << name;
    return *zone;
}

nxTimeStamp Utc(const char* text)
{
    nxDateTime at;
    nxTimeStamp moment(0, 0);
    EXPECT_TRUE(at.SetFromISOString(text).IsOK()) << text;
    EXPECT_TRUE(moment.AddExact(at - nxDateTime(nxDate(1970, 1, 1), nxTime(0, 0, 0))).IsOK());
    return moment;
}

std::string UtcText(const nxTimeStamp& moment) { return Zone("UTC").GetLocal(moment).GetAsISOString(); }

nxBusinessCalendar Calendar(nxDate first, nxDate last, unsigned closed, std::initializer_list<nxDate> holidays = {})
{
    nxBusinessCalendar calendar;
    EXPECT_TRUE(calendar.SetRange(first, last).IsOK() && calendar.SetWeekend(closed).IsOK());
    for (const nxDate holiday : holidays)
        EXPECT_TRUE(calendar.AddHoliday(holiday).IsOK());
    return calendar;
}

// Steps from day to day. There is no answer where it meets a day outside the range.
struct DayByDay
{
    nxDate first, last;
    std::unordered_set<nxDate> business;

    bool Ends(nxDate day) const { return day < first || day > last || business.count(day) != 0; }
    Answer At(nxDate day) const { return business.count(day) != 0 ? Answer(day) : std::nullopt; }
    Answer Next(nxDate day, int step) const
    {
        while (!Ends(day))
            day = day.GetWithDaysAdded(step);
        return At(day);
    }
    Answer InMonth(nxDate date, int step) const
    {
        for (nxDate day = date; day.GetMonth() == date.GetMonth(); day = day.GetWithDaysAdded(step))
            if (Ends(day))
                return At(day);
        return Next(date, -step);
    }
    Answer Nearest(nxDate date) const
    {
        for (int distance = 0;; ++distance)
            for (const int step : {distance, -distance})
                if (Ends(date.GetWithDaysAdded(step)))
                    return At(date.GetWithDaysAdded(step));
    }
    Answer Add(nxDate date, int days) const
    {
        Answer day = date;
        for (const int step = days < 0 ? -1 : 1; days != 0 && day; days -= step)
            day = Next(day->GetWithDaysAdded(step), step);
        return day;
    }
    std::optional<int> Between(nxDate from, nxDate to) const
    {
        int count = 0;
        for (const int step = from <= to ? 1 : -1; from != to; from = from.GetWithDaysAdded(step))
        {
            if (from < first || from > last)
                return std::nullopt;
            count += business.count(from) != 0 ? step : 0;
        }
        return count;
    }
};
}  // namespace

TEST(nxBusinessCalendar, AnswersWhatSteppingFromDayToDayFinds)
{
    std::mt19937 random(20240305);
    for (const unsigned closed : {weekend, 0U, nxBusinessCalendar::Friday + 0, 126U, weekend})
    {
        DayByDay model{nxDate(1969, 11, 20).GetWithDaysAdded(static_cast<int>(random() % 60)), nxDate(), {}};
        model.last = model.first.GetWithDaysAdded(static_cast<int>(random() % 150));
        nxBusinessCalendar calendar = Calendar(model.first, model.last, closed);
        const auto holidays = random() % 60;  // of a hundred days; some calendars have a month of them
        for (nxDate day = model.first; day <= model.last; day = day.GetWithDaysAdded(1))
            if (random() % 100 < holidays || (holidays % 2 == 0 && day.GetMonth() == 1))
                EXPECT_TRUE(calendar.AddHoliday(day).IsOK());
            else if ((closed >> (day.GetDayOfWeek() - 1) & 1) == 0)
                model.business.insert(day);
        const nxDate end = model.last.GetWithDaysAdded(4);
        for (nxDate date = model.first.GetWithDaysAdded(-3); date != end; date = date.GetWithDaysAdded(1))
        {
            bool is = false;
            ASSERT_EQ(calendar.IsBusinessDay(date, is), date < model.first || date > model.last ? beyond : ok);
            ASSERT_EQ(is, model.At(date).has_value()) << date;
            const Answer adjusted[] = {date,
                                       model.Next(date, 1),
                                       model.InMonth(date, 1),
                                       model.Next(date, -1),
                                       model.InMonth(date, -1),
                                       model.Nearest(date)};
            nxDate result;
            const auto expect = [&](nxErrorEnum error, const Answer& expected, int detail)
            {
                ASSERT_EQ(error, expected ? ok : beyond) << date << ' ' << detail;
                ASSERT_EQ(result, expected.value_or(nxDate())) << date << ' ' << detail;
                result.SetNull();
            };
            for (int i = 0; i < 6; ++i)
                expect(calendar.Adjust(date, static_cast<Adjustment>(i), result), adjusted[i], i);
            for (const int days : {-90, -40, -17, -16, -2, -1, 0, 1, 2, 15, 16, 17, 18, 40, 90, INT_MAX, INT_MIN})
                expect(calendar.AddBusinessDays(date, days, result), model.Add(date, days), days);
            for (nxDate to = model.first.GetWithDaysAdded(-2); to < end; to = to.GetWithDaysAdded(3))
            {
                int count = 0;
                const std::optional<int> expected = model.Between(date, to);
                ASSERT_EQ(calendar.GetBusinessDaysBetween(date, to, count), expected ? ok : beyond) << date << to;
                ASSERT_EQ(count, expected.value_or(0)) << date << to;
            }
        }
    }
}

TEST(nxBusinessCalendar, RefusesWhatItCannotAnswer)
{
    const nxDate day(2024, 3, 29), monday(2024, 4, 1), before(1999, 9, 9);
    nxBusinessCalendar calendar;
    bool is = true;
    nxDate result = before;
    int count = 7;
    EXPECT_EQ(calendar.AddBusinessDays(day, 0, result), notSetUp);
    EXPECT_EQ(calendar.AddHoliday(nxDate()), null);
    EXPECT_EQ(calendar.SetRange(day, nxDate()), null);
    EXPECT_EQ(calendar.SetRange(day, nxDate(2024, 3, 28)), wrong);
    EXPECT_EQ(calendar.SetWeekend(127), wrong);
    EXPECT_EQ(calendar.SetWeekend(128), wrong);
    // A holiday counts when the range reaches it.
    EXPECT_TRUE(calendar.AddHoliday(day).IsOK() && calendar.SetRange(monday, monday).IsOK());
    EXPECT_EQ(calendar.IsBusinessDay(day, is), beyond);
    EXPECT_TRUE(calendar.SetRange(day, monday).IsOK() && calendar.IsBusinessDay(day, is).IsOK() && !is);
    EXPECT_EQ(calendar.IsBusinessDay(nxDate(), is), null);
    EXPECT_EQ(calendar.Adjust(nxDate(), Adjustment::None, result), null);
    EXPECT_EQ(calendar.Adjust(day, static_cast<Adjustment>(6), result), wrong);
    EXPECT_EQ(calendar.GetBusinessDaysBetween(nxDate(), day, count), null);
    EXPECT_EQ(calendar.GetBusinessDaysBetween(day, nxDate(), count), null);
    EXPECT_EQ(std::pair(result, count), std::pair(before, 7));
    const nxBusinessCalendar moved(std::move(calendar));
    EXPECT_EQ(std::pair(moved.GetFirstDay(), moved.GetLastDay()), std::pair(day, monday));
    EXPECT_EQ(calendar.IsBusinessDay(monday, is), notSetUp);  // NOLINT: a calendar that was moved from has no range
}

TEST(nxBusinessCalendar, ReadsHolidaysOfAList)
{
    const std::tuple<const char*, bool, nxErrorEnum, unsigned> rows[] = {
        // Text, whether it has a header, error, and the line that is at fault.
        {"date,name\n\n2024-12-25,\"Christmas, day one\"\r\n20240329\n2024-12-25", true, ok, 0},
        {"20240329\n20241225\n", false, ok, 0},
        {"20240329\n20241225\n", true, wrong, 1},
        {"20240329\n\n29.03.2024\n", false, wrong, 3},
        {"20240329\n,20241225", false, wrong, 2},
        {"20240329\n\"20241225", false, nxErrorEnum(NX_ERR_CSV_FILE_READ_ERROR), 2},
    };
    for (const auto& [text, hasHeader, error, line] : rows)
    {
        std::string_view rest = text;
        const auto read = [](void* context, char* buffer, std::size_t size, std::size_t& count)
        {
            auto& left = *static_cast<std::string_view*>(context);
            count = left.copy(buffer, size);
            left.remove_prefix(count);
            return nxErrorEnum();
        };
        nxCSVDialect dialect;
        dialect.hasHeader = hasHeader;
        nxCSVParser parser(read, &rest, dialect);
        nxBusinessCalendar calendar = Calendar(newYear, endOfYear, weekend, {newYear});
        unsigned long long failedLine = 99;
        int days = 0;
        EXPECT_EQ(calendar.SetFromCSV(parser, failedLine), error) << text;
        EXPECT_TRUE(calendar.GetBusinessDaysBetween(newYear, endOfYear, days).IsOK());
        EXPECT_EQ(std::tuple(failedLine, days), std::tuple(line, error.IsOK() ? 259 : 260)) << text;
    }
}

TEST(nxBusinessCalendar, JoinsDaysThatAreBusinessDaysInBoth)
{
    const nxBusinessCalendar here = Calendar(newYear, endOfYear, weekend, {nxDate(2024, 5, 6)});
    const nxBusinessCalendar there =
        Calendar(nxDate(2024, 5, 1), nxDate(2025, 5, 1), nxBusinessCalendar::Friday, {nxDate(2024, 5, 7)});
    const nxBusinessCalendar joint = nxBusinessCalendar::GetJoint(here, there);
    EXPECT_EQ(std::pair(joint.GetFirstDay(), joint.GetLastDay()), std::pair(nxDate(2024, 5, 1), endOfYear));
    int inMay = 0;  // four days a week, less two holidays
    EXPECT_TRUE(joint.GetBusinessDaysBetween(nxDate(2024, 5, 1), nxDate(2024, 6, 1), inMay).IsOK());
    EXPECT_EQ(inMay, 16);
    for (const nxBusinessCalendar& apart : {Calendar(nxDate(2026, 1, 1), nxDate(2026, 2, 1), 0), nxBusinessCalendar()})
        EXPECT_TRUE(nxBusinessCalendar::GetJoint(here, apart).GetLastDay().IsNull());
}

TEST(nxZone, RefusesWhatIsNoZone)
{
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / ("zones" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    std::ofstream(folder / "Damaged") << "TZif2 and no more";
    std::ofstream(folder / "Empty");
    setenv("TZDIR", folder.c_str(), 1);
    const std::pair<nxErrorEnum, const char*> rows[] = {
        {wrong, ";/etc/localtime;Europe/;Europe//Paris;../UTC;Europe/..;zone.tab;:UTC;UTC ;CET-1CEST,M3"},
        {notFound, "Nowhere;Nowhere/UTC"},
        {beyond, "Damaged;Empty"},
    };
    for (const auto& [error, names] : rows)
    {
        const nxZone* zone = nullptr;
        std::istringstream each(names);
        for (std::string name; std::getline(each, name, ';');)
            EXPECT_EQ(nxZone::Get(name, zone), error) << name;
        EXPECT_EQ(zone, nullptr);
    }
    std::filesystem::remove_all(folder);
    unsetenv("TZDIR");
}

TEST(nxZone, IsOneForAllThreads)
{
    std::array<const nxZone*, 4> zones{};
    std::vector<std::thread> threads;
    for (const nxZone*& zone : zones)
        threads.emplace_back([&zone] { zone = &Zone("Asia/Kathmandu"); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(std::count(zones.begin(), zones.end(), &Zone("Asia/Kathmandu")), 4);
}

TEST(nxZone, KnowsItsRange)
{
    nxTimeStamp moment(1, 1);
    const std::pair<const char*, nxErrorEnum> rows[] = {
        {"0001-01-01T00:00:00", outside},      {"1899-12-31T23:59:59", outside}, {"1900-01-01T00:00:00", ok},
        {"2099-12-31T23:59:59.000000001", ok}, {"2100-01-01T00:00:00", outside}, {"9999-12-31T00:00:00", outside},
    };
    for (const auto& [text, error] : rows)
    {
        nxDateTime local;
        EXPECT_TRUE(local.SetFromISOString(text).IsOK());
        EXPECT_EQ(Zone("UTC").GetMoment(local, moment), error) << text;
        EXPECT_EQ(Zone("UTC").GetLocal(Utc(text)), error.IsOK() ? local : nxDateTime());
    }
    EXPECT_EQ(Zone("UTC").GetMoment(nxDateTime(), moment), null);
    EXPECT_EQ(Zone("UTC").GetMoment(nxDateTime(9, 0, 0), moment), null);
    EXPECT_EQ(UtcText(moment), rows[3].first);
    EXPECT_EQ(UtcText(nxTimeStamp(-1, 3'000'000'007)), "1970-01-01T00:00:02.000000007");
    for (const long long second : {LLONG_MIN, LLONG_MAX, moment.GetSeconds()})
        EXPECT_EQ(UtcText(nxTimeStamp(second, UINT_MAX)), "");
}

TEST(nxTradingSession, FollowsTheClocksOfTheMarket)
{
    const nxBusinessCalendar weekdays = Calendar(newYear, endOfYear, weekend, {nxDate(2024, 5, 27)});
    const nxBusinessCalendar everyDay = Calendar(newYear, endOfYear, 0);
    const std::tuple<const nxBusinessCalendar*, nxDate, const char*, const char*> rows[] = {
        {&everyDay, nxDate(2024, 3, 10), "2024-03-09T23:00:00", "2024-03-10T21:00:00"},
        {&everyDay, nxDate(2024, 11, 3), "2024-11-02T22:00:00", "2024-11-03T22:00:00"},
        {&weekdays, nxDate(2024, 3, 11), "2024-03-10T22:00:00", "2024-03-11T21:00:00"},
        {&weekdays, nxDate(2024, 11, 4), "2024-11-03T23:00:00", "2024-11-04T22:00:00"},
    };
    const nxTime five(17, 0, 0), four(16, 0, 0);
    nxTradingSession session;
    nxTimeStamp open, close;
    for (const auto& [calendar, date, opens, closes] : rows)
    {
        ASSERT_TRUE(session.Set(&Zone("America/Chicago"), *calendar, five, four, OpenDay::Before).IsOK());
        EXPECT_TRUE(session.GetOpen(date, open).IsOK() && session.GetClose(date, close).IsOK()) << date;
        EXPECT_EQ(std::pair(UtcText(open), UtcText(close)), (std::pair<std::string, std::string>(opens, closes)));
    }
    const std::tuple<const char*, nxErrorEnum, nxDate, bool> moments[] = {
        {"2024-05-24T20:59:59.999999999", ok, nxDate(2024, 5, 24), true},
        {"2024-05-24T21:00:00", ok, nxDate(2024, 5, 28), false},  // Friday's close, before a Monday without trading
        {"2024-05-27T21:59:59.999999999", ok, nxDate(2024, 5, 28), false},
        {"2024-05-27T22:00:00", ok, nxDate(2024, 5, 28), true},
        {"2024-01-01T01:00:00", ok, newYear, true},
        {"2023-12-31T21:00:00", beyond, nxDate(), false},
        {"2024-12-31T22:00:00", beyond, nxDate(), false},
        {"2100-01-01T00:00:00", outside, nxDate(), false},
    };
    for (const auto& [text, error, date, isOpen] : moments)
    {
        nxDate found;
        bool is = false;
        EXPECT_EQ(session.GetTradeDate(Utc(text), found), error) << text;
        EXPECT_EQ(session.IsOpen(Utc(text), is), error) << text;
        EXPECT_EQ(std::pair(found, is), std::pair(date, isOpen)) << text;
    }
    EXPECT_EQ(session.GetOpen(nxDate(2024, 5, 27), open), notFound);
    EXPECT_EQ(session.GetClose(nxDate(2025, 1, 1), open), beyond);
    EXPECT_EQ(session.GetClose(nxDate(), open), null);
}

TEST(nxTradingSession, RefusesHoursThatCannotBe)
{
    const nxTime nine(9, 0, 0), ten(10, 0, 0);
    const std::tuple<const nxZone*, nxTime, nxTime, OpenDay, nxErrorEnum> rows[] = {
        {nullptr, nine, ten, OpenDay::Same, null},           {&Zone("UTC"), nxTime(), ten, OpenDay::Same, null},
        {&Zone("UTC"), nine, nxTime(), OpenDay::Same, null}, {&Zone("UTC"), nine, nine, OpenDay::Same, wrong},
        {&Zone("UTC"), nine, ten, OpenDay::Before, wrong},   {&Zone("UTC"), ten, nine, OpenDay(2), wrong},
        {&Zone("UTC"), nine, nine, OpenDay::Before, ok},     {&Zone("UTC"), nine, ten, OpenDay::Same, ok},
    };
    for (const auto& [zone, open, close, day, error] : rows)
    {
        nxTradingSession session;
        nxTimeStamp moment;
        bool isOpen = false;
        EXPECT_EQ(session.Set(zone, Calendar(newYear, endOfYear, weekend), open, close, day), error);
        EXPECT_EQ(session.IsOpen(Utc("2024-05-23T09:30:00"), isOpen), error.IsOK() ? ok : notSetUp);
        EXPECT_EQ(session.GetOpen(nxDate(2024, 5, 23), moment), error.IsOK() ? ok : notSetUp);
        EXPECT_EQ(isOpen, error.IsOK());
    }
}
