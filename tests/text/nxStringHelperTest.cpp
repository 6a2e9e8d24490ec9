// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxStringHelper.h"

#include <bit>
#include <cfenv>
#include <charconv>
#include <cstdio>

#include "core/nxCore.h"
#include "tests/support/nxRandomTest.h"
#include "tests/support/nxTest.h"
#include "tests/text/nxDoubleTextOracle.h"

namespace
{
const nxErrorEnum ok;
const nxErrorEnum invalid(NX_ERR_INVALID_PARAMETER);
const nxErrorEnum tooLarge(NX_ERR_VALUE_OUT_OF_RANGE);

template <class Integer>
void CheckReading(const std::vector<std::pair<std::string, Integer>>& rows, const nxErrorEnum& error = ok)
{
    for (const auto& [text, after] : rows)
    {
        Integer value = 42;
        EXPECT_EQ(nxStringHelper::SetFromString(text, value), error) << "'" << text << "'";
        EXPECT_EQ(value, after) << "'" << text << "'";
    }
}

nxErrorEnum ToError(std::errc error)
{
    return error == std::errc() ? ok : error == std::errc::invalid_argument ? invalid : tooLarge;
}

// The exact reader against the standard library's, which knows the limits of each type.
template <class Integer>
void CheckExactReading(std::mt19937_64& random)
{
    std::vector<std::string> texts = {"", "-", "-0", "+1", " 1", "1 ", "00000000000000000000000000000001"};
    for (const auto limit : {std::numeric_limits<Integer>::min(), std::numeric_limits<Integer>::max()})
        for (const char last : {'0', '5', '6', '7', '8', '9', 'x'})
            for (const char* const front : {"", "-", "1", "000"})
                texts.push_back(front + std::to_string(limit)), texts.back().back() = last;
    for (int i = 0; i < 300; ++i)
        texts.push_back(std::to_string(random()).substr(0, random() % 21));
    for (const std::string& text : texts)
    {
        Integer expected = 42, value = 42;
        auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), expected);
        if (end != text.data() + text.size())
            error = std::errc::invalid_argument;
        EXPECT_EQ(nxStringHelper::SetFromStringExact(text, value), ToError(error)) << text;
        EXPECT_EQ(value, error == std::errc() ? expected : Integer{42}) << text;
    }
}

// The rule that all integers share.
template <class Integer>
void CheckStrictness()
{
    for (const std::string text : {"", "-", "+5", " 5", "5 ", "--5", "5-", "1,000", "0x10", "12345678/",
                                   "1234567:", "1234\xB5", "1x345678901234567"})
        CheckReading<Integer>({{text, 42}}, invalid);
    CheckReading<Integer>({{std::string("5\0", 2), 42}, {std::string("\0", 1), 42}}, invalid);
    CheckReading<Integer>({{"0", 0}, {"007", 7}});
    if constexpr (std::is_signed_v<Integer>)
        CheckReading<Integer>({{"-0", 0}, {"-5", -5}});
    else
        CheckReading<Integer>({{"-0", 42}, {"-5", 42}}, invalid);
}

// A random number of digits, rarely more than a double has powers of ten; mostly with a separator at a random place,
// sometimes with a wrong character.
std::string RandomNumberText(std::mt19937_64& random, char separator)
{
    std::string text(random() % 4 == 0 ? "-" : "");
    const std::size_t digits = random() % (random() % 128 == 0 ? 800 : random() % 8 == 0 ? 40 : 19);
    for (std::size_t i = 0; i < digits; ++i)
        text += static_cast<char>('0' + random() % 10);
    if (random() % 4 != 0)
        text.insert(random() % (text.size() + 1), 1, separator);
    if (random() % 16 == 0 && !text.empty())
        text[random() % text.size()] = static_cast<char>(random() % 256);
    return text;
}

