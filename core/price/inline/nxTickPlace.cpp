// SPDX-License-Identifier: Apache-2.0
#include "core/price/inline/nxTickPlace.h"

#include "core/price/internal/nxTickRun.h"
#include "core/price/internal/nxValidPrices.h"

namespace
{
// A run that wraps comes by the same stretches again and again; after this many the ones that it learnt are found faster.
constexpr unsigned mostRelocationsOfARun = 1000;
}  // namespace

bool nxTickPlace::Relocate(const nxTickRules& rules, const nxDecimal& price)
{
    if (zone.Contains(price))
        return true;
    const std::size_t stretch = rules.FindStretch(price);
    if (stretch == nxTickGrid::NotFound)
        return false;
    rules.FillZone(stretch, price, zone);
    return true;
}

nxTickRules::Band nxTickPlace::FindBand(const nxTickRules& rules, const nxDecimal& price)
{
    if (Relocate(rules, price))
        return rules.GetBand(zone);
    return rules.FindBandByDecimals(nxTickRules::GetMagnitude(price));
}

const nxDecimal& nxTickPlace::FindTick(const nxTickRules& rules, nxDecimal price)
{
    const std::size_t stretch = rules.FindStretch(price);
    if (stretch == nxTickGrid::NotFound)
        return rules.FindTickByDecimals(price);
    Note(rules, stretch, price);
    return rules.GetTick(stretch);
}

nxDecimal nxTickPlace::Step(const nxTickRules& rules, bool isUp, std::uint64_t ticks, nxDecimal price)
{
    unsigned relocations = mostRelocationsOfARun;
    nxTickRun run(rules, isUp);
    while (ticks != 0 && price.IsValid())
    {
        std::uint64_t done = run.Leap(price, ticks);
        if (done == 0 && relocations != 0 && --relocations != 0 && Relocate(rules, price))
            done = zone.Step(isUp, ticks, price);
        if (done == 0)
        {
            run.Watch(price);
            if (!_StepByDecimals(rules, isUp, price))
                break;
            done = 1;
        }
        ticks -= done;
    }
    return price;
}

// False when the price stays as it is, as it then does at every further step.
bool nxTickPlace::_StepByDecimals(const nxTickRules& rules, bool isUp, nxDecimal& price)
{
    const nxTickRules::Band band = FindBand(rules, price);
    if (band == rules.End())
    {
        nxTickRules::ReportUnknownBand();
        return false;
    }
    const nxDecimal before = price;
    rules.StepFrom(band, isUp, price);
    return price.GetValue() != before.GetValue() || price.GetDecimalPlaces() != before.GetDecimalPlaces();
}

nxDecimal nxTickPlace::Round(const nxTickRules& rules, const nxRoundingMethodEnum& method, nxDecimal price)
{
    if (price.IsValid())
        price.Round(FindTick(rules, price), method);
    return price;
}

bool nxTickPlace::IsValidTick(const nxTickRules& rules, const nxDecimal& price)
{
    const std::size_t stretch = price.IsValid() ? rules.FindStretch(price) : nxTickGrid::NotFound;
    if (stretch == nxTickGrid::NotFound)
        return nxValidPrices(rules.GetBands()).Contains(price);
    Note(rules, stretch, price);
    return nxValidPrices::IsMultiple(price, rules.GetTick(stretch));
}

nxErrorEnum nxTickPlace::GetNext(const nxTickRules& rules, bool isUp, const nxDecimal& price, nxDecimal& next)
{
    if (price.IsValid() && Relocate(rules, price) && zone.FindNext(isUp, price, next))
        return nxErrorEnum();
    return nxValidPrices(rules.GetBands()).GetNext(isUp, price, next);
}
