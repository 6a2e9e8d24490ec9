// SPDX-License-Identifier: Apache-2.0
#include "core/price/inline/nxTickPlace.h"

#include "core/price/internal/nxTickRun.h"
#include "core/price/internal/nxTickViews.h"
#include "core/price/internal/nxValidPrices.h"

namespace
{
// A run that wraps comes by the same stretches again and again; after this many the ones that it learnt are found faster.
constexpr unsigned mostRelocationsOfARun = 1000;
}  // namespace

bool nxTickPlace::_Relocate(const nxTickRules& rules, const nxDecimal& price)
{
    if (const nxTickZone* const found = nxTickViews::FindOrMake(rules.GetGrid(), price); found != nullptr)
    {
        zone = *found;
        return true;
    }
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
    if (const nxTickZone* const found = nxTickViews::FindOrMake(rules.GetGrid(), price); found != nullptr) [[likely]]
    {
        Note(*found);
        return *found->increment;
    }
    const std::size_t stretch = rules.FindStretch(price);
    if (stretch == nxTickGrid::NotFound)
        return rules.FindTickByDecimals(price);
    Note(rules, stretch, price);
    return rules.GetTick(stretch);
}

// Takes the steps by integers where it can, and one step by the function elsewhere. Ends when the function returns false.
template <class StepOnce>
inline void nxTickPlace::_StepMany(const nxTickRules& rules, nxTickRun& run, bool isUp, std::uint64_t ticks,
                                   nxDecimal& price, const StepOnce& stepOnce)
{
    unsigned relocations = mostRelocationsOfARun;
    while (ticks != 0 && price.IsValid())
    {
        std::uint64_t done = run.Leap(price, ticks);
        if (done == 0 && relocations != 0 && --relocations != 0 && Relocate(rules, price))
            done = zone.Step(isUp, ticks, price);
        if (done == 0)
        {
            run.Watch(price);
            if (!stepOnce(price))
                break;
            done = 1;
        }
        ticks -= done;
    }
}

nxDecimal nxTickPlace::Step(const nxTickRules& rules, bool isUp, std::uint64_t ticks, nxDecimal price)
{
    nxTickRun run(rules, isUp);
    _StepMany(rules, run, isUp, ticks, price, [&](nxDecimal& p) { return _StepByDecimals(rules, isUp, p); });
    return price;
}

nxErrorEnum nxTickPlace::StepExact(const nxTickRules& rules, int ticks, nxDecimal& price)
{
    if (!price.IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (ticks != 0 && price.GetDecimalPlaces() > nxDecimal::MaxExactPlaces)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    const bool isUp = ticks > 0;
    nxErrorEnum error;
    nxDecimal moved = price;
    nxTickRun run(rules, isUp, nxTickRun::Overflow::IsLeft);
    _StepMany(rules, run, isUp, CountSteps(ticks), moved,
              [&](nxDecimal& p)
              {
                  error = rules.StepExactlyFrom(FindBand(rules, p), isUp, p);
                  return error.IsOK();
              });
    if (error.IsOK())
        price = moved;
    return error;
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
    if (!price.IsValid())
        return price;
    const nxTickZone* const found = nxTickViews::FindOrMake(rules.GetGrid(), price);
    if (found == nullptr || !found->Round(method, price)) [[unlikely]]
        price.Round(FindTick(rules, price), method);
    else
        Note(*found);
    return price;
}

nxErrorEnum nxTickPlace::RoundExact(const nxTickRules& rules, const nxRoundingMethodEnum& method, nxDecimal& price)
{
    const std::size_t stretch = price.IsValid() ? rules.FindStretch(price) : nxTickGrid::NotFound;
    if (stretch == nxTickGrid::NotFound)
        return rules.RoundExactly(nullptr, method, price);
    Note(rules, stretch, price);
    return rules.RoundExactly(&rules.GetTick(stretch), method, price);
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

nxErrorEnum nxTickPlace::GetTicksBetween(const nxTickRules& rules, const nxDecimal& from, const nxDecimal& to,
                                         long long& ticks)
{
    if (from.IsValid() && Relocate(rules, from) && zone.CountTicks(from, to, ticks))
        return nxErrorEnum();
    return nxValidPrices::CountTicks(rules.GetBands(), from, to, ticks);
}
