// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_WIDEMANTISSA_H
#define NXTICK_WIDEMANTISSA_H

#include <cstdint>
#include <limits>

#include "core/numeric/nxDecimal.h"
#include "core/numeric/nxPowersOfTen.h"

namespace nxtick
{
/// A mantissa at more decimal places than its number has: two of the same places are compared and subtracted exactly,
/// where the decimal's own operations would go through doubles or leave 64 bits.
__extension__ typedef __int128 WideMantissa;

/// Prices, ticks and bounds have no more decimal places. At this many, each of them fits.
constexpr unsigned char widestPlaces = 18;

/// @param places not fewer than the number has, and at most widestPlaces.
inline WideMantissa GetWideMantissa(const nxDecimal& number, unsigned char places)
{
    const auto distance = static_cast<std::size_t>(places - number.GetDecimalPlaces());
    return WideMantissa{number.GetValue()} * static_cast<std::int64_t>(nxPowersOfTen::GetInteger(distance));
}

/// @return false, with @p number untouched, when 64 bits do not hold it.
inline bool MakeDecimal(WideMantissa mantissa, unsigned char places, nxDecimal& number)
{
    using Limits = std::numeric_limits<std::int64_t>;
    if (mantissa < Limits::min() || Limits::max() < mantissa)
        return false;
    number = nxDecimal::ConstructFromValueAndDecimalPlaces(static_cast<std::int64_t>(mantissa), places);
    return true;
}
}  // namespace nxtick

#endif
