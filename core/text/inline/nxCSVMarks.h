// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_INLINE_NXCSVMARKS_H
#define CORE_TEXT_INLINE_NXCSVMARKS_H

#include <cstddef>
#include <cstdint>

/// What was found in 64 bytes of a CSV text: bit n tells of byte n.
struct nxCSVMarks
{
    std::uint64_t rowEnds = 0;
    std::uint64_t separators = 0;  ///< Those that end a field.

    /// 64 bits that begin in one word and end in the next.
    static std::uint64_t Join(std::uint64_t word, std::uint64_t next, unsigned shift)
    {
        return word >> shift | next << 1 << (63 - shift);
    }

    /// How many bits are set. Without a processor's own instruction this is quicker than the compiler's call.
    static std::size_t Count(std::uint64_t bits)
    {
        bits -= (bits >> 1) & 0x5555555555555555;
        bits = (bits & 0x3333333333333333) + ((bits >> 2) & 0x3333333333333333);
        return (((bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0F) * 0x0101010101010101) >> 56;
    }
};

#endif
