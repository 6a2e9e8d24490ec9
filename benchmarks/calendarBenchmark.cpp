// SPDX-License-Identifier: Apache-2.0
// Business days beside stepping from day to day; local times and moments of a zone beside the C library.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <random>
#include <vector>

#if defined(NX_BENCHMARK_HAS_ABSL)
    #include <absl/time/time.h>
#endif

#include "core/time/nxTradingSession.h"

namespace
{
constexpr const char* zoneName = "America/Chicago";
constexpr std::size_t ringSize = 1024;
const nxDate firstDay(2000, 1, 1), lastDay(2039, 12, 31);

const nxZone& Zone()
{
    static const nxZone* const zone = []
    {
        setenv("TZ", zoneName, 1);
        tzset();
        const nxZone* found = nullptr;
        if (!nxZone::Get(zoneName, found).IsOK())
            std::abort();
        return found;
    }();
    return *zone;
}

// Nine holidays a year, and the same days for a walk.
struct Calendars
{
    nxBusinessCalendar ours;
    std::vector<bool> isBusinessDay;

    Calendars()
    {
        std::mt19937 random(1);
        bool isGood = ours.SetRange(firstDay, lastDay).IsOK();
        for (nxDate day = firstDay; day <= lastDay; day = day.GetWithDaysAdded(1))
        {
            if (random() % 40 == 0)
                isGood = isGood && ours.AddHoliday(day).IsOK();
            bool is = false;
            isGood = isGood && ours.IsBusinessDay(day, is).IsOK();
            isBusinessDay.push_back(is);
        }
        if (!isGood)
            std::abort();
    }
};

const Calendars& Both()
{
    static const Calendars calendars;
    return calendars;
}

const std::array<nxDate, ringSize>& Dates()
{
    static const auto ring = []
    {
        std::mt19937 random(2);
        std::array<nxDate, ringSize> dates;
        for (nxDate& date : dates)
            date = nxDate(2010, 1, 1).GetWithDaysAdded(static_cast<int>(random() % 7'000));
        return dates;
    }();
    return ring;
}

nxDate AddOurs(nxDate date, int days)
{
    nxDate result;
    benchmark::DoNotOptimize(Both().ours.AddBusinessDays(date, days, result));
    return result;
}

nxDate AddDayByDay(nxDate date, int days)
{
    static const std::vector<bool>& isBusinessDay = Both().isBusinessDay;
    static const int first = firstDay.GetDayNumber();
    int day = date.GetDayNumber() - first;
    while (days > 0)
        days -= isBusinessDay[static_cast<std::size_t>(++day)] ? 1 : 0;
    return nxDate::GetFromDayNumber(first + day);
}

void AddBusinessDays(benchmark::State& state, nxDate (*add)(nxDate, int), int days)
{
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(add(Dates()[i++ % ringSize], days));
}
BENCHMARK_CAPTURE(AddBusinessDays, two, AddOurs, 2)->Name("business_days_add_2/ours");
BENCHMARK_CAPTURE(AddBusinessDays, two_walked, AddDayByDay, 2)->Name("business_days_add_2/limit_day_by_day");
BENCHMARK_CAPTURE(AddBusinessDays, year, AddOurs, 250)->Name("business_days_add_250/ours");
BENCHMARK_CAPTURE(AddBusinessDays, year_walked, AddDayByDay, 250)->Name("business_days_add_250/limit_day_by_day");

// Moments anywhere in the fifty years from 1990 on.
struct Moment
{
    nxTimeStamp stamp;
    nxDateTime local;
    std::tm fields;
#if defined(NX_BENCHMARK_HAS_ABSL)
    absl::Time time;
    absl::CivilSecond civil;
#endif
};

#if defined(NX_BENCHMARK_HAS_ABSL)
const absl::TimeZone& AbslZone()
{
    static const absl::TimeZone zone = []
    {
        absl::TimeZone loaded;
        if (!absl::LoadTimeZone(zoneName, &loaded))
            std::abort();
        return loaded;
    }();
    return zone;
}
#endif

const std::array<Moment, ringSize>& Moments()
{
    static const auto ring = []
    {
        std::mt19937_64 random(3);
        std::array<Moment, ringSize> moments;
        for (Moment& moment : moments)
        {
            const auto second = static_cast<std::time_t>(631'152'000 + random() % 1'577'836'800);
            moment.stamp = nxTimeStamp(second, 0);
            moment.local = Zone().GetLocal(moment.stamp);
            localtime_r(&second, &moment.fields);
#if defined(NX_BENCHMARK_HAS_ABSL)
            moment.time = absl::FromTimeT(second);
            moment.civil = AbslZone().At(moment.time).cs;
#endif
        }
        return moments;
    }();
    return ring;
}

template <class Convert>
void ForEachMoment(benchmark::State& state, const Convert& convert)
{
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(convert(Moments()[i++ % ringSize]));
}

nxDateTime LocalOurs(const Moment& moment) { return Zone().GetLocal(moment.stamp); }
std::tm LocalLibrary(const Moment& moment)
{
    const std::time_t second = moment.stamp.GetSeconds();
    std::tm fields;
    localtime_r(&second, &fields);
    return fields;
}
nxTimeStamp MomentOurs(const Moment& moment)
{
    nxTimeStamp result(0, 0);
    benchmark::DoNotOptimize(Zone().GetMoment(moment.local, result));
    return result;
}
std::time_t MomentLibrary(const Moment& moment)
{
    std::tm fields = moment.fields;
    return std::mktime(&fields);
}
BENCHMARK_CAPTURE(ForEachMoment, local, LocalOurs)->Name("zone_local/ours");
BENCHMARK_CAPTURE(ForEachMoment, local_library, LocalLibrary)->Name("zone_local/peer_localtime_r");
BENCHMARK_CAPTURE(ForEachMoment, moment, MomentOurs)->Name("zone_moment/ours");
BENCHMARK_CAPTURE(ForEachMoment, moment_library, MomentLibrary)->Name("zone_moment/peer_mktime");
#if defined(NX_BENCHMARK_HAS_ABSL)
absl::CivilSecond LocalAbsl(const Moment& moment) { return AbslZone().At(moment.time).cs; }
absl::Time MomentAbsl(const Moment& moment) { return AbslZone().At(moment.civil).pre; }
BENCHMARK_CAPTURE(ForEachMoment, local_absl, LocalAbsl)->Name("zone_local/peer_absl");
BENCHMARK_CAPTURE(ForEachMoment, moment_absl, MomentAbsl)->Name("zone_moment/peer_absl");
#endif

nxDate TradeDate(const Moment& moment)
{
    static const nxTradingSession session = []
    {
        nxTradingSession made;
        if (!made.Set(&Zone(), Both().ours, nxTime(17, 0, 0), nxTime(16, 0, 0), nxTradingSession::OpenDay::Before)
                 .IsOK())
            std::abort();
        return made;
    }();
    nxDate date;
    benchmark::DoNotOptimize(session.GetTradeDate(moment.stamp, date));
    return date;
}
BENCHMARK_CAPTURE(ForEachMoment, trade_date, TradeDate)->Name("session_trade_date/ours");
BENCHMARK_CAPTURE(ForEachMoment, trade_date_clock, LocalLibrary)->Name("session_trade_date/limit_localtime_r");
}  // namespace
