// SPDX-License-Identifier: Apache-2.0
#include "core/price/inline/nxTickRules.h"

#include <algorithm>
#include <iterator>

#include "core/log/nxLogMacros.h"
#include "core/price/internal/nxExactSum.h"

const nxDecimal& nxTickRules::ReportUnknownBand()
{
    static constexpr nxDecimal empty = nxDecimal::GetNullDecimal();
    NX_LOG_AT(NX_LOG_LEVEL_FATAL, "core/trunk/nxVariableTickTable", 108) << "Fatal error in variable tick table";
    return empty;
}

bool nxTickRules::KeepConstraints() const
{
    if (_bands.empty() || !(_bands.back().first == nxDecimal::GetMaximumDecimal()))
        return false;
    for (Band band = _bands.begin(); band != _bands.end(); ++band)
    {
        // The sign of the mantissa decides, because a comparison with 0 tolerates what is less than 2.2e-16.
        if (!band->first.IsPositive() || !band->second.IsPositive())
            return false;
        if (band != _bands.begin() && !(band->first > std::prev(band)->first))
            return false;
    }
    return true;
}

nxTickRules::Band nxTickRules::FindBand(const nxDecimal& price) const
{
    const std::size_t stretch = FindStretch(price);
    return stretch == nxTickGrid::NotFound ? FindBandByDecimals(GetMagnitude(price)) : GetBand(stretch);
}

nxTickRules::Band nxTickRules::FindBandByDecimals(const nxDecimal& magnitude) const
{
    if (magnitude.IsNegative())
        return End();
    const auto isBelow = [&magnitude](const auto& band) { return band.first < magnitude; };
    // The first bound that is not below the price; a table from a file may have a hundred thousand.
    return _isAscending ? std::partition_point(_bands.begin(), _bands.end(), isBelow)
                        : std::find_if_not(_bands.begin(), _bands.end(), isBelow);
}

const nxDecimal* nxTickRules::LookUpTickByDecimals(const nxDecimal& price) const
{
    const nxDecimal magnitude = GetMagnitude(price);
    const Band band = FindBandByDecimals(magnitude);
    return band == End() ? nullptr : &GetTickIn(band, magnitude);
}

const nxDecimal& nxTickRules::FindTickByDecimals(const nxDecimal& price) const
{
    const nxDecimal* const tick = LookUpTickByDecimals(price);
    return tick == nullptr ? ReportUnknownBand() : *tick;
}

const nxDecimal& nxTickRules::GetTickIn(Band band, const nxDecimal& magnitude) const
{
    if (IsFirst(band))
        return band->second;
    const auto& [lowerBound, lowerIncrement] = *std::prev(band);
    nxDecimal ownTickFrom = lowerBound;
    nxExactSum::Add(ownTickFrom, lowerIncrement, true);
    return magnitude < ownTickFrom ? lowerIncrement : band->second;
}

nxTickRules::Band nxTickRules::GetBandOfStep(Band band, bool isOutwards, const nxDecimal& magnitude) const
{
    if (isOutwards || IsFirst(band))
        return band;
    const auto& [lowerBound, lowerIncrement] = *std::prev(band);
    nxDecimal inwards = magnitude;
    const bool isLower = nxExactSum::TryAdd(inwards, lowerIncrement, false)
                             ? inwards <= lowerBound
                             : nxExactSum::IsWithin(magnitude, lowerBound, lowerIncrement);
    return isLower ? std::prev(band) : band;
}

void nxTickRules::Move(bool isIncrease, nxDecimal& price, Band band) const
{
    if (band == End())
        return;
    nxExactSum::Add(price, band->second, isIncrease);
    price.SetDecimalPlaces(GetBandAfterStep(band, isIncrease, price)->second.GetDecimalPlaces(), true);
}

void nxTickRules::StepFrom(Band band, bool isUp, nxDecimal& price) const
{
    // A negative price is stepped as its mirror image.
    const bool isNegative = price.IsNegative();
    const bool isOutwards = isUp != isNegative;
    if (isNegative)
        price.InvertSign();
    Move(isOutwards, price, GetBandOfStep(band, isOutwards, price));
    if (isNegative)
        price.InvertSign();
}