// Doubles of every kind: any bits, products of prices, halves and their neighbours.
double RandomDouble(std::mt19937_64& random)
{
    const double sign = random() % 2 == 0 ? 1 : -1;
    switch (random() % 4)
    {
        case 0:
            return std::bit_cast<double>(random());
        case 1:
            return sign * static_cast<double>(random() % 10'000'000'000) / std::pow(10.0, random() % 12);
        case 2:
            return sign * (static_cast<double>(random() % (random() % 2 == 0 ? 20 : 20'000)) + 0.5) /
                   std::pow(10.0, random() % 10);
        default:
        {
            const double value = sign * static_cast<double>(random() % 2'147'483'650) / std::exp2(random() % 33);
            return random() % 2 == 0 ? value : std::nextafter(value, 0);
        }
    }
}
// The texts that it appends for the values. It must return the same texts.
template <class... Values>
std::string Printed(const Values&... values)
{
    std::string all;
    const auto print = [&all](const auto& value)
    {
        std::string text;
        nxStringHelper::AppendAsString(text, value);
        EXPECT_EQ(text, nxStringHelper::GetAsString(value));
        all += (all.empty() ? "" : " ") + text;
    };
    (print(values), ...);
    return all;
}
}  // namespace

TEST(nxStringHelper, ReadsIntegersOfEveryWidthByOneRule)
{
    CheckStrictness<short>();
    CheckStrictness<unsigned short>();
    CheckStrictness<int>();
    CheckStrictness<unsigned>();
    CheckStrictness<long>();
    CheckStrictness<unsigned long>();
    CheckStrictness<long long>();
    CheckStrictness<unsigned long long>();
}

TEST(nxStringHelper, ReadsIntegersExactlyOrNotAtAll)
{
    std::mt19937_64 random(nxRandomTest::GetSeed(4));
    CheckExactReading<signed char>(random);
    CheckExactReading<unsigned short>(random);
    CheckExactReading<int>(random);
    CheckExactReading<long long>(random);
    CheckExactReading<unsigned long long>(random);
}

TEST(nxStringHelper, IntegersTooLargeWrap)
{
    CheckReading<short>({{"32767", 32767}, {"32768", -32768}, {"-32768", -32768}, {"-32769", 32767}});
    CheckReading<unsigned short>({{"65535", 65535}, {"65536", 0}, {"70000", 4464}});
    CheckReading<int>(
        {{"2147483647", INT_MAX}, {"2147483648", INT_MIN}, {"-2147483648", INT_MIN}, {"-2147483649", INT_MAX}});
    CheckReading<unsigned>({{"4294967295", UINT_MAX}, {"4294967296", 0}, {"4294967297", 1}});
    CheckReading<long long>({{"9223372036854775807", LLONG_MAX},
                             {"-9223372036854775808", LLONG_MIN},
                             {"9223372036854775808", LLONG_MIN},
                             {"-18446744073709551617", -1}});
    CheckReading<unsigned long long>({{"18446744073709551615", ULLONG_MAX},
                                      {"18446744073709551616", 0},
                                      {std::string(40, '0').append("12"), 12},
                                      {std::string("1").append(64, '0'), 0}});
}

TEST(nxStringHelper, IntegersAgreeWithTheOracleAndSurviveTheRoundTrip)
{
    std::mt19937_64 random(nxRandomTest::GetSeed(1));
    for (auto n = nxRandomTest::GetOperations(20'000); n != 0; --n)
    {
        const auto value = static_cast<long long>(random() >> (random() % 64));
        for (const long long number : {value, -value})
        {
            const std::string text = nxStringHelper::GetAsString(number);
            ASSERT_EQ(text, std::to_string(number));
            long long back = 0;
            ASSERT_EQ(nxStringHelper::SetFromString(text, back), ok) << text;
            ASSERT_EQ(back, number);
        }
    }
}

TEST(nxStringHelper, ViewsAreReadToTheirOwnEnd)
{
    unsigned value = 42;
    EXPECT_EQ(nxStringHelper::SetFromStringView(std::string_view("123456", 3), value), ok);
    EXPECT_EQ(value, 123U);
    EXPECT_EQ(nxStringHelper::SetFromStringView(std::string_view(), value), invalid);
    EXPECT_EQ(nxStringHelper::SetFromStringView(std::string_view("1\0", 2), value), invalid);
    EXPECT_EQ(value, 123U);
    // The memory holds the digits alone, so that the address sanitizer reports a read beside them.
    for (std::size_t size = 1; size <= 24; ++size)
    {
        const std::vector<char> digits(size, '1');
        EXPECT_EQ(nxStringHelper::SetFromStringView(std::string_view(digits.data(), size), value), ok) << size;
    }
}

TEST(nxStringHelper, ReadsFlagsExactlyAndOtherwiseFalse)
{
    bool value = true;
    for (const std::string text : {"True", "true", "1", " TRUE", "TRUE ", "FALSE ", "", "TRUEFALSE"})
    {
        EXPECT_EQ(nxStringHelper::SetFromString("TRUE", value), ok);
        EXPECT_TRUE(value);
        EXPECT_EQ(nxStringHelper::SetFromString(text, value), invalid) << text;
        EXPECT_FALSE(value) << text;
        value = true;
        EXPECT_EQ(nxStringHelper::SetFromStringExact(text, value), invalid) << text;
        EXPECT_TRUE(value) << text;
    }
    value = true;
    EXPECT_EQ(nxStringHelper::SetFromString("FALSE", value), ok);
    EXPECT_FALSE(value);
}

TEST(nxStringHelper, ReadingDoublesAgreesWithTheOracleToTheLastBit)
{
    std::mt19937_64 random(nxRandomTest::GetSeed(2));
    for (auto n = nxRandomTest::GetOperations(300'000); n != 0; --n)
    {
        const char separator = random() % 32 == 0 ? static_cast<char>(random() % 256) : '.';
        const std::string text = RandomNumberText(random, separator);
        double expected = -1;
        double value = -1;
        const bool readable = nxDoubleTextOracle::Read(text, separator, expected);
        ASSERT_EQ(nxStringHelper::SetFromString(text, value, separator).IsOK(), readable) << text;
        ASSERT_TRUE(std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(expected) ||
                    (std::isnan(value) && std::isnan(expected)))
            << text << ": " << value << ", expected " << expected;
    }
}

TEST(nxStringHelper, DoublesAreReadExactlyOrNotAtAll)
{
    const std::pair<std::string, nxErrorEnum> rows[] = {
        {"9007199254740993", tooLarge},            // 2^53 + 1 is no double
        {"0.1234567890123456789", tooLarge},       // a double has fewer digits
        {"0.10000000000000001", ok},               // as other programs print 0.1
        {"0." + std::string(323, '0') + "5", ok},  // the smallest one
        {"0." + std::string(323, '0') + "2", tooLarge},
        {std::string(5000, '0') + "1." + std::string(5000, '0'), ok},
        {std::string(5000, '9') + "x", invalid},
    };
    for (const auto& [text, error] : rows)
    {
        double value = 42;
        EXPECT_EQ(nxStringHelper::SetFromStringExact(text, value, '.'), error) << text;
        EXPECT_EQ(value == 42, !error.IsOK()) << text;
    }
    std::mt19937_64 random(nxRandomTest::GetSeed(5));
    constexpr int directions[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};
    for (auto n = nxRandomTest::GetOperations(100'000); n != 0; --n)
    {
        const char separator = random() % 32 == 0 ? static_cast<char>(random() % 256) : '.';
        const std::string text = RandomNumberText(random, separator);
        const double number = n % 2 == 0 ? RandomDouble(random) : std::bit_cast<double>(n % 4096 << 52);
        double expected = 42, value = 42, back = 0;
        const nxErrorEnum error = ToError(nxDoubleTextOracle::ReadExact(text, separator, expected));
        std::fesetround(directions[n % std::size(directions)]);
        const nxErrorEnum result = nxStringHelper::SetFromStringExact(text, value, separator);
        const std::string printed = nxStringHelper::GetAsExactString(number);
        const nxErrorEnum isBack = nxStringHelper::SetFromStringExact(printed, back, '.');
        std::fesetround(FE_TONEAREST);
        ASSERT_EQ(result, error) << text;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << text;
        ASSERT_EQ(isBack, std::isfinite(number) ? ok : invalid) << printed;
        ASSERT_TRUE(!isBack.IsOK() || std::bit_cast<std::uint64_t>(back) == std::bit_cast<std::uint64_t>(number))
            << printed;
    }
}

// The result does not depend on the rounding direction of the thread.
TEST(nxStringHelper, PrintingDoublesAgreesWithTheOracleToTheByte)
{
    std::mt19937_64 random(nxRandomTest::GetSeed(3));
    const auto operations = nxRandomTest::GetOperations(300'000);
    constexpr int directions[] = {FE_TONEAREST, FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};
    for (auto n = operations; n != 0; --n)
    {
        const double value = RandomDouble(random);
        const auto decimals = static_cast<unsigned>(random() % 11);
        std::fesetround(directions[n * std::size(directions) / (operations + 1)]);
        const std::string text = nxDoubleTextOracle::Print(value, decimals);
        std::string appended = "x";
        nxStringHelper::AppendAsString(appended, value, decimals);
        ASSERT_EQ(nxStringHelper::GetAsString(value, decimals), text) << std::hexfloat << value << ", " << decimals;
        ASSERT_EQ(appended, std::string("x").append(text));
    }
    std::fesetround(FE_TONEAREST);
}

TEST(nxStringHelper, PrintsEveryType)
{
    EXPECT_EQ(Printed('A', static_cast<unsigned char>(0xFF), short{SHRT_MIN}, static_cast<unsigned short>(USHRT_MAX)),
              "65 255 -32768 65535");
    EXPECT_EQ(Printed(INT_MIN, UINT_MAX, ULONG_MAX), "-2147483648 4294967295 " + std::to_string(ULONG_MAX));
    EXPECT_EQ(nxStringHelper::GetAsString(LONG_MIN), std::to_string(LONG_MIN));
    EXPECT_EQ(Printed(LLONG_MIN, ULLONG_MAX), "-9223372036854775808 18446744073709551615");
    EXPECT_EQ(Printed(true, 0.5F, -2.25, -0.0), "TRUE 0.5 -2.25 0");
    EXPECT_EQ(Printed(2147483647.0, 2147483647.9, -HUGE_VAL), "2147483647 2.147484e+09 -inf");
    EXPECT_EQ(Printed<const char*>("text"), "text");  // and not the flag that a pointer converts to
    EXPECT_EQ(Printed<const char*>(nullptr), "");
    EXPECT_EQ(Printed(std::string("a\0b", 3)), std::string("a\0b", 3));
    EXPECT_EQ(Printed(nxDecimal(-5, 2), nxDate(2024, 3, 5), nxTime(9, 7, 3)), "-5.00 20240305 09:07:03");
    EXPECT_EQ(Printed(nxDateTime(nxDate(2024, 3, 5), nxTime(9, 7, 3)), nxBoolEnum(NX_BOOL_TRUE)),
              "05 Mar 2024 09:07:03 TRUE");
    EXPECT_EQ(Printed(nxValueWrapper<unsigned>(7U), nxDoubleValueWrapper(0.5)), "7 0.5");
    EXPECT_EQ(Printed(nxDecimal::GetNullDecimal(), nxValueWrapper<int>(), nxDoubleValueWrapper()), "");
    EXPECT_EQ(nxStringHelper::GetAsString(std::vector<bool>{true}[0]), "TRUE");
}

TEST(nxStringHelper, ReadingLeavesTheTargetAloneWhenItFails)
{
    const auto check = [](const auto& before, const char* bad, const char* good, const auto& after, auto... separator)
    {
        auto value = before;
        for (const char* const text : {bad, static_cast<const char*>(nullptr)})
        {
            EXPECT_EQ(nxStringHelper::SetFromString(text, value, separator...), invalid) << bad;
            EXPECT_EQ(value, before) << bad;
            if constexpr (requires { nxStringHelper::SetFromStringExact(text, value, separator...); })
            {
                EXPECT_EQ(nxStringHelper::SetFromStringExact(text, value, separator...), invalid) << bad;
                EXPECT_EQ(value, before) << bad;
            }
        }
        EXPECT_EQ(nxStringHelper::SetFromString(good, value, separator...), ok) << good;
        EXPECT_EQ(value, after) << good;
    };
    check(nxDecimal(7, 0), "1,x", "1,25", nxDecimal("1.25", '.'), ',');
    check(nxMoney(nxDecimal(7, 0), "USD"), "1.25", "1.25 EUR", nxMoney(nxDecimal("1.25", '.'), "EUR"), '.');
    check(nxCurrency("USD"), "eur", "EUR", nxCurrency("EUR"));
    check(nxRatio(7, 5), "1/0", "-2/4", nxRatio(-1, 2));
    check(nxDate(2024, 2, 29), "20230229", "20230228", nxDate(2023, 2, 28));
    check(nxTime(1, 2, 3), "24:00:00", "23:59:59", nxTime(23, 59, 59));
    check(nxDateTimeSpan(1, 0), "P1M", "PT60M", nxDateTimeSpan(0, 3'600'000'000'000));
    check(nxBoolEnum(NX_BOOL_TRUE), "SURELY_NOT", "FALSE", nxBoolEnum(NX_BOOL_FALSE));
    // A name of another class: refused, and stored as that class's setter stores it, but not by the exact reader.
    nxBoolEnum flag(NX_BOOL_TRUE);
    EXPECT_EQ(nxStringHelper::SetFromStringExact("CASE_SENSITIVE", flag), invalid);
    EXPECT_EQ(flag, NX_BOOL_TRUE);
    EXPECT_EQ(nxStringHelper::SetFromString("CASE_SENSITIVE", flag), invalid);
    EXPECT_TRUE(flag.IsUndefined());
}

TEST(nxStringHelper, NoTextIsReadAsAnEmptyOne)
{
    const char* const none = nullptr;
    std::string text = "old";
    EXPECT_EQ(nxStringHelper::SetFromString(none, text), ok);
    EXPECT_EQ(text, "");
    EXPECT_EQ(nxStringHelper::SetFromString("new", text), ok);
    EXPECT_EQ(text, "new");
    unsigned number = 7;
    unsigned char byte = 7;
    bool flag = true;
    double real = 2.5;
    for (const nxErrorEnum& error :
         {nxStringHelper::SetFromString(none, number), nxStringHelper::SetFromStringView(none, number),
          nxAlgorithm::SetFromHex(none, byte), nxStringHelper::SetFromString(none, flag),
          nxStringHelper::SetFromString(none, real, '.'), nxDecimal().SetFromString(none, '.'),
          nxMoney().SetFromString(none, '.'), nxDate().SetFromString(none), nxTime().SetFromString(none)})
        EXPECT_EQ(error, invalid);
    EXPECT_TRUE(nxDecimal(none, '.').IsNull() && nxMoney(nxDecimal(7, 0), none).IsNull());
    EXPECT_EQ(nxStringValue().SetFromString(none), ok);
}

TEST(nxStringHelper, PadsButNeverCuts)
{
    const std::tuple<const char*, unsigned, const char*, const char*> rows[] = {
        {"123", 5, "00123", "12300"}, {"123", 3, "123", "123"}, {"123", 2, "123", "123"}, {"", 2, "00", "00"}};
    for (const auto& [text, width, padsLeft, padsRight] : rows)
    {
        std::string left = text, right = text;
        nxStringHelper::PadLeft(left, width, '0');
        nxStringHelper::PadRight(right, width, '0');
        EXPECT_EQ(left, padsLeft);
        EXPECT_EQ(right, padsRight);
    }
    std::string itsOwnFill = "ab";
    nxStringHelper::PadLeft(itsOwnFill, 40, itsOwnFill[1]);
    EXPECT_EQ(itsOwnFill, std::string(38, 'b').append("ab"));
}

TEST(nxStringHelper, TrimsFourCharactersAndNoOthers)
{
    const std::string rows[][3] = {
        // text, trimmed on the right, on the left
        {" \t\n\r", "", ""},
        {"\n a b \r", "\n a b", "a b \r"},
        {"\fa\f ", "\fa\f", "\fa\f "},
        {std::string(" \0 ", 3), std::string(" \0", 2), std::string("\0 ", 2)},
    };
    for (const auto& [text, trimmedRight, trimmedLeft] : rows)
    {
        std::string right = text, left = text;
        nxStringHelper::RightTrim(right);
        nxStringHelper::LeftTrim(left);
        EXPECT_EQ(right, trimmedRight);
        EXPECT_EQ(left, trimmedLeft);
        EXPECT_EQ(nxStringHelper::GetRightTrimmed(text), trimmedRight);
        EXPECT_EQ(nxStringHelper::GetLeftTrimmed(text), trimmedLeft);
    }
    std::string zeros = "1.500";
    nxStringHelper::RightTrim(zeros, "0");
    nxStringHelper::RightTrim(zeros, "");
    EXPECT_EQ(zeros, "1.5");
    nxStringHelper::RightTrim(zeros, zeros);
    EXPECT_EQ(zeros, "");
}

TEST(nxStringHelper, ReplacesEveryHitOnce)
{
    const char* const rows[][4] = {{"aaa", "a", "aa", "aaaaaa"}, {"aaa", "aa", "b", "ba"}, {"abc", "", "x", "abc"},
                                   {"abcabc", "bc", "", "aa"},   {"", "a", "b", ""},       {"aXb", "X", "XX", "aXXb"}};
    for (const auto& [before, what, with, after] : rows)
    {
        std::string text = before;
        nxStringHelper::Replace(text, what, with);
        EXPECT_EQ(text, after) << before;
    }
    std::string itself = "ab", doubled = "xyx", large(1'000'000, 'a');
    nxStringHelper::Replace(itself, itself, itself);
    EXPECT_EQ(itself, "ab");
    nxStringHelper::Replace(doubled, std::string("x"), doubled);
    EXPECT_EQ(doubled, "xyxyxyx");
    nxStringHelper::Replace(large, "a", "bc");
    EXPECT_EQ(large.size(), 2'000'000U);
}

TEST(nxStringHelper, StripsAndChangesCase)
{
    std::string text = ",1,,000,", mixed = "aZ09_\xE4\xC4{[@`";
    nxStringHelper::Strip(text, ',');
    EXPECT_EQ(text, "1000");
    nxStringHelper::ToUpper(mixed);
    EXPECT_EQ(mixed, "AZ09_\xE4\xC4{[@`");
    nxStringHelper::ToLower(mixed);
    EXPECT_EQ(mixed, "az09_\xE4\xC4{[@`");
    for (int c = CHAR_MIN; c <= CHAR_MAX; ++c)
    {
        EXPECT_EQ(nxStringHelper::IsUppercase(static_cast<char>(c)), c >= 'A' && c <= 'Z') << c;
        EXPECT_EQ(nxStringHelper::IsLowercase(static_cast<char>(c)), c >= 'a' && c <= 'z') << c;
    }
    const std::pair<const char*, const char*> names[] = {
        {"orderId", "ORDER_ID"}, {"ABCValue", "ABCVALUE"}, {"a1B", "A1B"}, {"aBcD", "A_BC_D"}, {"A", "A"},
        {"order_id", "ORDER_ID"}};
    for (const auto& [name, formatted] : names)
        EXPECT_EQ(nxStringHelper::GetUppercaseAndUnderscoreFormatted(name), formatted);
}

TEST(nxStringHelper, ComparesWithAndWithoutCase)
{
    const std::tuple<std::string, std::string, bool, bool, int, int> rows[] = {
        {"abc", "abc", true, true, 0, 0},
        {"abc", "ABC", false, true, 1, 0},
        {"abc", "abcd", false, false, -1, -1},
        {"a", "B", false, false, 1, -1},
        {"\xE4", "a", false, false, 1, 1},
        {"\xE4", "\xC4", false, false, 1, 1},
        {"_", "a", false, false, -1, -1},
        {"_", "A", false, false, 1, -1},
        {"", "", true, true, 0, 0},
        {std::string("a\0b", 3), std::string("a\0c", 3), false, false, 0, 0},
    };
    const nxCaseSensitivityEnum caseSensitive(CASE_SENSITIVE), caseInsensitive(CASE_INSENSITIVE), neither;
    for (const auto& [a, b, same, sameButForCase, order, orderButForCase] : rows)
    {
        SCOPED_TRACE(a + " and " + b);
        const auto sign = [](int number) { return (number > 0) - (number < 0); };
        EXPECT_EQ(nxStringHelper::Compare(a, b, caseSensitive), same);
        EXPECT_EQ(nxStringHelper::Compare(a, b, caseInsensitive), sameButForCase);
        EXPECT_EQ(nxStringHelper::CompareAlphabetically(a, b, caseSensitive), order);
        EXPECT_EQ(sign(nxStringHelper::CompareAlphabetically(a, b, caseInsensitive)), orderButForCase);
        EXPECT_EQ(nxStringHelper::CompareAlphabetically(b, a, caseSensitive), -order);
    }
    EXPECT_FALSE(nxStringHelper::Compare("a", "a", neither));
    EXPECT_EQ(nxStringHelper::CompareAlphabetically("a", "b", neither), 0);
}
