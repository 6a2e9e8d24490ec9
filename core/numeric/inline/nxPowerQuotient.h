// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_INLINE_NXPOWERQUOTIENT_H
#define CORE_NUMERIC_INLINE_NXPOWERQUOTIENT_H

#include <bit>
#include <cstddef>
#include <cstdint>

#include "core/numeric/inline/nxWide.h"
#include "core/numeric/nxPowersOfTen.h"

/// Quotients by powers of ten, by a multiplication in place of the slower division.
///
/// Let d be the power, s the smallest number with d <= 2^s, and f the quotient 2^(63 + s) / d rounded up, which is below 2^64.
/// f d exceeds 2^(63 + s) by e < d <= 2^s. For a dividend n the product n f / 2^(63 + s) is n / d + n e / (d 2^(63 + s)). It
/// exceeds n / d by less than n / 2^63 units of 1 / d. For n below 2^63 that is less than one unit, so that both have the same
/// whole part.
/// - Threads and ownership: functions of their arguments.
class nxPowerQuotient
{
public:
    static constexpr std::size_t MaxPlaces = 18;                          ///< The largest power is 10^18.
    static constexpr std::uint64_t MaxDividend = ~std::uint64_t{0} >> 1;  ///< 2^63 - 1.

    /// @return @p dividend / 10^@p places without its fraction, for arguments up to the two limits.
    static constexpr std::uint64_t Get(std::uint64_t dividend, std::size_t places)
    {
        const auto& [factor, shift] = _table.by[places];
        return static_cast<std::uint64_t>((nxUnsignedWide{2 * dividend} * factor) >> 64) >> shift;
    }

private:
    struct _Reciprocal
    {
        std::uint64_t factor;
        std::uint64_t shift;
    };
    struct _Table
    {
        _Reciprocal by[MaxPlaces + 1];
    };
    static constexpr _Table _table = []
    {
        _Table table{};
        for (std::size_t places = 0; places <= MaxPlaces; ++places)
        {
            const std::uint64_t power = nxPowersOfTen::GetInteger(places);
            const auto shift = static_cast<std::uint64_t>(std::bit_width(power - 1));
            const nxUnsignedWide factor = ((nxUnsignedWide{1} << (63 + shift)) - 1) / power + 1;
            table.by[places] = {static_cast<std::uint64_t>(factor), shift};
        }
        return table;
    }();
};

#endif
