// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGESCAPE_H
#define CORE_LOG_INTERNAL_NXLOGESCAPE_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// How the log writes text of unknown origin: every byte of what nxPrintableText hides becomes `\xNN`. Tabs stay, and so
/// do bytes that are no UTF-8 and steer no terminal.
///
/// Invariant: what is written here holds no control character but the tab, so that one record is one line.
///
/// Errors: none. Threads: no state.
class nxLogEscape
{
public:
    nxLogEscape() = delete;

    /// What PutPiece() writes beyond the size of the text, at most.
    static constexpr std::size_t LongestPiece = 64;
    /// The room that the suffix for a file name of @p size bytes takes, at most.
    static constexpr std::size_t GetSuffixRoom(std::size_t size) { return 4 * size + LongestPiece; }

    /// How far PutPiece() has come. It is returned in registers.
    struct Place
    {
        char* out;       ///< The end of what was written.
        const char* at;  ///< The end of what was read.
    };
    /// Writes the text from @p at to @p end, up to and including the first eight bytes in which something is hidden.
    /// @param out has room for the size of the text and LongestPiece bytes.
    static Place PutPiece(char* out, const char* at, const char* end) noexcept
    {
        constexpr std::ptrdiff_t wordSize = sizeof(std::uint64_t);
        for (; end - at >= wordSize; at += wordSize)
        {
            const std::uint64_t word = Load<std::uint64_t>(at);
            if (_NeedsCare(word)) [[unlikely]]
                return _PutCarefully(out, at, at + wordSize, end);
            std::memcpy(out, &word, sizeof word);
            out += sizeof word;
        }
        const std::uint64_t word = LoadShort(at, static_cast<std::size_t>(end - at));
        if (_NeedsCare(word)) [[unlikely]]
            return _PutCarefully(out, at, end, end);
        std::memcpy(out, &word, sizeof word);
        return {out + (end - at), end};
    }

    /// Writes how a full line ends, " [file:line]".
    /// @param out has room for GetSuffixRoom() bytes. @return the end of what was written.
    static char* PutSuffix(char* out, std::string_view file, unsigned line) noexcept;

    /// Writes the character or byte at the start of @p text, which is not empty, and moves @p out past it.
    /// @param out has room for four bytes for each that is read. @return the bytes that were read.
    static std::size_t PutCharacter(char*& out, std::string_view text) noexcept;

    /// @return whether PutPiece() would change the text. Errs on the side of yes, for tabs.
    static bool NeedsEscape(std::string_view text) noexcept;

    /// Up to seven characters in a word, blanks after them.
    static std::uint64_t LoadShort(const char* text, std::size_t size)
    {
        // Two loads that overlap; what is read twice is or-ed with itself.
        if (size >= 4)
            return Load<std::uint32_t>(text) | Load<std::uint32_t>(text + size - 4) << (8 * (size - 4)) |
                   _blanks << (8 * size);
        if (size >= 2)
            return Load<std::uint16_t>(text) | Load<std::uint16_t>(text + size - 2) << (8 * (size - 2)) |
                   _blanks << (8 * size);
        return size == 0 ? _blanks : Load<std::uint8_t>(text) | _blanks << 8;
    }

    /// @return the integer at @p bytes, which need not be aligned.
    template <class Integer>
    static std::uint64_t Load(const char* bytes)
    {
        Integer value;
        std::memcpy(&value, bytes, sizeof value);
        return value;
    }

    /// The bits of a word, one a byte, in which FindControl() and Suspect() answer.
    static constexpr std::uint64_t AnswerBits = 0x8080808080808080;

    /// Whether any of the eight bytes of @p word may be an ASCII control character: then one of AnswerBits is set. Errs
    /// on the side of yes, for tabs.
    static constexpr std::uint64_t FindControl(std::uint64_t word)
    {
        constexpr std::uint64_t ones = 0x0101010101010101;
        const std::uint64_t below = (word - ones * 0x20) & ~word;
        const std::uint64_t deletes = word ^ (ones * 0x7F);
        return below | ((deletes - ones) & ~deletes);
    }

    /// The same in fewer steps, and with a yes for every character beyond ASCII as well.
    static constexpr std::uint64_t Suspect(std::uint64_t word)
    {
        return (word - 0x2020202020202020) | (word + 0x0101010101010101);
    }

private:
    static_assert(std::endian::native == std::endian::little, "texts are shifted in words, first character lowest");
    static constexpr std::uint64_t _blanks = 0x2020202020202020;

    // Characters beyond ASCII need a closer look: some are control characters, and their bytes may be no UTF-8.
    static bool _NeedsCare(std::uint64_t word) { return ((FindControl(word) | word) & AnswerBits) != 0; }
    static Place _PutCarefully(char* out, const char* at, const char* pieceEnd, const char* end) noexcept;
    static bool _HidesBeyondASCII(std::string_view text) noexcept;
};

#endif
