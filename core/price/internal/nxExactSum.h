// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INTERNAL_NXEXACTSUM_H
#define CORE_PRICE_INTERNAL_NXEXACTSUM_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "core/numeric/inline/nxWide.h"
#include "core/numeric/nxDecimal.h"
#include "core/numeric/nxPowersOfTen.h"

/// Sums of a price and a tick of different decimal places, in integers. A decimal's own sum goes through doubles there,
/// which lose a small tick at a large price.
/// - Null: an addend that is not valid leaves the price as it is.
/// - Threads and ownership: functions of their arguments.
class nxExactSum
{
public:
    /// Adds or subtracts the tick, at the larger number of places.
    /// @return false, with the price unchanged, when the sum does not fit 64 bits.
    static bool TryAdd(nxDecimal& price, const nxDecimal& tick, bool isUp)
    {
        if (!price.IsValid() || !tick.IsValid())
            return true;
        const unsigned char places = std::max(price.GetDecimalPlaces(), tick.GetDecimalPlaces());
        long long sum = 0;
        long long addend = 0;
        if (!_ScaleUp(price, places, sum) || !_ScaleUp(tick, places, addend) ||
            (isUp ? __builtin_add_overflow(sum, addend, &sum) : __builtin_sub_overflow(sum, addend, &sum)))
            return false;
        price = nxDecimal::ConstructFromValueAndDecimalPlaces(sum, places);
        return true;
    }

    /// Adds the tick @p count times, or subtracts it when the count is negative, at the larger number of places.
    /// @return false, with the price unchanged, when 64 bits do not hold the price, the tick or the sum at these places.
    static bool TryAddMany(nxDecimal& price, const nxDecimal& tick, int count)
    {
        const unsigned char places = std::max(price.GetDecimalPlaces(), tick.GetDecimalPlaces());
        long long start = 0;
        long long addend = 0;
        if (!_ScaleUp(price, places, start) || !_ScaleUp(tick, places, addend))
            return false;
        const nxWide sum = nxWide{start} + nxWide{addend} * count;
        if (sum != static_cast<long long>(sum))
            return false;
        price = nxDecimal::ConstructFromValueAndDecimalPlaces(static_cast<long long>(sum), places);
        return true;
    }

    /// Adds or subtracts the tick as TryAdd(), but a sum that does not fit wraps modulo 2^64. A price that cannot take the
    /// tick's places goes through the doubles of decimal arithmetic.
    static void Add(nxDecimal& price, const nxDecimal& tick, bool isUp)
    {
        const std::uint64_t present = price.GetScale();
        const std::uint64_t wanted = tick.GetScale();
        long long start = price.GetValue();
        if (present == wanted || !price.IsValid() || !tick.IsValid() ||
            (present < wanted && !_ScaleUp(price, tick.GetDecimalPlaces(), start)))
        {
            isUp ? price += tick : price -= tick;
            return;
        }
        const std::uint64_t power = present > wanted ? nxPowersOfTen::GetInteger(present - wanted) : 1;
        const std::uint64_t step = static_cast<std::uint64_t>(tick.GetValue()) * power;
        const std::uint64_t sum = static_cast<std::uint64_t>(start) + (isUp ? step : 0 - step);
        price = nxDecimal::ConstructFromValueAndDecimalPlaces(static_cast<long long>(sum),
                                                              static_cast<unsigned char>(std::max(present, wanted)));
    }

    /// @return whether a price is at most @p tick above @p bound; all are positive. Where one has that many more places
    ///         than the others that 128 bits do not hold them at its scale, the others count as larger.
    static bool IsWithin(const nxDecimal& price, const nxDecimal& bound, const nxDecimal& tick)
    {
        const unsigned char places =
            std::max({price.GetDecimalPlaces(), bound.GetDecimalPlaces(), tick.GetDecimalPlaces()});
        nxWide wide[3];
        const nxDecimal* const numbers[] = {&price, &bound, &tick};
        for (std::size_t i = 0; i < std::size(numbers); ++i)
        {
            const int zeros = places - numbers[i]->GetDecimalPlaces();
            if (zeros > _mostZeros)
                return i != 0;
            wide[i] = nxWide{numbers[i]->GetValue()} * nxWide{nxPowersOfTen::GetInteger(static_cast<unsigned>(zeros))};
        }
        return wide[0] - wide[1] <= wide[2];
    }

private:
    static constexpr int _mostZeros = 18;  // 10^18 is the largest power of ten that fits

    // The mantissa at the given number of places, or as it is when it has more; false when it does not fit.
    static bool _ScaleUp(const nxDecimal& number, unsigned char places, long long& mantissa)
    {
        mantissa = number.GetValue();
        const int zeros = places - number.GetDecimalPlaces();
        if (zeros <= 0 || mantissa == 0)
            return true;
        return zeros <= _mostZeros &&
               !__builtin_mul_overflow(mantissa,
                                       static_cast<long long>(nxPowersOfTen::GetInteger(static_cast<unsigned>(zeros))),
                                       &mantissa);
    }
};

#endif
