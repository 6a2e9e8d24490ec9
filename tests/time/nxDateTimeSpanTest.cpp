// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxDateTimeSpan.h"

#include "tests/support/nxTest.h"

namespace
{
constexpr long long day = nxDateTimeSpan::NanosecondsPerDay;
constexpr nxDateTimeSpan longest(nxDateTimeSpan::MaxDays, 0), tick(0, 1);
static_assert(sizeof longest == 16);
static_assert(nxDateTimeSpan(2, -1) - nxDateTimeSpan(1, 0) + tick == nxDateTimeSpan::GetFromSeconds(86'400));
}  // namespace

TEST(nxDateTimeSpan, ReadsAndWritesDaysToSeconds)
{
    const nxErrorEnum ok, form(NX_ERR_INVALID_PARAMETER), size(NX_ERR_VALUE_OUT_OF_RANGE);
    const std::tuple<std::string, nxErrorEnum, const char*> rows[] = {
        {"P3DT4H5M6.007S", ok, "P3DT4H5M6.007S"},
        {"PT36H", ok, "P1DT12H"},
        {"-PT90M", ok, "-PT1H30M"},
        {"-P0DT0H0M0.000000000S", ok, "PT0S"},
        {"-PT0.000000001S", ok, "-PT0.000000001S"},
        {"P1DT0.120000000S", ok, "P1DT0.12S"},
        {"P000000000000000000000000000007D", ok, "P7D"},
        {"PT86400S", ok, "P1D"},
        {"-P3652058DT23H59M60S", ok, "-P3652059D"},
        {"P3652059DT0.000000001S", size, ""},
        {"P99999999999999999999999999D", size, ""},
        {"PT18446744073709551616H", size, ""},
        {"-PT999999999999M999999999999S", size, ""},
    };
    for (const auto& [text, error, after] : rows)
    {
        nxDateTimeSpan span(5, 0);
        EXPECT_EQ(span.SetFromString(text), error) << text;
        EXPECT_EQ(span.GetAsString(), *after == '\0' ? "P5D" : after);
    }
    std::istringstream refused(
        "|-|P|-P|PT|P1DT|1D|p1d|P-1D|--P1D|+P1D|P1|P1D2H|PD|PTS|P1Y|P1M|P1W|P1.5D|PT1.5H|PT1.S|PT.5S|"
        "PT1,5S|PT1.0000000000S|PT1S1H|PT1H1H|PT1H.5S| P1D|P1D |P1DT1|PT5SS|P1T1S|P9999999999999X");
    for (std::string text; std::getline(refused, text, '|');)
    {
        nxDateTimeSpan span(5, 0);
        EXPECT_EQ(span.SetFromString(text), form) << text;
        EXPECT_EQ(span, nxDateTimeSpan(5, 0));
    }
}

TEST(nxDateTimeSpan, KeepsEverySumThatIsInRange)
{
    const nxDateTimeSpan none;
    EXPECT_EQ(Streamed(none) + none.GetAsString(), "NULL");
    for (const nxDateTimeSpan& null :
         {none + tick, tick + none, none - tick, tick - none, none + none, none - none, -none, longest + tick,
          -longest - tick, nxDateTimeSpan(INT_MIN, LLONG_MAX), nxDateTimeSpan(INT_MAX, LLONG_MIN),
          nxDateTimeSpan(nxDateTimeSpan::MaxDays, 1), nxDateTimeSpan::GetFromSeconds(LLONG_MAX, LLONG_MAX),
          nxDateTimeSpan::GetFromSeconds(LLONG_MIN, LLONG_MIN)})
        EXPECT_TRUE(null.IsNull() && null == none && !null.IsValid()) << null;
    // Each part of a sum may be beyond what the sum is.
    EXPECT_EQ(nxDateTimeSpan(nxDateTimeSpan::MaxDays + 1, -day), longest);
    EXPECT_EQ(nxDateTimeSpan::GetFromSeconds(86'400LL * (nxDateTimeSpan::MaxDays + 2), -2 * day), longest);
    const nxDateTimeSpan ordered[] = {none, -longest, nxDateTimeSpan(0, -1), nxDateTimeSpan(0, 0), tick, longest};
    for (std::size_t i = 1; i < std::size(ordered); ++i)
        EXPECT_LT(ordered[i - 1], ordered[i]);
    EXPECT_EQ(std::unordered_set<nxDateTimeSpan>(std::begin(ordered), std::end(ordered)).size(), std::size(ordered));
}

TEST(nxDateTimeSpan, AgreesWithIntegersThatHoldAllOfIt)
{
    __extension__ using Wide = __int128;
    constexpr Wide bound = Wide{nxDateTimeSpan::MaxDays} * day;
    const auto make = [](Wide total)
    { return nxDateTimeSpan(static_cast<int>(total / day), static_cast<long long>(total % day)); };
    std::mt19937_64 random(20240305);
    // Near and far, half of them near a day's bound.
    const auto draw = [&random]
    {
        const long long rest =
            (static_cast<long long>(random() % 7) - 3) * (random() % 2 == 0 ? 1 : 10'000'000'000'001);
        return (static_cast<int>(random()) >> random() % 32) % nxDateTimeSpan::MaxDays * Wide{day} + rest;
    };
    for (int i = 0; i < 100'000; ++i)
    {
        const Wide left = draw(), right = draw();
        const nxDateTimeSpan a = make(left), b = make(right);
        ASSERT_EQ((a + b).IsNull(), left + right < -bound || left + right > bound) << a << b;
        ASSERT_EQ((a - b).IsNull(), left - right < -bound || left - right > bound) << a << b;
        ASSERT_EQ((std::pair{a + b, a - b}), (std::pair{make(left + right), make(left - right)}));
        ASSERT_EQ(a <=> b, left <=> right);
        const Wide parts = a.GetDays() * Wide{day} + a.GetHours() * Wide{3'600'000'000'000} +
                           a.GetMinutes() * Wide{60'000'000'000} + a.GetSeconds() * Wide{1'000'000'000} +
                           a.GetNanoseconds();
        ASSERT_TRUE(parts == left) << a;
        ASSERT_EQ(nxDateTimeSpan::GetFromSeconds(a.GetTotalSeconds(), a.GetNanoseconds()), a);
        long long total = 1;
        const bool fits = left >= LLONG_MIN && left <= LLONG_MAX;
        ASSERT_EQ(a.GetTotalNanoseconds(total), fits ? nxErrorEnum() : nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE));
        ASSERT_EQ(total, fits ? static_cast<long long>(left) : 1);
        const auto seconds = static_cast<double>(static_cast<long double>(left) / 1e9L);
        ASSERT_NEAR(a.GetTotalSecondsAsDouble(), seconds, std::abs(seconds) * 0x1p-52);
        nxDateTimeSpan back;
        ASSERT_TRUE(back.SetFromString(a.GetAsString()).IsOK() && back == a) << a;
    }
    long long total = 7;
    EXPECT_EQ(nxDateTimeSpan().GetTotalNanoseconds(total), nxErrorEnum(NX_ERR_OBJECT_IS_NULL));
    EXPECT_EQ(nxDateTimeSpan().GetTotalSecondsAsDouble() + nxDateTimeSpan(0, 1'100'000'000).GetTotalSecondsAsDouble(),
              1.1);
}
