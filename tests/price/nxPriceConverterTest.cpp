// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxPriceConverter.h"

#include "core/price/nxDecimalPriceConverter.h"
#include "core/price/nxFractionalPriceConverter.h"
#include "core/price/nxModifiedFractionalPriceConverter.h"
#include "core/price/nxPriceConverterHelper.h"
#include "tests/support/nxTest.h"

namespace
{
typedef nxModifiedFractionalPriceConverter Modified;
constexpr auto cut = Modified::SubDigits::CutDecimals;
constexpr auto numerals = Modified::SubDigits::Numerals;

nxDecimal D(const char* text)
{
    nxDecimal number;
    EXPECT_TRUE(number.SetFromStringExact(text, '.').IsOK());
    return number;
}
}  // namespace

TEST(nxPriceConverter, ReadsAText)
{
    struct Row
    {
        const char* notation;
        const char* text;
        const char* price;  // or the error
    };
    constexpr const char* malformed = "NX_ERR_INVALID_PARAMETER";
    constexpr const char* outside = "NX_ERR_VALUE_OUT_OF_RANGE";
    const Row rows[] = {
        {"FRACTION:32", "115'09", "115.28125"},
        {"FRACTION:32", "+115'09", "115.28125"},
        {"FRACTION:32", "-0'08", "-0.25000"},
        {"FRACTION:32", "-0'00", "0.00000"},
        {"FRACTION:32", "110'16.32", "110.51000"},
        {"FRACTION:32", "110'16.320000000000000000000", "110.51000"},
        {"FRACTION:32", "110'00.000000000000032", "110.000000000000001"},
        {"FRACTION:32", "110'00.00000000000003", outside},  // 19 places
        {"FRACTION:32", "110'31.99", "110.9996875"},
        {"FRACTION:32", "92233720368547'24", "92233720368547.75000"},
        {"FRACTION:32", "92233720368548'00", outside},
        {"FRACTION:32", "-92233720368547'24.25856", "-92233720368547.75808"},
        {"FRACTION:32", "92233720368547'24.25856", outside},
        {"FRACTION:32", "99999999999999999999'00", outside},
        {"FRACTION:32", "99999999999999999999'0", malformed},
        {"FRACTION:32", "110'32", outside},
        {"FRACTION:32", "110'32.5", outside},
        {"FRACTION:32", "110'16.", malformed},
        {"FRACTION:32", "110'16.5.", malformed},
        {"FRACTION:32", "110'16,5", malformed},
        {"FRACTION:32", "110'5", malformed},
        {"FRACTION:32", "110'160", malformed},
        {"FRACTION:32", "110'16+", malformed},
        {"FRACTION:32", "110", malformed},
        {"FRACTION:32", "'16", malformed},
        {"FRACTION:32", "-'16", malformed},
        {"FRACTION:32", "--1'16", malformed},
        {"FRACTION:32", "110''16", malformed},
        {"FRACTION:32", " 110'16", malformed},
        {"FRACTION:32", "110-16", malformed},
        {"FRACTION:32", "", malformed},
        {"FRACTION:32-", "-110-16", "-110.50000"},
        {"FRACTION:32.", "100.21.5", "100.671875"},
        {"FRACTION:8", "498'2", "498.250"},
        {"FRACTION:1024", "1'0512", "1.5000000000"},
        {"MODIFIED:32/4", "117'317", "117.9921875"},
        {"MODIFIED:32/4", "110'16", "110.5000000"},
        {"MODIFIED:32/4", "12345678'162", "12345678.5078125"},
        {"MODIFIED:32/4", "110'16.32", "110.5100000"},
        {"MODIFIED:32/4", "110'163", outside},
        {"MODIFIED:32/4", "110'320", outside},
        {"MODIFIED:32/4", "110'5", malformed},
        {"MODIFIED:32/4", "110'16+", malformed},
        {"MODIFIED:32/4", "110'165.5", malformed},
        {"MODIFIED:32/2", "108'185", "108.578125"},
        {"MODIFIED:32/8", "104'282", "104.88281250"},
        {"MODIFIED:32/16/2", "104'2806", "104.876953125"},
        {"MODIFIED:32/8+-", "99-032", "99.10156250"},
        {"MODIFIED:32/8+-", "99-03+", "99.10937500"},
        {"MODIFIED:32/8+-", "99-034", "99.10937500"},
        {"MODIFIED:32/8+-", "99-036", "99.11718750"},
        {"MODIFIED:32/8+-", "99-038", outside},
        {"MODIFIED:32/5+", "99'03+", outside},  // no half
        {"DECIMAL:2", "1137", "1137.00"},
        {"DECIMAL:2", "1137.125", "1137.125"},
        {"DECIMAL:2*-2", "1137.00", "113700"},
        {"DECIMAL:2*-2", "0.00123456789012345678", "0.123456789012345678"},
        {"DECIMAL:2*2", "922337203685477580700", outside},
        {"DECIMAL:0*-2", "1137", "113700"},
        {"DECIMAL:3/0.0025", "98.862", "98.8625"},
        {"DECIMAL:3/0.0025", "-98.867", "-98.8675"},
        {"DECIMAL:3/0.0025", "98.8620", "98.8620"},
        {"DECIMAL:3/0.0025", "98.863", outside},
        {"DECIMAL:3/0.0025", "98.86", malformed},
        {"DECIMAL:3/0.0025", "9999999999999999999999.86", malformed},
        {"DECIMAL:3/0.0025", "9999999999999999999999.862", outside},
        {"DECIMAL:0/2.5", "12", "12.5"},
        {"DECIMAL:0/2.5", "12.0", "12.0"},
        {"DECIMAL:1*-1/2.5", "12.3", outside},
        {"DECIMAL:1*-1/2.5", "12.2", "122.5"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(std::string(row.notation).append(" ").append(row.text));
        const nxPriceConverter* const converter = nxPriceConverterHelper::Get(row.notation);
        ASSERT_NE(converter, nullptr);
        nxDecimal price(77, 1);
        const nxErrorEnum error = converter->SetFromString(row.text, price, '.');
        EXPECT_EQ(error.IsOK() ? price.GetAsExactString('.') : error.GetShortDescription(), row.price);
        EXPECT_EQ(!error.IsOK(), price.EqualsExactly(nxDecimal(77, 1)));
    }
}

TEST(nxPriceConverter, WritesAPrice)
{
    struct Row
    {
        const char* notation;
        nxDecimal price;
        const char* text;
    };
    const nxDecimal fine = nxDecimal::ConstructFromValueAndDecimalPlaces(1, 19);
    const Row rows[] = {
        {"FRACTION:32", D("110.5100"), "110'16.32"},
        {"FRACTION:32", D("-0.25"), "-0'08"},
        {"FRACTION:32", D("-0"), "0'00"},
        {"FRACTION:32", D("0.000000000000000001"), "0'00.000000000000000032"},
        {"FRACTION:32", nxDecimal::ConstructFromValueAndDecimalPlaces(INT64_MIN, 18), "-9'07.147905179352825856"},
        {"FRACTION:32", fine, "0.000000000000"},
        {"MODIFIED:32/4", D("9223372036854775807"), "9223372036854775807'000"},
        {"MODIFIED:32/4", D("110.515625000000"), "110'165"},
        {"MODIFIED:32/4", D("110.51953125"), "110'16.625"},
        {"MODIFIED:32/8+-", D("-99.109375"), "-99-03+"},
        {"DECIMAL:2", D("1.5"), "1.50"},
        {"DECIMAL:2", D("1.500"), "1.50"},
        {"DECIMAL:2", D("1.12345678901234567"), "1.12345678901234567"},
        {"DECIMAL:0", D("5"), "5"},
        {"DECIMAL:2*-2", D("113700"), "1137.00"},
        {"DECIMAL:18*-18", D("-0.000000000000000001"), "-0.000000000000000000000000000000000001"},
        {"DECIMAL:0*18", D("-9223372036854775807"), "-9223372036854775807000000000000000000"},
        {"DECIMAL:0*18", D("0"), "0"},
        {"DECIMAL:3/0.0025", D("98.8625"), "98.862"},
        {"DECIMAL:3/0.0025", D("98.86"), "98.860"},
        {"DECIMAL:3/0.0025", D("98.862"), "98.8620"},
        {"DECIMAL:3/0.0025", D("98.86251"), "98.86251"},
        {"DECIMAL:0/2.5", D("12.5"), "12"},
        {"DECIMAL:0/2.5", D("12"), "12.0"},
        {"DECIMAL:3/0.0025", nxDecimal::GetNullDecimal(), ""},
        {"MODIFIED:32/2", nxDecimal::GetNoChangeDecimal(), ""},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(std::string(row.notation).append(" ").append(row.text));
        const nxPriceConverter* const converter = nxPriceConverterHelper::Get(row.notation);
        ASSERT_NE(converter, nullptr);
        std::string text = "at ", logText = "at ";
        converter->AppendAsString(text, row.price, '.');
        converter->AppendAsLogString(logText, row.price, '.');
        EXPECT_EQ(text, std::string("at ").append(row.text));
        EXPECT_EQ(logText, row.price.IsValid() ? text : "at " + row.price.GetAsLogString('.'));
    }
    EXPECT_EQ(nxPriceConverterHelper::Get("FRACTION:32")->GetAsString(D("110.51"), ','), "110'16,32");
}

TEST(nxPriceConverter, ANotationMakesTheConverterThatItNames)
{
    struct Row
    {
        const char* notation;
        const char* tick;  // or the error
    };
    constexpr const char* malformed = "NX_ERR_INVALID_PARAMETER";
    constexpr const char* impossible = "NX_ERR_VALUE_OUT_OF_RANGE";
    const Row rows[] = {
        {"DECIMAL:2", "0.01"},
        {"DECIMAL:2*-2", "1"},
        {"DECIMAL:0*-2", "100"},
        {"DECIMAL:1*-1/0.25", impossible},  // 0.025 is below 0.1
        {"DECIMAL:1*-1/2.5", "2.5"},
        {"DECIMAL:3/0.0025", "0.0025"},
        {"DECIMAL:3/0.00250", malformed},
        {"DECIMAL:3/0.0009", impossible},
        {"DECIMAL:3/-1", impossible},
        {"DECIMAL:3/99999999999999999999", impossible},
        {"DECIMAL:3/x", malformed},
        {"DECIMAL:3/", malformed},
        {"DECIMAL:19", impossible},
        {"DECIMAL:999", impossible},
        {"DECIMAL:10*9", impossible},
        {"DECIMAL:02", malformed},
        {"DECIMAL:2*0", malformed},
        {"DECIMAL:", malformed},
        {"FRACTION:32", "0.03125"},
        {"FRACTION:32'", malformed},
        {"FRACTION:32--", malformed},
        {"FRACTION:32+", impossible},
        {"FRACTION:1", impossible},
        {"FRACTION:3", impossible},
        {"FRACTION:2048", impossible},
        {"FRACTION:625 ", "0.0016"},
        {"fraction:32", malformed},
        {"", malformed},
        {"MODIFIED:32/4", "0.0078125"},
        {"MODIFIED:32/4/1", malformed},
        {"MODIFIED:32/4/2", "0.0078125"},
        {"MODIFIED:32/4/3", impossible},
        {"MODIFIED:32/16", impossible},  // 1/16 and 3/32 would both be 0
        {"MODIFIED:32/16/2", "0.001953125"},
        {"MODIFIED:32/16+", impossible},
        {"MODIFIED:32/64/2", impossible},
        {"MODIFIED:32/1", impossible},
        {"MODIFIED:32/0", impossible},
        {"MODIFIED:32/8+-", "0.00390625"},
        {"MODIFIED:32/8-+", malformed},
        {"MODIFIED:32", malformed},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.notation);
        std::unique_ptr<const nxPriceConverter> converter;
        const nxErrorEnum error = nxPriceConverterHelper::Create(row.notation, converter);
        EXPECT_EQ(error.IsOK() ? converter->GetTickIncrement().GetAsExactString('.') : error.GetShortDescription(),
                  row.tick);
        const nxPriceConverter* const kept = nxPriceConverterHelper::Get(row.notation);
        EXPECT_EQ(kept != nullptr, error.IsOK());
        EXPECT_EQ(kept, nxPriceConverterHelper::Get(row.notation));
        EXPECT_TRUE(kept == nullptr || (kept->IsValid() && kept->GetNotation() == row.notation));
    }
    EXPECT_EQ(Modified(32, 8, 1, numerals, '-').GetNotation(), "MODIFIED:32/8+-");
    EXPECT_EQ(nxDecimalPriceConverter(3, 0, D("0.00250")).GetNotation(), "DECIMAL:3/0.0025");
}

