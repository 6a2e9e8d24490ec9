// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGJSONTEXT_H
#define CORE_LOG_INTERNAL_NXLOGJSONTEXT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/log/internal/nxLogEscape.h"

/// How values look in JSON.
///
/// Invariant: whatever the bytes, what is written is a part of a JSON text in UTF-8, on one line, and steers no terminal.
///
/// Errors: none. Threads: no state.
class nxLogJsonText
{
public:
    nxLogJsonText() = delete;

    /// The room that PutText() takes at most.
    static constexpr std::size_t GetRoom(std::size_t size) { return 6 * size + 2 * sizeof(std::uint64_t); }
    /// Writes the characters of a string, without the quotes. @return the end of what was written.
    static char* PutText(char* out, std::string_view text) noexcept;

    /// The room that PutSource() takes at most.
    static constexpr std::size_t GetSourceRoom(std::size_t size) { return GetRoom(size) + 64; }
    /// Writes `,"source":"file:line","message":"`. @return the end of what was written.
    static char* PutSource(char* out, std::string_view file, unsigned line) noexcept;

    /// The room that PutDouble() takes.
    static constexpr std::size_t DoubleRoom = 32;
    /// Writes the shortest number that reads back as @p value; null for one that is not finite.
    /// @return the end of what was written.
    static char* PutDouble(char* out, double value) noexcept;

    /// Whether any of the eight bytes of @p word may be one that PutText() changes: then one of nxLogEscape::AnswerBits is set.
    static constexpr std::uint64_t Suspect(std::uint64_t word)
    {
        constexpr std::uint64_t ones = 0x0101010101010101;
        // A byte that becomes 0 borrows; bytes from 0x80 on are suspected anyway.
        return nxLogEscape::Suspect(word) | ((word ^ (ones * '"')) - ones) | ((word ^ (ones * '\\')) - ones);
    }

private:
    static std::size_t _PutCharacter(char*& out, std::string_view text) noexcept;
};

#endif
