// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxValueWrapper.h"

#include "core/text/nxDoubleValueWrapper.h"
#include "core/text/nxStringValue.h"
#include "tests/support/nxTest.h"

namespace
{
using Unsigned = nxValueWrapper<unsigned int>;
using Signed = nxValueWrapper<int>;

const nxErrorEnum ok, invalid(NX_ERR_INVALID_PARAMETER), outOfRange(NX_ERR_VALUE_OUT_OF_RANGE),
    isNull(NX_ERR_OBJECT_IS_NULL);

template <class Value>
void ExpectTexts(const Value& value, const std::string& text, const std::string& logText)
{
    EXPECT_EQ(value.GetAsString(), text);
    EXPECT_EQ(value.GetAsLogString(), logText);
    EXPECT_EQ(Streamed(value), logText);
    std::string both;
    value.AppendAsString(both);
    value.AppendAsLogString(both);
    EXPECT_EQ(both, text + logText);
}

// The sum, the difference and the product with a number, or an error that changes nothing.
template <class Wrapper, class Number, class Result, class IsHeld>
void ExpectExact(Wrapper before, Number other, const Result (&results)[3], IsHeld isHeld)
{
    Wrapper values[] = {before, before, before};
    const nxErrorEnum errors[] = {values[0].AddExact(other), values[1].SubtractExact(other),
                                  values[2].MultiplyExact(other)};
    using Plain = std::remove_const_t<decltype(Wrapper::NullValue)>;
    for (int i = 0; i < 3; ++i)
    {
        SCOPED_TRACE(testing::Message() << before << ' ' << other << ' ' << i);
        EXPECT_EQ(errors[i], isHeld(results[i]) ? ok : outOfRange);
        EXPECT_EQ(Plain{values[i]}, isHeld(results[i]) ? static_cast<Plain>(results[i]) : Plain{before});
    }
}
}  // namespace

static_assert(std::is_same_v<Unsigned, nxValueWrapper<unsigned int, 0xFFFFFFFF, 0xFFFFFFFE>>);
static_assert(std::is_same_v<Signed, nxValueWrapper<int, 0x7FFFFFFF, 0x7FFFFFFE>>);
static_assert(nxValueWrapper<unsigned long long>::NullValue == ULLONG_MAX);
static_assert(sizeof(Unsigned) == sizeof(unsigned) && std::is_trivially_copyable_v<Unsigned>);

TEST(nxDoubleValueWrapper, TagConstructorsAreCrossedAndInstancesAreNot)
{
    using Value = nxDoubleValueWrapper;
    EXPECT_TRUE(Value().IsNull() && Value(nxNullInitalizer{}).IsNoChange() && Value(nxNoChangeInitalizer{}).IsNull());
    EXPECT_TRUE(Value::GetNullInstance().IsNull() && Value::GetNoChangeInstance().IsNoChange());
}

TEST(nxDoubleValueWrapper, TwoNumbersAreMarksAndAllOthersAreValues)
{
    const std::tuple<double, nxEnumValue, const char*, const char*> rows[] = {
        {4503599627370495.0, NX_VALUE_STATUS_NULL, "", "4.503600e+15"},
        {4503599627370494.0, NX_VALUE_STATUS_NO_CHANGE, "", "NO_CHANGE"},
        {4503599627370496.0, NX_VALUE_STATUS_VALID, "4.503600e+15", "4.503600e+15"},
        {4503599627370493.0, NX_VALUE_STATUS_VALID, "4.503600e+15", "4.503600e+15"},
        {2.5, NX_VALUE_STATUS_VALID, "2.5", "2.5"},
        {std::nan(""), NX_VALUE_STATUS_VALID, "nan", "nan"},
    };
    for (const auto& [number, status, text, logText] : rows)
    {
        SCOPED_TRACE(number);
        const nxDoubleValueWrapper value(number);
        EXPECT_EQ(value.GetStatus(), status);
        EXPECT_EQ(value.IsNull(), status == NX_VALUE_STATUS_NULL);
        EXPECT_EQ(value.IsNoChange(), status == NX_VALUE_STATUS_NO_CHANGE);
        EXPECT_EQ(value.IsValid(), status == NX_VALUE_STATUS_VALID);
        ExpectTexts(value, text, logText);
    }
    nxDoubleValueWrapper value(1.0);
    value.SetNull();
    EXPECT_TRUE(value.IsNull());
    value.SetNoChange();
    EXPECT_TRUE(value.IsNoChange());
}