TEST(nxPriceConverter, OneThatIsNotValidReadsNothing)
{
    const Modified collides(32, 16, 1, cut);
    const nxDecimalPriceConverter noTick(2, 0, nxDecimal::GetNoChangeDecimal());
    const nxFractionalPriceConverter noMark(32, '5');
    for (const nxPriceConverter* const converter :
         {static_cast<const nxPriceConverter*>(&collides), static_cast<const nxPriceConverter*>(&noTick),
          static_cast<const nxPriceConverter*>(&noMark)})
    {
        nxDecimal price(77, 1);
        EXPECT_FALSE(converter->IsValid());
        EXPECT_EQ(converter->SetFromString("1", price, '.'), nxErrorEnum(NX_ERR_NOT_INITIALISED));
        EXPECT_EQ(converter->GetAsString(price, '.'), "77.0");
        EXPECT_TRUE(converter->GetTickIncrement().IsNull());
        EXPECT_FALSE(converter->IsOnGrid(price));
        EXPECT_EQ(converter->GetNotation(), "");
    }
}

TEST(nxPriceConverter, NotationsOfDefinitionsAreThoseThatAreCertain)
{
    std::string notation = "kept";
    for (const char* const unknown : {"C", "K", "L", "W", "T4", "8", "R0", "", "h"})
        EXPECT_EQ(nxPriceConverterHelper::GetNotationOfIndicator(unknown, notation), nxErrorEnum(NX_ERR_NOT_FOUND));
    EXPECT_EQ(nxPriceConverterHelper::GetNotationOfFractions(32, 0, 3, notation), nxErrorEnum(NX_ERR_NOT_FOUND));
    EXPECT_EQ(notation, "kept");
    EXPECT_TRUE(nxPriceConverterHelper::GetNotationOfFractions(32, 8, 3, notation).IsOK());
    EXPECT_EQ(notation, "MODIFIED:32/8");
    for (const char known : std::string_view("01234567HQESTXOFUVYZR"))
    {
        EXPECT_TRUE(nxPriceConverterHelper::GetNotationOfIndicator(std::string_view(&known, 1), notation).IsOK());
        EXPECT_NE(nxPriceConverterHelper::Get(notation), nullptr) << notation;
    }
}
