// SPDX-License-Identifier: Apache-2.0
// Files of tick tables: any text either gives tables or a reason, and the tables answer alike by every way of asking.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/price/nxCustomVariableTickTable.h"
#include "core/price/nxTickTableCursor.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

bool AreIdentical(const nxDecimal& a, const nxDecimal& b)
{
    return a.IsValid() == b.IsValid() && a.GetValue() == b.GetValue() && a.GetDecimalPlaces() == b.GetDecimalPlaces();
}

void Ask(const nxVariableTickTable& table, nxTickTableCursor& cursor, const nxDecimal& price)
{
    Require(AreIdentical(table.GetTickIncrement(price), cursor.GetTickIncrement(price)));
    Require(table.NumberOfDecimalPlaces(price) == cursor.NumberOfDecimalPlaces(price));
    nxDecimal locked = price, free = price;
    table.Increment(locked);
    cursor.Increment(free, 1);
    Require(AreIdentical(locked, free));
    table.Decrement(locked);
    cursor.Decrement(free);
    Require(AreIdentical(locked, free));
    table.RoundToValidTick(nxRoundingMethodEnum(NX_ROUNDING_METHOD_UP), locked);
    cursor.RoundToValidTick(nxRoundingMethodEnum(NX_ROUNDING_METHOD_UP), free);
    Require(AreIdentical(locked, free));

    const bool isValid = table.IsValidTick(price);
    Require(isValid == cursor.IsValidTick(price));
    nxDecimal above = price, alsoAbove = price, back = price;
    const nxErrorEnum error = table.GetNextAbove(price, above);
    Require(error == cursor.GetNextAbove(price, alsoAbove) && AreIdentical(above, alsoAbove));
    Require(!error.IsOK() || table.IsValidTick(above));
    if (error.IsOK() && isValid)
        Require(cursor.GetNextBelow(above, back).IsOK() && back.EqualsExactly(price));
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    nxCustomVariableTickTable::Tables tables;
    std::string reason;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const bool isRead = nxCustomVariableTickTable::ReadText(text, tables, reason).IsOK();
    Require(isRead ? !tables.empty() && reason.empty() : tables.empty() && reason.starts_with("line "));
    for (const auto& table : tables)
    {
        nxTickTableCursor cursor(*table);
        for (const auto& [bound, increment] : table->GetRangeData())
        {
            nxDecimal price = bound;
            Ask(*table, cursor, price);
            price += increment;
            Ask(*table, cursor, price);
            price.InvertSign();
            Ask(*table, cursor, price);
        }
    }
    return 0;
}