TEST(nxDoubleValueWrapper, ComparesWithATolerance)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    // The sign of the difference; 2: neither equal nor ordered
    const std::tuple<double, double, int> rows[] = {
        {1.000000001, 1.0, 0},     {1.00000002, 1.0, 1},
        {1.0, 1.00000002, -1},     {1.0, 1.000000009, 0},
        {-infinity, infinity, -1}, {infinity, infinity, 2},
        {std::nan(""), 1.0, 2},    {nxDoubleValueWrapper::NullValue, 5.0, 1}};
    for (const auto& [x, y, order] : rows)
    {
        SCOPED_TRACE(testing::Message() << x << " and " << y);
        const nxDoubleValueWrapper a(x), b(y);
        EXPECT_EQ(a == y, order == 0);
        EXPECT_EQ(a != y, order != 0);
        EXPECT_EQ(a <= y, order == -1 || order == 0);
        EXPECT_EQ(a > y, order == 1);
        EXPECT_EQ(a >= y, order == 1 || order == 0);
        EXPECT_TRUE((a == b) == (order == 0) && (x == b) == (order == 0));
        EXPECT_TRUE((a < b) == (order == -1) && (a < y) == (order == -1) && (x < b) == (order == -1));
    }
    EXPECT_TRUE(nxDoubleValueWrapper(3.0) == 3 && 2 < nxDoubleValueWrapper(3.0));  // an integer is as good as a double
}

TEST(nxDoubleValueWrapper, CalculatesWithTheRawNumber)
{
    nxDoubleValueWrapper value;
    EXPECT_EQ(value + 1, 4503599627370496.0);
    value += 1;
    EXPECT_TRUE(value.IsValid());
    value = 6;
    EXPECT_EQ(value - 2.0, 4.0);
    EXPECT_EQ(value * 2, 12.0);
    EXPECT_EQ(value / 4, 1.5);
    value -= 2;
    value *= 3;
    value /= 8;
    EXPECT_EQ(static_cast<double>(value), 1.5);
    EXPECT_TRUE(std::isinf(static_cast<double>(value /= 0)));
}

TEST(nxDoubleValueWrapper, MaximumAndMinimumPassOverWhatIsNoValue)
{
    using Value = nxDoubleValueWrapper;
    const Value null, noChange = Value::GetNoChangeInstance();
    const std::tuple<Value, Value, double, double> rows[] = {
        {null, 5, 5, 5},
        {5, null, 5, 5},
        {5, noChange, 5, 5},
        {3, 3.000000001, 3, 3},
        {3, 4, 4, 3},
        {3.000000001, 3, 3.000000001, 3.000000001},
        {null, noChange, Value::NoChangeValue, Value::NoChangeValue}};
    for (const auto& [a, b, maximum, minimum] : rows)
    {
        EXPECT_EQ(static_cast<double>(null.GetMax(a, b)), maximum);
        EXPECT_EQ(static_cast<double>(null.GetMin(a, b)), minimum);
    }
}

TEST(nxDoubleValueWrapper, ReadsTextOrBecomesNull)
{
    nxDoubleValueWrapper value;
    EXPECT_EQ(value.SetFromString("2.5"), nxErrorEnum());
    EXPECT_EQ(static_cast<double>(value), 2.5);
    EXPECT_EQ(value.SetFromString("abc"), nxErrorEnum(NX_ERR_INVALID_PARAMETER));
    EXPECT_TRUE(value.IsNull());
    EXPECT_FALSE(value.SetFromString(static_cast<const char*>(nullptr)).IsOK());
    value = 2.5;
    for (const char* const text : {"4503599627370494", "4503599627370495", "9007199254740993"})
        EXPECT_EQ(value.SetFromStringExact(text), outOfRange) << text;
    EXPECT_EQ(value.SetFromStringExact(nullptr), invalid);
    EXPECT_EQ(value.GetAsString(), "2.5");
    EXPECT_EQ(value.SetFromString("4503599627370494"), nxErrorEnum());
    EXPECT_TRUE(value.IsNoChange());
}

TEST(nxValueWrapper, KeepsItsStatesStraight)
{
    EXPECT_TRUE(Unsigned().IsNull() && Unsigned(nxNullInitalizer{}).IsNull());
    EXPECT_TRUE(Unsigned(nxNoChangeInitalizer{}).IsNoChange());
    EXPECT_TRUE(Unsigned::GetNullInstance().IsNull() && Unsigned::GetNoChangeInstance().IsNoChange());
    Signed value(-1);
    EXPECT_TRUE(value.IsValid());
    value.SetNull();
    EXPECT_EQ(value.GetStatus(), NX_VALUE_STATUS_NULL);
    value.SetNoChange();
    EXPECT_EQ(value.GetStatus(), NX_VALUE_STATUS_NO_CHANGE);
    value = 0;
    EXPECT_EQ(value.GetStatus(), NX_VALUE_STATUS_VALID);
}

