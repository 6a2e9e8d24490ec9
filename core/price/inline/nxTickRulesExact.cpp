// SPDX-License-Identifier: Apache-2.0
// The rules that return an error. In one file with the others, the compiler no longer inlines what both call.
#include "core/price/inline/nxTickRules.h"
#include "core/price/internal/nxExactSum.h"

nxErrorEnum nxTickRules::StepExactlyFrom(Band band, bool isUp, nxDecimal& price) const
{
    if (band == End())
        return nxErrorEnum(NX_ERR_NO_MATCH);
    const bool isNegative = price.IsNegative();
    const bool isOutwards = isUp != isNegative;
    nxDecimal moved = nxDecimal::Abs(price);
    const Band taken = GetBandOfStep(band, isOutwards, moved);
    if (!taken->second.IsPositive())
        return nxErrorEnum(NX_ERR_NO_MATCH);
    if (!nxExactSum::TryAdd(moved, taken->second, isOutwards) || moved.GetDecimalPlaces() > nxDecimal::MaxExactPlaces)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    const unsigned char places = GetBandAfterStep(taken, isOutwards, moved)->second.GetDecimalPlaces();
    if (places <= moved.GetDecimalPlaces())
        moved.SetDecimalPlaces(places, true);
    else if (const nxErrorEnum error = moved.SetDecimalPlacesExact(places); !error.IsOK())
        return error;
    price = isNegative ? nxDecimal::Negate(moved) : moved;
    return nxErrorEnum();
}

nxErrorEnum nxTickRules::RoundExactly(const nxDecimal* tick, const nxRoundingMethodEnum& method, nxDecimal& price) const
{
    if (!price.IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    // The comparisons that find the band of a finer price wrap.
    if (price.GetDecimalPlaces() > nxDecimal::MaxExactPlaces)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    if (tick == nullptr)
        tick = LookUpTickByDecimals(price);
    if (tick == nullptr || !tick->IsValid() || tick->IsZero())
        return nxErrorEnum(NX_ERR_NO_MATCH);
    return price.RoundExact(*tick, method);
}
