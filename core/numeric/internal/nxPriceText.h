// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_INTERNAL_NXPRICETEXT_H
#define CORE_NUMERIC_INTERNAL_NXPRICETEXT_H

#include <bit>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
    #include <emmintrin.h>
#endif

#include "core/numeric/nxPowersOfTen.h"
#include "core/text/inline/nxDigits.h"

/// Reads numbers in the usual form of prices: up to seven digits, a separator and one to eight digits, as two words. This
/// is the quick path of decimals and doubles, each of which has its own rules for every other text.
class nxPriceText
{
public:
    /// Reads all of a text.
    /// @param mantissa receives the digits as one number, below 10^15.
    /// @param decimals receives the number of digits after the separator, 1 to 8.
    /// @return false, with nothing stored, for a text of another form.
    static bool Parse(const char* begin, std::size_t size, char separator, std::uint64_t& mantissa,
                      std::size_t& decimals)
    {
        if (size == 0)
            return false;
        // The first eight characters and the last eight; they are the same when there are no more than eight.
        const std::uint64_t last =
            size >= 8 ? nxDigits::Load(begin + size - 8) : nxDigits::LoadRightAligned(begin, size);
        const std::uint64_t first = size >= 8 ? nxDigits::Load(begin) : last >> (64 - 8 * size);
        const std::uint64_t nonDigits = nxDigits::FindNonDigit(first);
        if (nonDigits == 0)
            return false;
        const auto position = static_cast<std::size_t>(std::countr_zero(nonDigits)) / 8;
        const std::size_t behind = size - position - 1;
        if (begin[position] != separator || behind == 0 || behind > 8)
            return false;
        const std::uint64_t whole = (first << 8) << (56 - 8 * position);
        const std::uint64_t fraction = last >> (64 - 8 * behind) << (64 - 8 * behind);
        if (nxDigits::FindNonDigit(fraction) != 0)
            return false;
        mantissa = _GatherBoth(whole, fraction, nxPowersOfTen::GetInteger(behind));
        decimals = behind;
        return true;
    }

private:
    // The number that two digit words spell, where one of the first counts `unit` of the second.
    static std::uint64_t _GatherBoth(std::uint64_t first, std::uint64_t second, std::uint64_t unit)
    {
#if defined(__SSE2__)
        // Both at once: pairs, fours, then all eight digits of each.
        __m128i lanes = _mm_set_epi64x(static_cast<long long>(second), static_cast<long long>(first));
        const __m128i tens = _mm_mullo_epi16(_mm_and_si128(lanes, _mm_set1_epi16(0xFF)), _mm_set1_epi16(10));
        lanes = _mm_madd_epi16(_mm_add_epi16(tens, _mm_srli_epi16(lanes, 8)), _mm_set1_epi32(100 | (1 << 16)));
        lanes = _mm_madd_epi16(_mm_packs_epi32(lanes, lanes), _mm_set1_epi32(10'000 | (1 << 16)));
        const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(lanes));
        return (both & 0xFFFFFFFF) * unit + (both >> 32);
#else
        return nxDigits::Gather(first) * unit + nxDigits::Gather(second);
#endif
    }
};

#endif
