// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_INTERNAL_NXENUMINTERVAL_H
#define CORE_ENUM_INTERNAL_NXENUMINTERVAL_H

#include <algorithm>
#include <span>

/// The name of an enumeration class and the exclusive bounds of its values.
struct nxEnumInterval
{
    const char* name;
    unsigned minimum;
    unsigned maximum;

    /// @return whether the interval has @p value.
    constexpr bool Has(unsigned value) const { return minimum < value && value < maximum; }
    /// @return whether a value lies in both intervals.
    constexpr bool Overlaps(const nxEnumInterval& other) const
    {
        const unsigned low = std::max(minimum, other.minimum), high = std::min(maximum, other.maximum);
        return low < high && high - low > 1;
    }

    /// @return the library's own classes without nxGenericEnum, which shares its values with others. Defined above the
    ///         classes, in nxLibraryEnums.cpp. A constant, so it may be asked before any initialiser has run.
    static std::span<const nxEnumInterval> OfLibrary() noexcept;
};

#endif
