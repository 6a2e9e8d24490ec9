// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_INTERNAL_NXBYTEMARKS_H
#define CORE_TEXT_INTERNAL_NXBYTEMARKS_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/text/inline/nxCSVMarks.h"

#if defined(__SSE2__)
    #include <emmintrin.h>
#endif

/// Compares one byte with many at once: bit n of the result is set where byte n is the same.
class nxByteMarks
{
public:
    /// How many bytes after a text must be readable, so that its last bytes need no way of their own.
    static constexpr std::size_t readableAfter = 64;

    explicit nxByteMarks(char byte)
#if defined(__SSE2__)
        : _pattern(_mm_set1_epi8(byte))
#else
        : _pattern(everyByte * static_cast<unsigned char>(byte))
#endif
    {
    }

    /// The marks of 16 bytes, in the low half of the word.
    std::uint64_t Find16(const char* bytes) const
    {
#if defined(__SSE2__)
        return static_cast<unsigned>(_mm_movemask_epi8(_GetEqual(bytes)));
#else
        return _Find8(bytes) | _Find8(bytes + 8) << 8;
#endif
    }

    /// The marks of 64 bytes.
    std::uint64_t Find64(const char* bytes) const
    {
        return Find16(bytes) | Find16(bytes + 16) << 16 | Find16(bytes + 32) << 32 | Find16(bytes + 48) << 48;
    }

    /// The marks of the first @p size bytes, at most 64; more may be read, see readableAfter.
    std::uint64_t Find(const char* bytes, std::size_t size) const
    {
        std::uint64_t marks = Find16(bytes);
        for (std::size_t at = 16; at < size; at += 16)
            marks |= Find16(bytes + at) << at;
        return size < 64 ? marks & ((std::uint64_t{1} << size) - 1) : marks;
    }

    /// How often the byte is in a text. Nothing is read after the text.
    std::size_t Count(std::string_view text) const
    {
        std::size_t count = 0;
        std::size_t at = 0;
        for (; at + 64 <= text.size(); at += 64)
            count += _Count64(text.data() + at);
        char rest[64] = {};
        std::memcpy(rest, text.data() + at, text.size() - at);
        return count + nxCSVMarks::Count(Find(rest, text.size() - at));
    }

private:
    static constexpr std::uint64_t everyByte = 0x0101010101010101;

#if defined(__SSE2__)
    __m128i _GetEqual(const char* bytes) const
    {
        return _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)), _pattern);
    }

    std::size_t _Count64(const char* bytes) const
    {
        const __m128i sum = _mm_add_epi8(_mm_add_epi8(_GetEqual(bytes), _GetEqual(bytes + 16)),
                                         _mm_add_epi8(_GetEqual(bytes + 32), _GetEqual(bytes + 48)));
        // Each equal byte counts -1.
        const __m128i sums = _mm_sad_epu8(_mm_sub_epi8(_mm_setzero_si128(), sum), _mm_setzero_si128());
        return static_cast<std::size_t>(_mm_cvtsi128_si64(_mm_add_epi64(sums, _mm_unpackhi_epi64(sums, sums))));
    }

    __m128i _pattern;
#else
    std::size_t _Count64(const char* bytes) const { return nxCSVMarks::Count(Find64(bytes)); }

    std::uint64_t _Find8(const char* bytes) const
    {
        static_assert(std::endian::native == std::endian::little, "the first byte has the lowest bits");
        constexpr std::uint64_t low7 = 0x7F * everyByte;
        std::uint64_t word = 0;
        std::memcpy(&word, bytes, sizeof word);
        word ^= _pattern;
        const std::uint64_t marks = ~(((word & low7) + low7) | word | low7);  // bit 7 of each equal byte
        return ((marks >> 7) * 0x0102040810204080) >> 56;
    }

    std::uint64_t _pattern;
#endif
};

#endif
