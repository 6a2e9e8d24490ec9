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

// A number of 256 bits, the lowest 64 first, and a place for a carry. What is beyond its size is 0.
struct Limbs
{
    std::uint64_t at[wideLimbs + 1] = {1};
    std::size_t size = 1;

    void Trim()
    {
        while (size > 0 && at[size - 1] == 0)
            --size;
    }
    // Times a number. The size is at most wideLimbs.
    void Multiply(std::uint64_t factor)
    {
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < size; ++i)
        {
            const nxUnsignedWide product = nxUnsignedWide{at[i]} * factor + carry;
            at[i] = static_cast<std::uint64_t>(product);
            carry = static_cast<std::uint64_t>(product >> 64);
        }
        at[size] = carry;
        size += carry != 0 ? 1 : 0;
    }
    // Times 2^shift, shift below 64. The size is at most wideLimbs.
    void ShiftUp(int shift)
    {
        if (shift == 0)
            return;
        for (std::size_t i = size; i > 0; --i)
            at[i] = (at[i] << shift) | (at[i - 1] >> (64 - shift));
        at[0] <<= shift;
        size += at[size] != 0 ? 1 : 0;
    }
    // Less other * factor, in @p count limbs; true when the difference is negative.
    bool Subtract(const Limbs& other, std::uint64_t factor, std::size_t count)
    {
        std::uint64_t carry = 0, borrow = 0;
        for (std::size_t i = 0; i < count; ++i)
        {
            const nxUnsignedWide product = nxUnsignedWide{other.at[i]} * factor + carry;
            carry = static_cast<std::uint64_t>(product >> 64);
            const nxUnsignedWide difference = nxUnsignedWide{at[i]} - static_cast<std::uint64_t>(product) - borrow;
            at[i] = static_cast<std::uint64_t>(difference);
            borrow = static_cast<std::uint64_t>(difference >> 64) & 1;
        }
        return borrow != 0 || carry != 0;
    }
    // Plus the first @p count limbs of the other one; true when there is a carry.
    bool Add(const Limbs& other, std::size_t count)
    {
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < count; ++i)
        {
            const nxUnsignedWide sum = nxUnsignedWide{at[i]} + other.at[i] + carry;
            at[i] = static_cast<std::uint64_t>(sum);
            carry = static_cast<std::uint64_t>(sum >> 64);
        }
        return carry != 0;
    }
    // Twice this number compared with the other one, both of @p count limbs: -1, 0 or 1.
    int CompareTwice(const Limbs& other, std::size_t count) const
    {
        if (at[count - 1] >> 63 != 0)
            return 1;
        for (; count > 0; --count)
        {
            const std::uint64_t twice = at[count - 1] << 1 | (count > 1 ? at[count - 2] >> 63 : 0);
            if (twice != other.at[count - 1])
                return twice < other.at[count - 1] ? -1 : 1;
        }
        return 0;
    }
    // Whether the first @p count limbs are 0.
    bool IsZero(std::size_t count) const
    {
        return std::all_of(at, at + count, [](std::uint64_t limb) { return limb == 0; });
    }
};

// The product of all factors, or a number above 2^256 when it does not fit 256 bits.
template <class Factors>
void GetProduct(const Factors& factors, Limbs& product)
{
    for (std::size_t i = 0; i < factors.count; ++i)
    {
        product.Multiply(factors.values[i]);
        if (product.size > wideLimbs)
            break;
    }
    product.Trim();
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
    return nxDecimalQuick::RoundsUp(quarters, method, isNegative, 4U) ? 1 : 0;
}

// The quotient rounded; the largest number when it is 2^63 or more by far. Schoolbook division with one digit of 64 bits,
// which is all that a result may have.
// Both are used up. Nothing is copied, because a copy of what was just written waits for it.
nxUnsignedWide GetRoundedQuotient(Limbs& above, Limbs& below, unsigned method, bool isNegative)
{
    constexpr nxUnsignedWide tooLarge = ~nxUnsignedWide{0};
    const std::size_t size = below.size;
    // Only a power of ten brings a divisor above 256 bits. The dividend then has none, and is less than a half of it.
    if (size > wideLimbs)
        return GetIncrement(above.size == 0 ? 0 : 1, method, isNegative);
    // The other way round, the divisor has no power of ten and 192 bits at most.
    if (above.size > wideLimbs || above.size > size + 1)
        return tooLarge;
    const int shift = std::countl_zero(below.at[size - 1]);
    above.ShiftUp(shift);
    below.ShiftUp(shift);
    const std::uint64_t top = below.at[size - 1];
    if (above.size > size + 1 || above.at[size] >= top)
        return tooLarge;
    // At most two too large, because the highest bit of the divisor is set.
    auto quotient = static_cast<std::uint64_t>(((nxUnsignedWide{above.at[size]} << 64) | above.at[size - 1]) / top);
    bool isNegativeRest = above.Subtract(below, quotient, size + 1);
    for (; isNegativeRest; --quotient)
        isNegativeRest = !above.Add(below, size + 1);
    const unsigned quarters = above.IsZero(size) ? 0 : static_cast<unsigned>(2 + above.CompareTwice(below, size));
    return nxUnsignedWide{quotient} + GetIncrement(quarters, method, isNegative);
}
}  // namespace

void nxProductQuotient::_AddPower(_Factors& factors, int exponent)
{
    for (; exponent > 0; exponent -= largestPower)
        factors.Add(nxPowersOfTen::GetInteger(static_cast<std::size_t>(std::min(exponent, largestPower))));
}

nxErrorEnum nxProductQuotient::GetRounded(bool isNegative, unsigned method, unsigned char places, nxDecimal& result)
{
    _AddPower(_above, _exponent);
    _AddPower(_below, std::min(-_exponent, largestDivisorPower));
    nxUnsignedWide dividend, divisor, rounded;
    if (!GetProduct(_above, dividend) || !GetProduct(_below, divisor)) [[unlikely]]
    {
        Limbs wideDividend, wideDivisor;
        GetProduct(_above, wideDividend);
        GetProduct(_below, wideDivisor);
        rounded = GetRoundedQuotient(wideDividend, wideDivisor, method, isNegative);
    }
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
