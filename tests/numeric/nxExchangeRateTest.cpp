// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/nxExchangeRateConverter.h"

#include "tests/support/nxTest.h"

namespace
{
using At = nxExchangeRateConverter::At;

const nxTimeStamp noon(1'700'000'000, 0);
const nxRoundingMethodEnum down(NX_ROUNDING_METHOD_DOWN), nearest(NX_ROUNDING_METHOD_NEAREST);

nxExchangeRate Rate(const char* pair, const char* bid, const char* ask, unsigned units = 1, nxTimeStamp at = noon)
{
    const std::string_view both(pair);
    nxExchangeRate rate;
    EXPECT_TRUE(rate.Set(nxCurrency(both.substr(0, 3)), nxCurrency(both.substr(3)), nxDecimal(bid, '.'),
                         nxDecimal(ask, '.'), at, units)
                    .IsOK())
        << pair;
    return rate;
}

nxExchangeRateConverter Converter(std::initializer_list<nxExchangeRate> rates,
                                  nxDateTimeSpan age = nxDateTimeSpan(1, 0))
{
    nxExchangeRateList list;
    for (const nxExchangeRate& rate : rates)
        EXPECT_TRUE(list.Set(rate).IsOK());
    return {std::make_shared<nxExchangeRateList>(list), {nxCurrency("EUR"), nxCurrency("USD")}, age};
}

// The result, or the error's name when the result was left alone.
std::string Converted(const nxExchangeRateConverter& converter, const char* amount, const char* target, At at,
                      const nxRoundingMethodEnum& method = nearest, nxTimeStamp now = noon)
{
    nxMoney money, result(nxDecimal(7, 0), "QQQ");
    EXPECT_TRUE(money.SetFromStringExact(amount, '.').IsOK() || *amount == '\0');
    const nxErrorEnum error = converter.Convert(money, nxCurrency(target), at, method, now, result);
    EXPECT_TRUE(error.IsOK() || result == nxMoney(nxDecimal(7, 0), "QQQ"));
    return error.IsOK() ? result.GetAsLogString('.') : error.GetShortDescription();
}
}  // namespace

TEST(nxExchangeRate, IsPositiveAndBetweenTwoCurrenciesOrRefused)
{
    const nxDecimal one(1, 0), two(2, 0), none = nxDecimal::GetNullDecimal(), most = nxDecimal::GetMaximumDecimal();
    const std::tuple<const char*, nxDecimal, nxDecimal, unsigned, nxErrorEnum> rows[] = {
        {"USD", one, one, 1'000'000, nxErrorEnum()},
        {"USD", two, one, 1, nxErrorEnum(NX_ERR_INVALID_PARAMETER)},
        {"USD", nxDecimal(0, 0), one, 1, nxErrorEnum(NX_ERR_INVALID_PARAMETER)},
        {"EUR", one, two, 1, nxErrorEnum(NX_ERR_INVALID_PARAMETER)},
        {"", one, two, 1, nxErrorEnum(NX_ERR_OBJECT_IS_NULL)},
        {"USD", one, none, 1, nxErrorEnum(NX_ERR_OBJECT_IS_NULL)},
        {"USD", one, two, 0, nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE)},
        {"USD", one, two, 1'000'001, nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE)},
        {"USD", one, most, 1, nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE)},
        {"USD", nxDecimal::ConstructFromValueAndDecimalPlaces(1, 19), one, 1, nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE)},
    };
    for (const auto& [quote, bid, ask, units, error] : rows)
    {
        nxExchangeRate rate = Rate("USDJPY", "119.25", "119.65");
        EXPECT_EQ(rate.Set(nxCurrency("EUR"), nxCurrency(quote), bid, ask, noon, units), error);
        EXPECT_EQ(rate == Rate("USDJPY", "119.25", "119.65"), !error.IsOK());
    }
    const nxExchangeRate rate = Rate("JPYUSD", "0.6712", "0.6716", 100);
    EXPECT_EQ(Streamed(rate) + Streamed(nxExchangeRate()), "100 JPY = 0.6712 .. 0.6716 USDNULL");
    EXPECT_EQ(rate.GetBidRatio(), nxRatio(839, 125'000));
    EXPECT_EQ(rate.GetMidRatio(), nxRatio(3357, 500'000));
    EXPECT_TRUE(nxExchangeRate().GetAskRatio().IsNull() && nxExchangeRate().GetMidRatio().IsNull());
    EXPECT_TRUE(Rate("EURUSD", "1.000000000000000001", "1.1", 17).GetBidRatio().IsNull());
}

TEST(nxExchangeRateList, HasOneRateForAPairInEitherOrder)
{
    nxExchangeRateList list;
    EXPECT_EQ(list.Set(nxExchangeRate()), NX_ERR_OBJECT_IS_NULL);
    for (const nxExchangeRate& rate :
         {Rate("USDJPY", "119.25", "119.65"), Rate("EURUSD", "1.08", "1.09"), Rate("USDEUR", "0.9", "0.91")})
        EXPECT_TRUE(list.Set(rate).IsOK());
    EXPECT_EQ(list.GetSize(), 2u);
    const nxCurrency eur("EUR"), usd("USD");
    nxExchangeRate rate;
    bool isInverse = false;
    EXPECT_TRUE(list.Find(eur, usd, rate, isInverse).IsOK() && isInverse && rate == Rate("USDEUR", "0.9", "0.91"));
    EXPECT_TRUE(list.Find(usd, eur, rate, isInverse).IsOK() && !isInverse);
    EXPECT_TRUE(list.Remove(eur, usd).IsOK());
    EXPECT_EQ(list.Remove(usd, eur), NX_ERR_NOT_FOUND);
    EXPECT_EQ(list.Find(eur, usd, rate, isInverse), NX_ERR_NOT_FOUND);
    EXPECT_EQ(list.Find(nxCurrency(), usd, rate, isInverse), NX_ERR_OBJECT_IS_NULL);
    EXPECT_EQ(list.Remove(nxCurrency(), usd), NX_ERR_OBJECT_IS_NULL);
}

TEST(nxExchangeRateConverter, DealsAtTheMarketsPriceAndRoundsOnce)
{
    const nxExchangeRateConverter converter =
        Converter({Rate("EURUSD", "1.0850", "1.0852"), Rate("JPYGBP", "0.5121", "0.5125", 100),
                   Rate("USDAUD", "1.0485", "1.0535"), Rate("USDJPY", "119.25", "119.65"),
                   Rate("DEMEUR", "0.511291881196", "0.511291881196")});
    const std::tuple<const char*, const char*, At, const char*> rows[] = {
        {"100 EUR", "USD", At::Dealing, "108.50 USD"},
        {"-100 EUR", "USD", At::Dealing, "-108.52 USD"},
        {"100 USD", "EUR", At::Dealing, "92.15 EUR"},  // by 1.0852
        {"-100 USD", "EUR", At::Dealing, "-92.17 EUR"},
        {"100 EUR", "USD", At::Mid, "108.51 USD"},
        {"10000 JPY", "GBP", At::Dealing, "51.21 GBP"},
        {"51.25 GBP", "JPY", At::Dealing, "10000 JPY"},
        {"1000000 JPY", "AUD", At::Dealing, "8763.06 AUD"},  // 1.0485 / 119.65
        {"-1000000 JPY", "AUD", At::Dealing, "-8834.38 AUD"},
        {"1.95583 DEM", "EUR", At::Dealing, "1.00 EUR"},
        {"0.01 USD", "JPY", At::Mid, "1 JPY"},
        {"92233720368547758.07 EUR", "USD", At::Mid, "NX_ERR_VALUE_OUT_OF_RANGE"},
        {"92233720368547758.07 USD", "EUR", At::Dealing, "84992370409645925.24 EUR"},
        {"1.23456 EUR", "EUR", At::Dealing, "1.23456 EUR"},
        {"1 EUR", "CAD", At::Dealing, "NX_ERR_NOT_FOUND"},
        {"1 GBP", "AUD", At::Dealing, "NX_ERR_NOT_FOUND"},  // that would take two common currencies
        {"", "EUR", At::Dealing, "NULL"},
        {"1 EUR", "", At::Dealing, "NX_ERR_OBJECT_IS_NULL"},
    };
    for (const auto& [amount, target, at, expected] : rows)
        EXPECT_EQ(Converted(converter, amount, target, at), expected) << amount << ' ' << target;
    EXPECT_EQ(Converted(converter, "1 EUR", "EUR", At::Mid, nxRoundingMethodEnum()), "NX_ERR_INVALID_PARAMETER");
    EXPECT_EQ(Converted(converter, "1 EUR", "EUR", static_cast<At>(2)), "NX_ERR_INVALID_PARAMETER");
}

TEST(nxExchangeRateConverter, NeverGainsByGoingThereAndBack)
{
    const nxExchangeRateConverter converter = Converter({Rate("EURUSD", "1.0850", "1.0850")});
    for (int cents = 1; cents < 1000; ++cents)
    {
        const nxMoney start(nxDecimal::ConstructFromValueAndDecimalPlaces(cents, 2), "EUR");
        nxMoney there, back;
        ASSERT_TRUE(converter.Convert(start, nxCurrency("USD"), At::Dealing, down, noon, there).IsOK());
        ASSERT_TRUE(converter.Convert(there, nxCurrency("EUR"), At::Dealing, down, noon, back).IsOK());
        EXPECT_LE(back.CompareExact(start), 0) << start;
    }
}

TEST(nxExchangeRateConverter, TakesTheFirstPathAndRefusesOldRates)
{
    const nxTimeStamp late(noon.GetSeconds() + 86'400, 0), later(noon.GetSeconds() + 86'400, 1);
    const nxTimeStamp early(noon.GetSeconds() - 86'401, 999'999'999);
    const nxExchangeRateConverter converter =
        Converter({Rate("EURUSD", "1.1", "1.1"), Rate("GBPEUR", "1.2", "1.2"), Rate("USDJPY", "100", "100", 1, late),
                   Rate("JPYEUR", "2", "2", 1, later), Rate("GBPUSD", "1.5", "1.5")});
    std::string path;
    for (const auto& [from, to, expected] : {std::tuple("EUR", "USD", "EUR-USD"),
                                             {"USD", "EUR", "USD-EUR"},
                                             {"GBP", "JPY", "GBP-EUR-JPY"},
                                             {"EUR", "EUR", "EUR"}})
    {
        EXPECT_TRUE(converter.GetPath(nxCurrency(from), nxCurrency(to), path).IsOK());
        EXPECT_EQ(path, expected);
    }
    EXPECT_EQ(converter.GetPath(nxCurrency("EUR"), nxCurrency("CAD"), path), NX_ERR_NOT_FOUND);
    EXPECT_EQ(converter.GetPath(nxCurrency("EUR"), nxCurrency(), path), NX_ERR_OBJECT_IS_NULL);
    const auto converted = [&](const char* amount, const char* target, const nxTimeStamp& now)
    { return Converted(converter, amount, target, At::Mid, nearest, now); };
    EXPECT_EQ(converted("1 EUR", "USD", late), "1.10 USD");
    EXPECT_EQ(converted("1 EUR", "USD", later), "NX_ERR_INSUFFICIENT_DATA");
    EXPECT_EQ(converted("1 USD", "JPY", noon), "100 JPY");
    EXPECT_EQ(converted("1 USD", "JPY", early), "NX_ERR_INSUFFICIENT_DATA");
    EXPECT_EQ(converted("1 GBP", "JPY", noon), "NX_ERR_INSUFFICIENT_DATA");
    EXPECT_EQ(converted("1 EUR", "USD", nxTimeStamp(INT64_MAX, 0)), "NX_ERR_INSUFFICIENT_DATA");

    for (const nxExchangeRateConverter& unready :
         {Converter({}, nxDateTimeSpan()), Converter({}, nxDateTimeSpan(0, -1)),
          nxExchangeRateConverter(nullptr, {}, nxDateTimeSpan(1, 0))})
    {
        EXPECT_EQ(Converted(unready, "1 EUR", "EUR", At::Mid), "NX_ERR_NOT_INITIALISED");
        EXPECT_EQ(unready.GetPath(nxCurrency("EUR"), nxCurrency("EUR"), path), NX_ERR_NOT_INITIALISED);
    }
    EXPECT_EQ(Converted(Converter({Rate("EURUSD", "1.1", "1.1")}, nxDateTimeSpan(0, 0)), "1 EUR", "USD", At::Mid),
              "1.10 USD");
}
