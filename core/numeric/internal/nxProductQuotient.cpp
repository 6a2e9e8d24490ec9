// SPDX-License-Identifier: Apache-2.0
#include "core/numeric/internal/nxProductQuotient.h"

#include <algorithm>
#include <bit>

#include "core/numeric/inline/nxDecimalExact.h"
#include "core/numeric/inline/nxWide.h"
#include "core/numeric/nxPowersOfTen.h"

namespace
{
constexpr int largestPower = 19;  // 10^19 fits 64 bits
// 10^95 exceeds 256 bits by far, so that a power beyond it changes no rounding.
constexpr int largestDivisorPower = 5 * largestPower;

constexpr std::size_t wideLimbs = 4;

// A number of 256 bits, the lowest 64 first, and a place for a carry.
struct Limbs
{
    std::uint64_t at[wideLimbs + 1] = {1};

    std::size_t GetSize() const
    {
        std::size_t size = wideLimbs + 1;
        while (size > 0 && at[size - 1] == 0)
            --size;
        return size;
    }
    // Times a number.
    void Multiply(std::uint64_t factor)
    {
        std::uint64_t carry = 0;
        for (std::uint64_t& limb : at)
        {
            const nxUnsignedWide product = nxUnsignedWide{limb} * factor + carry;
            limb = static_cast<std::uint64_t>(product);
            carry = static_cast<std::uint64_t>(product >> 64);
        }
    }
    // Times 2^shift, shift below 64.
    void ShiftUp(int shift)
    {
        if (shift == 0)
            return;
        for (std::size_t i = wideLimbs; i > 0; --i)
            at[i] = (at[i] << shift) | (at[i - 1] >> (64 - shift));
        at[0] <<= shift;
    }
    // Less other * factor, modulo 2^320; true when the difference is negative.
    bool Subtract(const Limbs& other, std::uint64_t factor)
    {
        std::uint64_t carry = 0, borrow = 0;
        for (std::size_t i = 0; i <= wideLimbs; ++i)
        {
            const nxUnsignedWide product = nxUnsignedWide{other.at[i]} * factor + carry;
            carry = static_cast<std::uint64_t>(product >> 64);
            const nxUnsignedWide difference = nxUnsignedWide{at[i]} - static_cast<std::uint64_t>(product) - borrow;
            at[i] = static_cast<std::uint64_t>(difference);
            borrow = static_cast<std::uint64_t>(difference >> 64) & 1;
        }
        return borrow != 0 || carry != 0;
    }
    // -1, 0 or 1.
    int Compare(const Limbs& other) const
    {
        for (std::size_t i = wideLimbs + 1; i > 0; --i)
            if (at[i - 1] != other.at[i - 1])
                return at[i - 1] < other.at[i - 1] ? -1 : 1;
        return 0;
    }
};

// The product of all factors, or a number above 2^256 when it does not fit 256 bits.
template <class Factors>
Limbs GetProduct(const Factors& factors)
{
    Limbs product;
    for (std::size_t i = 0; i < factors.count; ++i)
    {
        product.Multiply(factors.values[i]);
        if (product.at[wideLimbs] != 0)
            break;
    }
    return product;
}

// Whether the product fits 128 bits.
template <class Factors>
bool GetProduct(const Factors& factors, nxUnsignedWide& product)
{
    product = 1;
    for (std::size_t i = 0; i < factors.count; ++i)
        if (__builtin_mul_overflow(product, nxUnsignedWide{factors.values[i]}, &product))
            return false;
    return true;
}

// By how much a quotient grows when its rest is rounded.
// @param quarters of the divisor in the rest: 0 for none, 1 for less than a half, 2 for a half, 3 for more.
unsigned GetIncrement(unsigned quarters, unsigned method, bool isNegative)
{
    return quarters > nxDecimalQuick::GetThreshold(method, isNegative, 4U) ? 1 : 0;
}

// The quotient rounded; the largest number when it is 2^63 or more by far. Schoolbook division with one digit of 64 bits,
// which is all that a result may have.
nxUnsignedWide GetRoundedQuotient(Limbs above, Limbs below, unsigned method, bool isNegative)
{
    constexpr nxUnsignedWide tooLarge = ~nxUnsignedWide{0};
    const std::size_t size = below.GetSize();
    // Only a power of ten brings a divisor above 256 bits. The dividend then has none, and is less than a half of it.
    if (size > wideLimbs)
        return GetIncrement(above.GetSize() == 0 ? 0 : 1, method, isNegative);
    // The other way round, the divisor has no power of ten and 192 bits at most.
    if (above.GetSize() > wideLimbs || above.GetSize() > size + 1)
        return tooLarge;
    const int shift = std::countl_zero(below.at[size - 1]);
    above.ShiftUp(shift);
    below.ShiftUp(shift);
    const std::uint64_t top = below.at[size - 1];
    if (above.GetSize() > size + 1 || above.at[size] >= top)
        return tooLarge;
    // At most two too large, because the highest bit of the divisor is set.
    auto quotient = static_cast<std::uint64_t>(((nxUnsignedWide{above.at[size]} << 64) | above.at[size - 1]) / top);
    const Limbs dividend = above;
    while (above.Subtract(below, quotient))
    {
        above = dividend;
        --quotient;
    }
    Limbs complement = below;
    complement.Subtract(above, 1);
    const unsigned quarters = above.GetSize() == 0 ? 0 : static_cast<unsigned>(2 + above.Compare(complement));
    return nxUnsignedWide{quotient} + GetIncrement(quarters, method, isNegative);
}
}  // namespace

void nxProductQuotient::_AddPower(_Factors& factors, int exponent)
{
    for (; exponent > 0; exponent -= largestPower)
        factors.Add(nxPowersOfTen::GetInteger(static_cast<std::size_t>(std::min(exponent, largestPower))));
}

nxErrorEnum nxProductQuotient::GetRounded(bool isNegative, unsigned method, unsigned char places,
                                          nxDecimal& result) const
{
    _Factors above = _above, below = _below;
    _AddPower(above, _exponent);
    _AddPower(below, std::min(-_exponent, largestDivisorPower));
    nxUnsignedWide dividend, divisor, rounded;
    if (!GetProduct(above, dividend) || !GetProduct(below, divisor)) [[unlikely]]
        rounded = GetRoundedQuotient(GetProduct(above), GetProduct(below), method, isNegative);
    else if (((dividend | divisor) >> 64) == 0) [[likely]]
        rounded = nxDecimalExact::GetRoundedQuotient(static_cast<std::uint64_t>(dividend),
                                                     static_cast<std::uint64_t>(divisor), method, isNegative);
    else
        rounded = nxDecimalExact::GetRoundedQuotient(dividend, divisor, method, isNegative);
    const nxUnsignedWide limit = (std::uint64_t{1} << 63) - (isNegative ? 0 : 1);
    if (rounded > limit || places > nxDecimal::MaxExactPlaces)
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    const auto bits = static_cast<std::uint64_t>(rounded);
    result = nxDecimal::ConstructFromValueAndDecimalPlaces(nxDecimalQuick::Wrap(isNegative ? 0 - bits : bits), places);
    return nxErrorEnum();
}
