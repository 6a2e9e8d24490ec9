// SPDX-License-Identifier: Apache-2.0
// Time stamps: taking one and printing one. Spans, months and the texts of dates.
#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>

#if defined(NX_BENCHMARK_HAS_ABSL)
    #include <absl/time/time.h>
#endif
#if defined(NX_BENCHMARK_HAS_FMT)
    #include <fmt/chrono.h>
    #include <fmt/compile.h>
#endif

#include "core/time/nxDateTime.h"
#include "core/time/nxTimeStamp.h"

namespace
{
// A zone with summer time, whatever the machine's own.
const bool zoneIsSet = []
{
    setenv("TZ", "Europe/London", 1);
    tzset();
    return true;
}();

constexpr std::size_t ringSize = 1024;
using Ring = std::array<nxTimeStamp, ringSize>;

// Stamps as a busy log makes them: a few microseconds apart.
const Ring& Successive()
{
    static const Ring ring = []
    {
        std::mt19937_64 random(1);
        std::int64_t nanosecond = 1'709'629'623'000'000'000;
        Ring stamps;
        for (nxTimeStamp& stamp : stamps)
        {
            nanosecond += static_cast<std::int64_t>(random() % 20'000);
            stamp = nxTimeStamp(nanosecond / 1'000'000'000, static_cast<unsigned>(nanosecond % 1'000'000'000));
        }
        return stamps;
    }();
    return ring;
}

// Moments anywhere in the fifty years from 1990 on.
const Ring& Any()
{
    static const Ring ring = []
    {
        std::mt19937_64 random(2);
        Ring stamps;
        for (nxTimeStamp& stamp : stamps)
            stamp = nxTimeStamp(631'152'000 + static_cast<long long>(random() % 1'577'836'800),
                                static_cast<unsigned>(random() % 1'000'000'000));
        return stamps;
    }();
    return ring;
}

void PrintOurs(benchmark::State& state, const Ring& ring)
{
    char text[nxTimeStamp::TextSize];
    std::size_t i = 0;
    for (auto _ : state)
    {
        ring[i++ % ringSize].GetAsStringFast(text, sizeof text);
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(PrintOurs, successive, Successive())->Name("time_stamp_text_successive/ours");
BENCHMARK_CAPTURE(PrintOurs, any, Any())->Name("time_stamp_text_any/ours");

void PrintCopy(benchmark::State& state)
{
    static char prepared[ringSize][nxTimeStamp::TextSize];
    for (std::size_t i = 0; i < ringSize; ++i)
        Successive()[i].GetAsStringFast(prepared[i], sizeof prepared[i]);
    char text[nxTimeStamp::TextSize];
    std::size_t i = 0;
    for (auto _ : state)
    {
        std::memcpy(text, prepared[i++ % ringSize], 24);
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(PrintCopy)->Name("time_stamp_text_successive/limit_copy_24");

void PrintLocaltime(benchmark::State& state)
{
    std::size_t i = 0;
    for (auto _ : state)
    {
        const std::time_t second = Any()[i++ % ringSize].GetSeconds();
        std::tm fields;
        benchmark::DoNotOptimize(localtime_r(&second, &fields));
        benchmark::DoNotOptimize(fields);
    }
}
BENCHMARK(PrintLocaltime)->Name("time_stamp_text_any/limit_localtime_r");

void PrintStrftime(benchmark::State& state, const Ring& ring)
{
    char text[64];
    std::size_t i = 0;
    for (auto _ : state)
    {
        const nxTimeStamp& stamp = ring[i++ % ringSize];
        const std::time_t second = stamp.GetSeconds();
        std::tm fields;
        localtime_r(&second, &fields);
        const std::size_t size = std::strftime(text, sizeof text, "%d%b%y %H:%M:%S", &fields);
        const unsigned microseconds = stamp.GetMicroseconds();
        std::snprintf(text + size, sizeof text - size, ".%03u.%03u", microseconds / 1'000, microseconds % 1'000);
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(PrintStrftime, successive, Successive())->Name("time_stamp_text_successive/peer_strftime");

#if defined(NX_BENCHMARK_HAS_FMT)
// The fastest of the ways in which it prints a local time and a fraction: a compiled format into plain memory.
void PrintFmt(benchmark::State& state, const Ring& ring)
{
    char text[64];
    std::size_t i = 0;
    for (auto _ : state)
    {
        const nxTimeStamp& stamp = ring[i++ % ringSize];
        const std::time_t second = stamp.GetSeconds();
        std::tm fields;
        localtime_r(&second, &fields);
        const unsigned microseconds = stamp.GetMicroseconds();
        fmt::format_to(text, FMT_COMPILE("{:%d%b%y %T}.{:03}.{:03}"), fields, microseconds / 1'000,
                       microseconds % 1'000);
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(PrintFmt, successive, Successive())->Name("time_stamp_text_successive/peer_fmt_chrono");
BENCHMARK_CAPTURE(PrintFmt, any, Any())->Name("time_stamp_text_any/peer_fmt_chrono");
#endif

void TakeOurs(benchmark::State& state)
{
    for (auto _ : state)
    {
        const nxTimeStamp now;
        benchmark::DoNotOptimize(now);
    }
}
BENCHMARK(TakeOurs)->Name("time_stamp_take/ours");

void TakeTicks(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(nxClock::Ticks());
}
BENCHMARK(TakeTicks)->Name("time_stamp_take/ours_ticks");

void TakeCounterRead(benchmark::State& state)
{
#if defined(__x86_64__)
    for (auto _ : state)
        benchmark::DoNotOptimize(__builtin_ia32_rdtsc());
#endif
}
BENCHMARK(TakeCounterRead)->Name("time_stamp_take/limit_counter_read");

void TakeClockGettime(benchmark::State& state)
{
    for (auto _ : state)
    {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        benchmark::DoNotOptimize(now);
    }
}
BENCHMARK(TakeClockGettime)->Name("time_stamp_take/peer_clock_gettime");

// --- Spans ---

// What a span has to do at least: the sum of two pairs of integers, with neither a carry nor a bound.
struct TwoIntegers
{
    long long days;
    long long nanoseconds;

    friend TwoIntegers operator+(TwoIntegers left, TwoIntegers right)
    {
        return {left.days + right.days, left.nanoseconds + right.nanoseconds};
    }
    friend TwoIntegers operator-(TwoIntegers left, TwoIntegers right)
    {
        return {left.days - right.days, left.nanoseconds - right.nanoseconds};
    }
};

template <class Span>
Span MakeSpan(int days, long long nanoseconds)
{
    return Span{days, nanoseconds};
}
#if defined(NX_BENCHMARK_HAS_ABSL)
template <>
absl::Duration MakeSpan(int days, long long nanoseconds)
{
    return absl::Hours(24 * days) + absl::Nanoseconds(nanoseconds);
}
#endif

// Lengths from a nanosecond to ten years. Half of the sums carry.
template <class Span>
const std::array<Span, ringSize>& Spans()
{
    static const auto ring = []
    {
        std::mt19937_64 random(3);
        std::array<Span, ringSize> spans;
        for (Span& span : spans)
        {
            const int days = static_cast<int>(random() % 3'650);
            span = MakeSpan<Span>(days, static_cast<long long>(random() % 86'400'000'000'000));
        }
        return spans;
    }();
    return ring;
}

template <class Span, bool Subtract>
void Combine(benchmark::State& state)
{
    const auto& ring = Spans<Span>();
    std::size_t i = 0;
    for (auto _ : state)
    {
        const Span left = ring[i % ringSize], right = ring[(i + 7) % ringSize];
        ++i;
        auto result = Subtract ? left - right : left + right;
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(Combine<nxDateTimeSpan, false>)->Name("time_span_add/ours");
BENCHMARK(Combine<TwoIntegers, false>)->Name("time_span_add/limit_two_int64");
BENCHMARK(Combine<nxDateTimeSpan, true>)->Name("time_span_subtract/ours");
BENCHMARK(Combine<TwoIntegers, true>)->Name("time_span_subtract/limit_two_int64");
#if defined(NX_BENCHMARK_HAS_ABSL)
BENCHMARK(Combine<absl::Duration, false>)->Name("time_span_add/peer_absl");
BENCHMARK(Combine<absl::Duration, true>)->Name("time_span_subtract/peer_absl");
#endif

// --- Dates ---

const std::array<nxDateTime, ringSize>& DateTimes()
{
    static const auto ring = []
    {
        std::array<nxDateTime, ringSize> dateTimes;
        for (std::size_t i = 0; i < ringSize; ++i)
            dateTimes[i] = Any()[i].GetAsDateTime();
        return dateTimes;
    }();
    return ring;
}

template <class Append>
void PrintText(benchmark::State& state, const Append& append)
{
    std::string text;
    std::size_t i = 0;
    for (auto _ : state)
    {
        text.clear();
        append(DateTimes()[i++ % ringSize], text);
        benchmark::DoNotOptimize(text.data());
        benchmark::ClobberMemory();
    }
}
void PrintDateISO(const nxDateTime& value, std::string& text) { value.GetDate().AppendAsISOString(text); }
void PrintDatePlain(const nxDateTime& value, std::string& text) { value.GetDate().AppendAsString(text); }
void PrintDateTimeISO(const nxDateTime& value, std::string& text) { value.AppendAsISOString(text); }
void PrintDateTimePlain(const nxDateTime& value, std::string& text) { value.AppendAsString(text); }
BENCHMARK_CAPTURE(PrintText, date_iso, PrintDateISO)->Name("date_iso_text/ours");
BENCHMARK_CAPTURE(PrintText, date_plain, PrintDatePlain)->Name("date_iso_text/limit_eight_digits");
BENCHMARK_CAPTURE(PrintText, date_time_iso, PrintDateTimeISO)->Name("date_time_iso_text/ours");
BENCHMARK_CAPTURE(PrintText, date_time_plain, PrintDateTimePlain)->Name("date_time_iso_text/limit_plain_text");

std::chrono::year_month_day AddMonths(std::chrono::year_month_day day, int months)
{
    day += std::chrono::months(months);
    return day.ok() ? day : day.year() / day.month() / std::chrono::last;
}
nxDate AddMonths(nxDate date, int months) { return date.GetWithMonthsAdded(months); }

template <class Date>
Date MakeDate(nxDate date)
{
    return date;
}
template <>
std::chrono::year_month_day MakeDate(nxDate date)
{
    return std::chrono::sys_days(std::chrono::days(date.GetDayNumber()));
}

template <class Date>
void MoveByMonths(benchmark::State& state)
{
    std::array<Date, ringSize> dates;
    for (std::size_t i = 0; i < ringSize; ++i)
        dates[i] = MakeDate<Date>(DateTimes()[i].GetDate());
    std::size_t i = 0;
    for (auto _ : state)
    {
        auto moved = AddMonths(dates[i % ringSize], static_cast<int>(i % 64) - 32);
        ++i;
        benchmark::DoNotOptimize(moved);
    }
}
BENCHMARK(MoveByMonths<nxDate>)->Name("date_add_months/ours");
BENCHMARK(MoveByMonths<std::chrono::year_month_day>)->Name("date_add_months/peer_chrono");
}  // namespace
