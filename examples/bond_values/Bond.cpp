// SPDX-License-Identifier: Apache-2.0
#include "Bond.h"

#include "core/price/nxAbbreviatedVolumeConverter.h"
#include "core/price/nxLotVolumeConverter.h"
#include "core/price/nxPriceConverterHelper.h"
#include "core/price/nxPriceManipulator.h"

namespace
{
const nxRoundingMethodEnum nearest(NX_ROUNDING_METHOD_NEAREST);
constexpr char separator = '.';
constexpr unsigned long long lotSize = 1000;  // bonds change hands in thousands of nominal
}  // namespace

nxErrorEnum Bond::Read(const nxCSVFileReader& row, const std::vector<std::size_t>& columns)
{
    std::string* const texts[] = {&name, &notation, &priceText, &nominalText};
    for (std::size_t i = 0; i < std::size(texts); ++i)
        if (const nxErrorEnum read = row.GetField(columns[i], *texts[i]); !read.IsOK())
            return read;
    return row.GetField(columns.back(), currency);
}

void Bond::Value(const nxExchangeRateConverter& converter, nxCurrency target, const nxTimeStamp& now)
{
    nxDecimal nominal;
    nxMoney local;
    whatFailed = "price " + priceText;
    if (error = _ReadPrice(); !error.IsOK())
        return;
    whatFailed = "nominal " + nominalText;
    if (error = _GetNominal(nominal); !error.IsOK())
        return;
    whatFailed = "value";
    error = _GetLocalValue(nominal, local);
    if (error.IsOK())
        error = converter.Convert(local, target, nxExchangeRateConverter::At::Mid, nearest, now, value);
    if (error.IsOK())
        whatFailed.clear();
}

// Reads the price in its notation, and rounds it to a price that an order may have.
nxErrorEnum Bond::_ReadPrice()
{
    const nxPriceConverter* const converter = nxPriceConverterHelper::Get(notation);
    if (converter == nullptr)
        return nxErrorEnum(NX_ERR_NOT_FOUND);
    if (const nxErrorEnum read = converter->SetFromString(priceText, price, separator); !read.IsOK())
        return read;
    price.Round(nxPriceManipulator(converter->GetTickIncrement()), nearest);
    text = converter->GetAsString(price, separator);
    return nxErrorEnum();
}

// Reads 1.5M as 1,500,000, and refuses a part of a lot.
nxErrorEnum Bond::_GetNominal(nxDecimal& nominal) const
{
    static const nxLotVolumeConverter lots(lotSize);
    static const nxAbbreviatedVolumeConverter screen(lots, nxAbbreviatedVolumeConverter::Suffixes::KMBT);
    nxVolumeConverter::Units units;
    const nxErrorEnum read = screen.SetFromString(nominalText, units, separator);
    return read.IsOK() ? lots.GetAsQuantity(units, nominal) : read;
}

nxErrorEnum Bond::_GetLocalValue(const nxDecimal& nominal, nxMoney& local) const
{
    const nxDecimal percent = nxDecimal::ConstructFromValueAndDecimalPlaces(1, 2);
    nxDecimal amount = price;
    nxErrorEnum result = amount.MultiplyExact(percent);
    if (result.IsOK())
        result = amount.MultiplyExact(nominal);
    local = nxMoney(amount, currency);
    return result.IsOK() ? local.RoundToMinorUnit(nearest) : result;
}
