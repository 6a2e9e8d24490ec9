#include "core/numeric/nxDecimal.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
nxDecimal Parts(long long mantissa, unsigned char places)
{
    return nxDecimal::ConstructFromValueAndDecimalPlaces(mantissa, places);
}

bool IsSame(const nxDecimal& a, const nxDecimal& b)
{
    return a.GetValue() == b.GetValue() && a.GetDecimalPlaces() == b.GetDecimalPlaces() && a.IsNull() == b.IsNull() &&
           a.IsNoChange() == b.IsNoChange();
}
}  // namespace

TEST(nxDecimal, ReadsTextAndPrintsItBack)
{
    struct Row
    {
        const char* text;
        long long mantissa;
        unsigned char places;
        const char* printed;
    };
    const Row rows[] = {
        {"12.340", 12340, 3, "12.340"},
        {"-0.05", -5, 2, "-0.05"},
        {".5", 5, 1, "0.5"},
        {"5.", 5, 0, "5"},
        {"+7", 7, 0, "7"},
        {"-9223372036854775808", INT64_MIN, 0, "-9223372036854775808"},
        {"1234567.1234567", 12345671234567, 7, "1234567.1234567"},
        {"0.000000000000123", 123, 15, "0.000000000000"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.text);
        nxDecimal value;
        EXPECT_TRUE(value.SetFromString(row.text, '.').IsOK());
        EXPECT_TRUE(IsSame(value, Parts(row.mantissa, row.places))) << value;
        EXPECT_EQ(value.GetAsString('.'), row.printed);
    }
}

TEST(nxDecimal, RefusesWhatIsNoNumber)
{
    for (const char* text :
         {"", "-", "+", ".", "-.", "1.2.3", "1a", "--1", "1-", " 1", "1 ", "1,5", "12345678.1234.5678"})
    {
        SCOPED_TRACE(text);
        nxDecimal value = Parts(77, 1);
        EXPECT_EQ(value.SetFromString(text, '.'), NX_ERR_INVALID_PARAMETER);
        EXPECT_TRUE(IsSame(value, Parts(77, 1)));
        EXPECT_TRUE(nxDecimal(text, '.').IsNull());
    }
}

TEST(nxDecimal, RoundsToMultiplesOfTheIncrement)
{
    struct Row
    {
        const char* value;
        const char* increment;
        const char* down;
        const char* up;
        const char* nearest;
        const char* modified;
    };
    const Row rows[] = {
        {"-1.23", "0.05", "-1.25", "-1.20", "-1.25", "-1.25"},
        {"-1.225", "0.05", "-1.25", "-1.20", "-1.25", "-1.20"},
        {"99.9", "10", "90", "100", "100", "100"},
        {"1.00", "0.05", "1.00", "1.00", "1.00", "1.00"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.value);
        const auto rounded = [&row](nxEnumValue method)
        {
            nxDecimal value(row.value, '.');
            value.Round(nxDecimal(row.increment, '.'), nxRoundingMethodEnum(method));
            return value.GetAsString('.');
        };
        EXPECT_EQ(rounded(NX_ROUNDING_METHOD_DOWN), row.down);
        EXPECT_EQ(rounded(NX_ROUNDING_METHOD_UP), row.up);
        EXPECT_EQ(rounded(NX_ROUNDING_METHOD_NEAREST), row.nearest);
        EXPECT_EQ(rounded(NX_ROUNDING_METHOD_MODIFIED_NEAREST), row.modified);
    }
}

TEST(nxDecimal, ComputesAcrossScales)
{
    EXPECT_EQ((nxDecimal("1.0", '.') + nxDecimal("0.05", '.')).GetAsString('.'), "1.05");
    EXPECT_EQ((nxDecimal("1.5", '.') * nxDecimal("1.5", '.')).GetAsString('.'), "2.3");
    EXPECT_EQ((nxDecimal(7, 0) / nxDecimal(2, 0)).GetAsString('.'), "4");
    EXPECT_EQ(nxDecimal(5, 2).GetAsString('.'), "5.00");
    EXPECT_EQ(nxDecimal(-1.25, 1).GetAsString('.'), "-1.2");
    EXPECT_EQ(nxDecimal(1, 3, 2).GetAsString('.'), "0.33");
    EXPECT_EQ(nxDecimal("1.50", '.'), nxDecimal("1.5", '.'));
    EXPECT_LT(nxDecimal::GetNullDecimal(), nxDecimal());
    EXPECT_LT(nxDecimal::GetNullDecimal(), nxDecimal::GetNoChangeDecimal());
    nxDecimal x("1.5", '.');
    EXPECT_EQ((-x).GetAsString('.'), "-1.5");
    EXPECT_EQ(x.GetAsString('.'), "-1.5");
}
