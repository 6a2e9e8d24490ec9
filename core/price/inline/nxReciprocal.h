// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INLINE_NXRECIPROCAL_H
#define CORE_PRICE_INLINE_NXRECIPROCAL_H

#include <bit>
#include <cstdint>

#include "core/numeric/inline/nxWide.h"

/// A positive divisor as a factor and a shift, because a multiplication is quicker than a division: ceil(2^(63 + shift) /
/// divisor), where 2^shift is the largest power of two not above the divisor.
/// - Range: exact for numbers below 2^50.
/// - Threads and ownership: a value.
struct nxReciprocal
{
    std::uint64_t factor = 0;
    unsigned char shift = 0;

    /// @return the reciprocal of a divisor that is not 0.
    static constexpr nxReciprocal Of(std::uint64_t divisor)
    {
        const auto shift = static_cast<unsigned char>(std::bit_width(divisor) - 1);
        // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): a divisor is positive
        return {static_cast<std::uint64_t>(((nxUnsignedWide{1} << (63 + shift)) + divisor - 1) / divisor), shift};
    }

    /// @return the quotient of a number below 2^50, without the rest.
    constexpr std::uint64_t Divide(std::uint64_t number) const
    {
        return static_cast<std::uint64_t>(static_cast<nxUnsignedWide>(2 * number) * factor >> 64) >> shift;
    }
};

#endif
