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

nxDecimal D(const char* text)
{
    nxDecimal number;
    EXPECT_TRUE(number.SetFromStringExact(text, '.').IsOK());
    return number;
}
}  // namespace

TEST(nxPriceConverter, TextsOfAPrice)
{
    const nxPriceConverter& converter = *nxPriceConverterHelper::Get("FRACTION:32");
    const std::pair<nxDecimal, const char*> rows[] = {
        {D("110.51"), "110'16,32"},
        {nxDecimal::ConstructFromValueAndDecimalPlaces(INT64_MIN, 18), "-9'07,147905179352825856"},
        {nxDecimal::ConstructFromValueAndDecimalPlaces(1, 19), "0,000000000000"},  // not converted
        {nxDecimal::GetNullDecimal(), ""},
        {nxDecimal::GetNoChangeDecimal(), ""},
    };
    for (const auto& [price, text] : rows)
    {
        std::string plain = "at ", log = "at ";
        converter.AppendAsString(plain, price, ',');
        converter.AppendAsLogString(log, price, ',');
        EXPECT_EQ(plain, std::string("at ").append(text));
        EXPECT_EQ(log, "at " + (price.IsValid() ? text : price.GetAsLogString(',')));
        EXPECT_EQ(converter.GetAsString(price, ',').append(converter.GetAsLogString(price, ',')),
                  plain.substr(3) + log.substr(3));
    }
}

TEST(nxPriceConverter, AFailureLeavesThePriceAsItWas)
{
    for (const char* const text : {"110'32", "110'5", "99999999999999999999'00"})
    {
        nxDecimal price(77, 1);
        EXPECT_FALSE(nxPriceConverterHelper::Get("FRACTION:32")->SetFromString(text, price, '.').IsOK());
        EXPECT_TRUE(price.EqualsExactly(nxDecimal(77, 1)));
    }
}

TEST(nxPriceConverter, ANotationIsMadeOnce)
{
    const nxPriceConverter* const kept = nxPriceConverterHelper::Get("MODIFIED:32/8+-");
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(kept, nxPriceConverterHelper::Get("MODIFIED:32/8+-"));
    EXPECT_EQ(nxPriceConverterHelper::Get("MODIFIED:32/16"), nullptr);
    EXPECT_EQ(kept->GetNotation(), Modified(32, 8, 1, Modified::SubDigits::Numerals, '-').GetNotation());
    EXPECT_EQ(nxDecimalPriceConverter(3, 0, D("0.00250")).GetNotation(), "DECIMAL:3/0.0025");
}

TEST(nxPriceConverter, OneThatIsNotValidReadsNothing)
{
    const Modified collides(32, 16, 1, Modified::SubDigits::CutDecimals);
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