TEST(nxValueWrapper, PrintsAndReads)
{
    const std::tuple<const char*, bool, const char*, const char*, nxErrorEnum> rows[] = {
        // text, accepted, text and log text then, the error of the exact reader
        {"300", true, "300", "300", ok},
        {"4294967293", true, "4294967293", "4294967293", ok},
        {"4294967294", true, "", "NO_CHANGE", outOfRange},
        {"4294967295", true, "", "NULL", outOfRange},
        {"4294967297", true, "1", "1", outOfRange},
        {"-1", false, "", "NULL", invalid},
        {nullptr, false, "", "NULL", invalid}};
    for (const auto& [read, accepted, text, logText, error] : rows)
    {
        SCOPED_TRACE(text);
        Unsigned value(7), exact(7);
        EXPECT_EQ(exact.SetFromStringExact(read), error);
        EXPECT_EQ(exact.GetAsString(), error.IsOK() ? text : "7");
        EXPECT_EQ(value.SetFromString(read).IsOK(), accepted);
        ExpectTexts(value, text, logText);
    }
    ExpectTexts(Signed(INT_MIN), "-2147483648", "-2147483648");
}

TEST(nxValueWrapper, CalculatesExactlyOrNotAtAll)
{
    // Against 128 bits, with operands of three types and the limits of one.
    const auto check = [](int a, auto b)
    {
        __extension__ using Wide = __int128;
        const auto isHeld = [](Wide result) { return INT_MIN <= result && result < Signed::NoChangeValue; };
        ExpectExact(Signed(a), b, {Wide{a} + b, Wide{a} - b, Wide{a} * b}, isHeld);
    };
    const int edges[] = {INT_MIN, INT_MIN + 1, -46341, -1, 0, 1, 46341, 1073741823, INT_MAX - 3, INT_MAX - 2};
    for (const int a : edges)
        for (const int b : edges)
        {
            check(a, b);
            check(a, 4'294'967'296LL * b);
            check(a, static_cast<unsigned>(b));
        }
    Signed null, value(5);
    EXPECT_EQ(null.AddExact(1), isNull);
    EXPECT_EQ(value.MultiplyExact(nxValueWrapper<long long>::GetNoChangeInstance()), isNull);
    EXPECT_TRUE(null.IsNull() && value == 5);
}

TEST(nxDoubleValueWrapper, CalculatesExactlyOrNotAtAll)
{
    constexpr double tiny = 4.9406564584124654e-324, huge = 1.7976931348623157e308, none = HUGE_VAL;
    // The sum, the difference and the product; infinite: refused.
    const std::tuple<double, double, double, double, double> rows[] = {
        {0.1, 0.2, none, -0.1, none},
        {9007199254740992, 1, none, 9007199254740991, 9007199254740992},
        {4503599627370494.5, 0.5, none, none, 2251799813685247.25},  // the marks
        {huge, 0.5, none, none, huge / 2},
        {huge, huge, none, 0, none},
        {tiny, 0.5, none, none, none},
        {tiny, -tiny, 0, 2 * tiny, none},
        {none, 1, none, none, none}};
    for (const auto& [a, b, sum, difference, product] : rows)
        ExpectExact(nxDoubleValueWrapper(a), b, {sum, difference, product},
                    [](double result) { return result < none; });
    EXPECT_EQ(nxDoubleValueWrapper(1).AddExact(nxDoubleValueWrapper()), isNull);
}

TEST(nxValueWrapper, TakesOverAllButNoChange)
{
    const auto check = [](auto stored, const auto& other)
    {
        using Value = decltype(stored);
        stored.UpdateFrom(Value::GetNoChangeInstance());
        EXPECT_TRUE(stored.IsValid());
        EXPECT_EQ(stored.GetValueOr(other), stored);
        stored.UpdateFrom(Value::GetNullInstance());
        EXPECT_TRUE(stored.IsNull());
        EXPECT_EQ(stored.GetValueOr(other), other);
        stored.UpdateFrom(other);
        EXPECT_EQ(stored, other);
    };
    check(Unsigned(7), 8U);
    check(nxDoubleValueWrapper(7), 8.0);
    check(nxStringValue("old"), std::string("new"));
    const nxStringValue null, noChange = nxStringValue::GetNoChangeInstance();
    EXPECT_TRUE(null < noChange && noChange < "" && nxStringValue("a") < nxStringValue("b") && null <= null);
}

TEST(nxValueWrapper, CalculatesInItsTypeAndWraps)
{
    EXPECT_EQ(Signed(INT_MAX - 2) + 5, INT_MIN + 2);
    EXPECT_EQ(Signed(INT_MIN) - 1, INT_MAX);
    EXPECT_EQ(Signed(INT_MIN) * Signed(-1), INT_MIN);
    EXPECT_EQ(Signed(INT_MIN) / -1, INT_MIN);
    EXPECT_EQ(Signed(-7) / 2, -3);
    EXPECT_EQ(2 - Signed(5), -3);
    EXPECT_EQ(Unsigned(3) - 5, UINT_MAX - 1);
    EXPECT_EQ(Unsigned(4) + Unsigned(5), 9U);
    Unsigned value(20);
    value += 4;
    value -= 3;
    value *= 2;
    value /= 5;
    EXPECT_EQ(static_cast<unsigned>(value), 8U);
    EXPECT_TRUE((value /= 0).IsNull());
    EXPECT_EQ(static_cast<unsigned>(value += 1), 0U);  // the state is ignored
    nxValueWrapper<unsigned short> narrow(40000);
    narrow *= static_cast<unsigned short>(40000);
    EXPECT_EQ(static_cast<unsigned short>(narrow), static_cast<unsigned short>(40000U * 40000U));
}

TEST(nxValueWrapper, CalculatesInTheWiderType)
{
    EXPECT_EQ(Unsigned(300) * 5'000'000'000LL, 1'500'000'000'000LL);
    EXPECT_EQ(5'000'000'000LL * Unsigned(300), 1'500'000'000'000LL);
    EXPECT_EQ(Unsigned(300) - 500LL, -200);
    EXPECT_EQ(LLONG_MIN / Signed(-1), LLONG_MIN);
    EXPECT_EQ(5LL / Signed(0), Signed::NullValue);
    EXPECT_EQ(Unsigned(300) + nxValueWrapper<long long>(-301), -1);
    EXPECT_EQ((Signed(INT_MAX) + nxValueWrapper<int, -1, -2>(1)), INT_MIN);
    EXPECT_TRUE((std::is_same_v<decltype(Unsigned() + 1), unsigned>));
    EXPECT_EQ(1.5 * Unsigned(300), 450.0);
}

TEST(nxValueWrapper, WhatItDoesNotHoldIsNull)
{
    Unsigned value(10);
    value += 4294967301LL;  // a plain unsigned would be 15
    EXPECT_TRUE(value.IsNull());
    EXPECT_EQ(Unsigned(5'000'000'000ULL), Unsigned());
    EXPECT_EQ(Unsigned(-2), Unsigned());
    EXPECT_EQ(Signed(3'000'000'000U), Signed());
    EXPECT_TRUE(Unsigned(4294967294LL).IsNoChange());
    using Wide = nxValueWrapper<unsigned long long>;
    EXPECT_TRUE(Wide(Unsigned()).IsNull());
    EXPECT_TRUE(Unsigned(Wide::GetNoChangeInstance()).IsNoChange());
    EXPECT_TRUE(Unsigned(Wide(5'000'000'000ULL)).IsNull());
    EXPECT_EQ(Unsigned(Wide(7)), 7);
    EXPECT_TRUE(nxDoubleValueWrapper(Unsigned()).IsNull() && nxDoubleValueWrapper(Unsigned(7)) == 7);
}

TEST(nxValueWrapper, ComparesExactly)
{
    EXPECT_TRUE(Unsigned(5) == 5);
    EXPECT_TRUE(Unsigned(5) == Unsigned(5));
    EXPECT_FALSE(Unsigned() == -1);  // whatever the bits of the mark
    EXPECT_TRUE(Unsigned(1) < 5'000'000'000LL);
    EXPECT_TRUE(-1 < Unsigned(0));
    EXPECT_TRUE(Signed(-1) < 0U);
    EXPECT_TRUE(Signed(2) >= Signed(2));
    EXPECT_FALSE(Unsigned() == Signed(-1));
    EXPECT_FALSE(Unsigned(1) < Signed(-1));
    EXPECT_TRUE(0.5 < Unsigned(1) && Unsigned(1) <= 1.0F && Unsigned(1) != std::nan(""));
    constexpr double limit = 9223372036854775808.0;  // the double beside the largest long long
    EXPECT_TRUE(nxValueWrapper<long long>(LLONG_MAX) < limit && nxValueWrapper<long long>(LLONG_MIN) == -limit);
    EXPECT_FALSE(nxValueWrapper<long long>(9007199254740993) == 9007199254740992.0);
    EXPECT_TRUE(nxDoubleValueWrapper(3.000000001) == Unsigned(3) && Signed(2) < nxDoubleValueWrapper(2.5));
    EXPECT_EQ(static_cast<unsigned>(Unsigned().GetMax(Unsigned(), 5)), 5U);
    EXPECT_EQ(static_cast<unsigned>(Unsigned().GetMax(6, Unsigned::GetNoChangeInstance())), 6U);
    EXPECT_EQ(static_cast<unsigned>(Unsigned::GetMin(6, 5)), 5U);
    EXPECT_EQ(std::unordered_set<Signed>({Signed(1), Signed(1), Signed()}).size(), 2U);
}
