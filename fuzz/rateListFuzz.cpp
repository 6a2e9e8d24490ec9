// SPDX-License-Identifier: Apache-2.0
// Rows of currencies and of exchange rates: a list is read whole or stays as it was, and what was read can be used.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "core/numeric/nxCurrencyList.h"
#include "core/numeric/nxExchangeRateConverter.h"
#include "core/text/nxCSVParser.h"

namespace
{
const nxTimeStamp moment(1'700'000'000, 0);

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

nxErrorEnum Give(void* context, char* buffer, std::size_t size, std::size_t& read)
{
    auto& text = *static_cast<std::string_view*>(context);
    read = text.copy(buffer, size);
    text.remove_prefix(read);
    return nxErrorEnum();
}

void CheckConversion(const std::shared_ptr<const nxExchangeRateList>& rates)
{
    using At = nxExchangeRateConverter::At;
    const nxRoundingMethodEnum down(NX_ROUNDING_METHOD_DOWN);
    const nxExchangeRateConverter converter(rates, {nxCurrency("USD")}, nxDateTimeSpan(0, 0));
    for (const nxExchangeRate& rate : rates->GetRates())
    {
        Require(rates->Find(rate.GetQuote(), rate.GetBase()) == &rate);
        const nxMoney start(nxDecimal::ConstructFromValueAndDecimalPlaces(12'345'678, 2), rate.GetBase());
        nxMoney there, back;
        // There and back never gains.
        if (converter.Convert(start, rate.GetQuote(), At::Dealing, down, moment, there).IsOK() &&
            converter.Convert(there, rate.GetBase(), At::Dealing, down, moment, back).IsOK())
            Require(back.CompareExact(start) <= 0);
    }
}

void CheckRates(std::string_view text)
{
    auto rates = std::make_shared<nxExchangeRateList>();
    unsigned long long line = 0;
    nxCSVParser parser(&Give, &text, {}, 1 << 12, 64);
    const bool isRead = rates->SetFromCSV(parser, moment, line).IsOK();
    Require(isRead == (line == 0) && (isRead || rates->GetSize() == 0));
    CheckConversion(rates);
}

void CheckCurrencies(std::string_view text)
{
    nxCurrencyList list;
    unsigned long long line = 0;
    nxCSVParser parser(&Give, &text, {}, 1 << 12, 64);
    const bool isRead = list.SetFromCSV(parser, line).IsOK();
    Require(isRead == (line == 0) && (isRead || list.GetSize() == 0));
    for (const nxCurrencyList::Row& row : list.GetRows())
        Require(list.Find(row.currency) == &row && row.number <= nxCurrencyList::MaxNumber);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    CheckRates(text);
    CheckCurrencies(text);
    return 0;
}
