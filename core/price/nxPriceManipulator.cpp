// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxPriceManipulator.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <span>

#include "core/log/nxLogMacros.h"
#include "core/price/internal/nxExactSum.h"
#include "core/price/internal/nxValidPrices.h"
#include "core/price/nxVariableTickTable.h"
#include "core/price/nxVariableTickTableContainer.h"

namespace
{
// @return @p count increments, modulo 2^64.
nxDecimal Multiple(const nxDecimal& increment, int count)
{
    const std::uint64_t mantissa =
        static_cast<std::uint64_t>(increment.GetValue()) * static_cast<std::uint64_t>(std::int64_t{count});
    return nxDecimal::ConstructFromValueAndDecimalPlaces(static_cast<std::int64_t>(mantissa),
                                                         increment.GetDecimalPlaces());
}

// The valid prices of a fixed tick are those of a table with one band.
nxValidPrices::Band MakeOnlyBand(const nxDecimal& increment)
{
    return {nxDecimal::GetMaximumDecimal(), nxDecimal::Abs(increment)};
}

// Counts between multiples of a tick that have its places, as they mostly have; false for all other prices, and for the most
// negative mantissa, which is no valid price.
bool CountQuickly(const nxDecimal& tick, const nxDecimal& from, const nxDecimal& to, long long& ticks)
{
    const bool shareScale = from.GetScale() == tick.GetScale() && to.GetScale() == tick.GetScale();
    if (!tick.IsPositive() || !shareScale || from.GetValue() == INT64_MIN || to.GetValue() == INT64_MIN)
        return false;
    const long long start = from.GetValue() / tick.GetValue();
    const long long end = to.GetValue() / tick.GetValue();
    long long count = 0;
    if (start * tick.GetValue() != from.GetValue() || end * tick.GetValue() != to.GetValue() ||
        __builtin_sub_overflow(end, start, &count))
        return false;
    ticks = count;
    return true;
}

nxValidPrices GetValidPrices(const nxValidPrices::Band& onlyBand, const nxDecimal& price)
{
    const unsigned char places = std::max(onlyBand.second.GetDecimalPlaces(), price.GetDecimalPlaces());
    return nxValidPrices(std::span(&onlyBand, 1), std::min(places, nxValidPrices::MostPlaces));
}
}  // namespace

void nxPriceManipulator::_WarnOfNoTable()
{
    static std::atomic<bool> isTold{false};  // the default order, because such manipulators are few
    if (!isTold.exchange(true))
        NX_LOG(NX_LOG_LEVEL_WARNING) << "A price manipulator was given no tick table and leaves prices alone";
}

nxErrorEnum nxPriceManipulator::SetVariableTickTable(const std::string& id)
{
    const nxVariableTickTable* table = nxVariableTickTableContainer::GetVariableTickTable(id);
    if (table == nullptr)
        return nxErrorEnum(NX_ERR_NOT_FOUND);
    _table = table;
    return nxErrorEnum();
}

const nxDecimal& nxPriceManipulator::GetTickIncrement(const nxDecimal& price) const
{
    return _table != nullptr ? _table->GetTickIncrement(price) : _tickIncrement;
}

void nxPriceManipulator::Increment(nxDecimal& price, int ticks) const
{
    if (_table != nullptr)
        _table->Increment(price, ticks);
    else if (_tickIncrement.IsPositive() && ticks != 0)
        nxExactSum::Add(price, Multiple(_tickIncrement, ticks), true);
}

void nxPriceManipulator::RoundToValidTick(const nxRoundingMethodEnum& method, nxDecimal& price) const
{
    if (_table != nullptr)
        _table->RoundToValidTick(method, price);
    else
        price.Round(_tickIncrement, method);
}

nxErrorEnum nxPriceManipulator::RoundToValidTickExact(const nxRoundingMethodEnum& method, nxDecimal& price) const
{
    if (_table != nullptr)
        return _table->RoundToValidTickExact(method, price);
    if (!price.IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (!_tickIncrement.IsValid() || _tickIncrement.IsZero())
        return nxErrorEnum(NX_ERR_NO_MATCH);
    return price.RoundExact(_tickIncrement, method);
}

nxErrorEnum nxPriceManipulator::IncrementExact(nxDecimal& price, int ticks) const
{
    if (_table != nullptr)
        return _table->IncrementExact(price, ticks);
    if (!price.IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    if (ticks == 0)
        return nxErrorEnum();
    if (!_tickIncrement.IsPositive())
        return nxErrorEnum(NX_ERR_NO_MATCH);
    const bool isTooFine =
        std::max(price.GetDecimalPlaces(), _tickIncrement.GetDecimalPlaces()) > nxDecimal::MaxExactPlaces;
    return !isTooFine && nxExactSum::TryAddMany(price, _tickIncrement, ticks) ? nxErrorEnum()
                                                                              : nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
}

bool nxPriceManipulator::IsValidTick(const nxDecimal& price) const
{
    if (_table != nullptr)
        return _table->IsValidTick(price);
    const nxValidPrices::Band band = MakeOnlyBand(_tickIncrement);
    return GetValidPrices(band, price).Contains(price);
}

nxErrorEnum nxPriceManipulator::_GetNext(bool up, const nxDecimal& price, nxDecimal& next) const
{
    if (_table != nullptr)
        return up ? _table->GetNextAbove(price, next) : _table->GetNextBelow(price, next);
    const nxValidPrices::Band band = MakeOnlyBand(_tickIncrement);
    return GetValidPrices(band, price).GetNext(up, price, next);
}

nxErrorEnum nxPriceManipulator::GetTicksBetween(const nxDecimal& from, const nxDecimal& to, long long& ticks) const
{
    if (_table != nullptr)
        return _table->GetTicksBetween(from, to, ticks);
    if (CountQuickly(_tickIncrement, from, to, ticks))
        return nxErrorEnum();
    const nxValidPrices::Band band = MakeOnlyBand(_tickIncrement);
    return nxValidPrices::CountTicks(std::span(&band, 1), from, to, ticks);
}

void nxDecimal::Round(const nxPriceManipulator& manipulator, const nxRoundingMethodEnum& method)
{
    manipulator.RoundToValidTick(method, *this);
}
