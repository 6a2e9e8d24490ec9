// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_NXPOWERSOFTEN_H
#define CORE_NUMERIC_NXPOWERSOFTEN_H

#include <cstddef>
#include <cstdint>

/// 10^n for every number of decimal places that a decimal can have, 0 to 255.
///
/// From 20 places on the integer power has wrapped modulo 2^64, and from 64 places on it is 0: 10^64 holds 2^64 as a
/// factor. The double is that of the integer, wrapped where it has, and exact while it has not (up to 19 places).
class nxPowersOfTen
{
public:
    /// 10^places modulo 2^64; 0 from 64 places on, so test it before dividing.
    /// @param places counted modulo 256, as a decimal counts them.
    static constexpr std::uint64_t GetInteger(std::size_t places) { return _table.integers[places % 256]; }
    /// The double nearest to GetInteger(places); 0.0 from 64 places on.
    static constexpr double GetDouble(std::size_t places) { return _table.doubles[places % 256]; }

private:
    struct _Tables
    {
        std::uint64_t integers[256];
        double doubles[256];
    };
    static constexpr _Tables _table = []
    {
        _Tables table{};
        std::uint64_t power = 1;
        for (int places = 0; places < 256; ++places, power *= 10)
        {
            table.integers[places] = power;
            table.doubles[places] = static_cast<double>(power);
        }
        return table;
    }();
};

#endif
